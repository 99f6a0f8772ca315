# zoka_library(NAME DEPENDS lib... SOURCES file... [WIN file...] [POSIX file...])
# One folder's code as a static library. WIN sources exist in the Windows build only,
# POSIX ones elsewhere only.
function(zoka_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SOURCES;WIN;POSIX" ${ARGN})
  set(sources ${ARG_SOURCES})
  if(WIN32)
    list(APPEND sources ${ARG_WIN})
  else()
    list(APPEND sources ${ARG_POSIX})
  endif()
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE zoka_flags zoka_libs)
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
endfunction()

# zoka_tests(NAME DEPENDS lib... SOURCES file...)
# One test program per folder, run by CTest as a whole (starting a process for each case
# is slow under Wine); each leaves NAME.xml with the results of its cases beside itself,
# which the test run counts. The Windows programs run under Wine.
function(zoka_tests name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SOURCES" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} zoka_test_support zoka_flags zoka_libs GTest::gtest GTest::gmock_main)
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  # A relative path, because an absolute one of this system means nothing under Wine.
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "GTEST_OUTPUT=xml:${name}.xml")
endfunction()
