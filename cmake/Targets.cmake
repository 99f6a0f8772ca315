# zoka_library(NAME [HOT] DEPENDS lib... SOURCES file... [WIN file...] [POSIX file...])
# One folder's code as a static library. WIN sources exist in the Windows build only,
# POSIX ones elsewhere only. With ZOKA_UNITY its sources are compiled eight at a time, which takes half the time; but
# those in win/ folders, which no other build has, by themselves, so that one of the builds notices an include that is
# missing. With the sanitizers only HOT ones are compiled with inlining, which takes longer: those that the long tests
# spend their time in.
function(zoka_library name)
  cmake_parse_arguments(ARG "HOT" "" "DEPENDS;SOURCES;WIN;POSIX" ${ARGN})
  set(sources ${ARG_SOURCES})
  if(WIN32)
    list(APPEND sources ${ARG_WIN})
  else()
    list(APPEND sources ${ARG_POSIX})
  endif()
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES UNITY_BUILD ${ZOKA_UNITY} UNITY_BUILD_BATCH_SIZE 8)
  if(ZOKA_SANITIZE AND NOT ARG_HOT)
    target_compile_options(${name} PRIVATE -fno-inline)
  endif()
  set(alone ${sources})
  list(FILTER alone INCLUDE REGEX "(^|/)win/")
  set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE zoka_flags zoka_libs)
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
endfunction()

# zoka_tests(NAME DEPENDS lib... [SOURCES file...] [OPTIMISED file...])
# One test program per folder, run by CTest as a whole (starting a process for each case
# is slow under Wine); each leaves NAME.xml with the results of its cases beside itself,
# which the test run counts. The Windows programs run under Wine. OPTIMISED sources are those that put every part of a
# text through a reader: what they take longer to compile is little beside what they run faster, with the sanitizers
# most of all.
function(zoka_tests name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;SOURCES;OPTIMISED" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${ARG_OPTIMISED})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} zoka_test_support zoka_flags zoka_libs GTest::gtest GTest::gmock_main)
  # Google Test's headers take a third of a test's time to compile; they are compiled once for all with the same flags.
  target_precompile_headers(${name} REUSE_FROM zoka_test_support)
  set_source_files_properties(${ARG_OPTIMISED} PROPERTIES COMPILE_OPTIONS -O1 SKIP_PRECOMPILE_HEADERS ON)
  add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
  # A relative path, because an absolute one of this system means nothing under Wine.
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "GTEST_OUTPUT=xml:${name}.xml")
endfunction()
