# Libraries from the distribution. The header-only ones serve both builds; they are
# linked into a folder of the build's own, so that the system's include folder, with
# its Linux headers, never reaches the cross compiler.
set(ZOKA_LIB_INCLUDE ${CMAKE_BINARY_DIR}/libs/include)
file(MAKE_DIRECTORY ${ZOKA_LIB_INCLUDE})
foreach(name CLI nlohmann stb dtl boost)
  if(NOT EXISTS /usr/include/${name})
    message(FATAL_ERROR "/usr/include/${name} is missing: run 'make setup'")
  endif()
  if(NOT EXISTS ${ZOKA_LIB_INCLUDE}/${name})
    file(CREATE_LINK /usr/include/${name} ${ZOKA_LIB_INCLUDE}/${name} SYMBOLIC)
  endif()
endforeach()
add_library(zoka_libs INTERFACE)
target_include_directories(zoka_libs SYSTEM INTERFACE ${ZOKA_LIB_INCLUDE})

# Google Test from the distribution's source package, with this build's own flags.
set(CMAKE_POLICY_DEFAULT_CMP0077 NEW) # its options can be set like this
set(INSTALL_GTEST OFF)
set(gtest_force_shared_crt ON)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/libs/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(target gtest gtest_main gmock gmock_main)
  target_compile_options(${target} PRIVATE -w -O0) # not ours to mend; compiles in a quarter of the time
endforeach()

# Boost.Filesystem: the distribution's own natively; for Windows the sources of the same
# version, which set-up unpacks, without their warnings. zoka_boost stands for either.
add_library(zoka_boost INTERFACE)
if(WIN32)
  set(boost_sources ${CMAKE_SOURCE_DIR}/build/libs/boost/libs/filesystem/src)
  if(NOT EXISTS ${boost_sources}/path.cpp)
    message(FATAL_ERROR "Boost.Filesystem's sources are missing: run 'make setup'")
  endif()
  add_library(zoka_boost_filesystem STATIC EXCLUDE_FROM_ALL
    ${boost_sources}/codecvt_error_category.cpp
    ${boost_sources}/directory.cpp
    ${boost_sources}/exception.cpp
    ${boost_sources}/operations.cpp
    ${boost_sources}/path.cpp
    ${boost_sources}/path_traits.cpp
    ${boost_sources}/portability.cpp
    ${boost_sources}/unique_path.cpp
    ${boost_sources}/utf8_codecvt_facet.cpp
    ${boost_sources}/windows_file_codecvt.cpp)
  target_compile_definitions(zoka_boost_filesystem
    PUBLIC BOOST_FILESYSTEM_STATIC_LINK=1
    PRIVATE BOOST_FILESYSTEM_SOURCE _WIN32_WINNT=0x0601)
  target_link_libraries(zoka_boost_filesystem PUBLIC zoka_libs)
  target_link_libraries(zoka_boost INTERFACE zoka_boost_filesystem)
else()
  find_package(Boost 1.81 REQUIRED COMPONENTS filesystem)
  target_link_libraries(zoka_boost INTERFACE Boost::filesystem)
endif()
