# Libraries from the distribution. The header-only ones serve both builds; they are
# linked into a folder of the build's own, so that the system's include folder, with
# its Linux headers, never reaches the cross compiler.
set(ZOKA_LIB_INCLUDE ${CMAKE_BINARY_DIR}/libs/include)
file(MAKE_DIRECTORY ${ZOKA_LIB_INCLUDE})
foreach(name CLI nlohmann stb dtl)
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
set(INSTALL_GTEST OFF)
set(gtest_force_shared_crt ON)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/libs/googletest EXCLUDE_FROM_ALL SYSTEM)
