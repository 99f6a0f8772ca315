# Flags of our own code, carried by the interface target zoka_flags so that the
# libraries' code is not held to our warnings.
add_library(zoka_flags INTERFACE)
target_compile_options(zoka_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# GCC 12 takes "text" + std::string() for overlapping copies.
target_compile_options(zoka_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_include_directories(zoka_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_definitions(zoka_flags INTERFACE ZOKA_VERSION="${PROJECT_VERSION}")

if(ZOKA_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(ZOKA_SANITIZE_THREADS)
  add_compile_options(-fsanitize=thread)
  add_link_options(-fsanitize=thread)
endif()
if(ZOKA_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(WIN32)
  # A write behind the end of a local array ends the program instead of returning into what was written.
  target_compile_options(zoka_flags INTERFACE -fstack-protector-strong)
  # Nothing but system libraries may be imported: the runtimes go into the binaries.
  add_link_options(-static -static-libgcc -static-libstdc++ -fstack-protector-strong -Wl,--dynamicbase -Wl,--nxcompat)
  target_compile_definitions(zoka_flags INTERFACE WINVER=0x0601 _WIN32_WINNT=0x0601 NOMINMAX WIN32_LEAN_AND_MEAN)
endif()
