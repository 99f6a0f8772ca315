#!/bin/bash
# The repository's checks, held against small trees with one thing wrong in each: a check
# that finds nothing there would find nothing anywhere.
set -uo pipefail
checks=$(cd "$(dirname "$0")/../../tools/check" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0

expect() { # what is said, expected status, text that its output must hold ("" for no output), command...
    local what=$1 wanted=$2 text=$3 output got=0
    shift 3
    output=$("$@" 2>&1) || got=$?
    if [ "$got" != "$wanted" ] || { [ -z "$text" ] && [ -n "$output" ]; } || [[ $output != *"$text"* ]]; then
        printf '%s: expected %s and "%s", got %s and:\n%s\n' "$what" "$wanted" "$text" "$got" "$output"
        status=1
    fi
}

# Who includes whom: file, line of code, text of the finding ("" for none).
while IFS='|' read -r file code text; do
    tree=$scratch/includes
    rm -rf "$tree"
    mkdir -p "$tree/$(dirname "$file")"
    printf '// first line\n%s\n' "$code" >"$tree/$file"
    if [ -n "$text" ]; then
        expect "$file: $code" 1 "$file:2: $text" "$checks/includes.sh" "$tree"
    else
        expect "$file: $code" 0 "" "$checks/includes.sh" "$tree"
    fi
done <<'ROWS'
xml/A.cpp|#include "util/Lex.h"|
xml/A.cpp|#include <vector>|
util/A.cpp|#include "xml/XMLNode.h"|util may not include "xml/XMLNode.h"
plugin/A.h|  #  include "tests/support/Fake.h"|plugin may not include "tests/support/Fake.h"
templates/A.cpp|#include "plugin/host/HostAbi.h"|
util/A.cpp|#include "plugin/host/HostAbi.h"|util may not include "plugin/host/HostAbi.h"
plugin/host/A.h|#include "plugin/Procedures.h"|plugin/host may not include "plugin/Procedures.h"
controls/win/A.cpp|#include "ui/win/WindowKit.h"|
controls/A.cpp|#include "ui/win/WindowKit.h"|"ui/win/WindowKit.h" may be included in win/ folders only
templates/A.cpp|#include "plugin/Procedures.h"|templates may not include "plugin/Procedures.h"
util/A.cpp|#include "Lex.h"|"Lex.h" is not named from the root
util/A.h|#include <Windows.h>|<Windows.h> may be included in win/ folders only
util/win/A.cpp|#include <windows.h>|
ROWS
mkdir -p "$scratch/other/stray" && echo 'int x;' >"$scratch/other/stray/A.cpp"
expect "a new folder" 1 "stray is not in the table" "$checks/includes.sh" "$scratch/other"

# Frames without a guard, as made by the machine's own compiler.
tree=$scratch/guards
mkdir -p "$tree"/{util,build/util/CMakeFiles/zoka_util.dir}
export NM=nm
object=$tree/build/util/CMakeFiles/zoka_util.dir/A.cpp.obj
expect "no source with an array" 1 "no source with an array in $tree/util" "$checks/guards.sh" "$tree/build" "$tree/util"
mkdir "$tree/util/posix"
printf 'void fill(char*);\nvoid name() {\n    char text[80] = {};\n    fill(text);\n}\n' | tee "$tree/util/A.cpp" >"$tree/util/posix/B.cpp"
expect "no object" 1 "util/A.cpp: has no object in $tree/build" "$checks/guards.sh" "$tree/build" "$tree"
c++ -fstack-protector-strong -c "$tree/util/A.cpp" -o "$object"
expect "a guarded frame" 0 "" "$checks/guards.sh" "$tree/build" "$tree"
c++ -fno-stack-protector -c "$tree/util/A.cpp" -o "$object"
expect "an open frame" 1 "util/A.cpp: its stack frames are not guarded" "$checks/guards.sh" "$tree/build" "$tree"

rm -r "$tree/build"
unity=$tree/build/CMakeFiles/zoka_util.dir/Unity
mkdir -p "$unity"
printf '#include "%s"\n' "$tree/util/A.cpp" >"$unity/unity_0.cxx"
expect "no object of several sources" 1 "util/A.cpp: has no object in $tree/build" "$checks/guards.sh" "$tree/build" "$tree"
c++ -fstack-protector-strong -c "$unity/unity_0.cxx" -o "$unity/unity_0.cxx.o"
expect "a guarded frame among several sources" 0 "" "$checks/guards.sh" "$tree/build" "$tree"
c++ -fno-stack-protector -c "$unity/unity_0.cxx" -o "$unity/unity_0.cxx.o"
expect "an open frame among several sources" 1 "util/A.cpp: its stack frames are not guarded" \
    "$checks/guards.sh" "$tree/build" "$tree"

# Doors: a function that the system calls, text of the finding ("" for none).
tree=$scratch/doors
mkdir -p "$tree/ui/win"
while IFS='|' read -r code text; do
    printf '// first line\n%b\n' "$code" >"$tree/ui/win/A.cpp"
    expect "$code" "$([ -z "$text" ] && echo 0 || echo 1)" "$text" "$checks/doors.sh" "$tree"
done <<'ROWS'
BOOL CALLBACK find(HWND one, LPARAM) {\n    return one != nullptr;\n}|ui/win/A.cpp:2: find may let an exception out
LRESULT CALLBACK Rows::proc(HWND w, UINT m,\n                           WPARAM p) {\n    return all(w);\n}|ui/win/A.cpp:2: Rows::proc may
    static DWORD WINAPI run(void*) {\n        return 0;\n    }|ui/win/A.cpp:2: run may
BOOL CALLBACK find(HWND one,\n                   LPARAM) noexcept {\n    return one != nullptr;\n}|
DWORD WINAPI run(void* self) {\n    bool done = false;\n    keepInside([&] {\n        work(self);\n    });\n    return done;\n}|
LRESULT CALLBACK Rows::proc(HWND w) {\n    // all\n    return zoka::answerInside(\n        w, [&] { return 1; }, 1);\n}|
BOOL CALLBACK find(HWND one) {\n    try {\n        look(one);\n    } catch (...) {\n    }\n    return TRUE;\n}|
DWORD WINAPI run(void* self) {\n    if (self) {\n        keepInside([] {});\n    }\n    return 0;\n}|ui/win/A.cpp:2: run may
DWORD WINAPI run(void* self) {\n    prepare(self);\n    keepInside([] {});\n    return 0;\n}|ui/win/A.cpp:2: run may
DWORD WINAPI run(void* self) {\n    keepInside([] {});\n    finish(self);\n    return 0;\n}|ui/win/A.cpp:2: run may
DWORD WINAPI run(void* self) {\n    keepInside([] {});\n    return finish(self);\n}|ui/win/A.cpp:2: run may
DWORD WINAPI run(void* self) {\n    try {\n    } catch (...) {\n    }\n    const Text text = make(self);\n    return 0;\n}|ui/win/A.cpp:2: run may
    static LRESULT CALLBACK proc(HWND window, UINT message);|
int x;|no callback in
ROWS

# Forgotten sources.
tree=$scratch/sources
mkdir -p "$tree"/{util/win,tests/lex,fuzz,build/l,build/w}
touch "$tree"/util/{A.cpp,win/B.cpp} "$tree"/tests/lex/C.cpp "$tree"/fuzz/FuzzX.cpp
echo 'add_executable(fuzz_x FuzzX.cpp)' >"$tree/fuzz/CMakeLists.txt"
commands() { # build, source...
    local build=$1
    shift
    printf '  "file": "'"$tree"'/%s",\n' "$@" >"$tree/build/$build/compile_commands.json"
}
commands l util/A.cpp tests/lex/C.cpp
commands w util/A.cpp util/win/B.cpp tests/lex/C.cpp
expect "nothing forgotten" 0 "" "$checks/sources.sh" "$tree/build/l" "$tree/build/w" "$tree"
commands w util/A.cpp util/win/B.cpp
expect "a test on one system only" 1 "tests/lex/C.cpp: in no target of the Windows build" \
    "$checks/sources.sh" "$tree/build/l" "$tree/build/w" "$tree"
expect "the native half alone" 0 "" "$checks/sources.sh" "$tree/build/l" "" "$tree"
mkdir "$tree/build/w/Unity"
printf '#include "%s"\n' "$tree/tests/lex/C.cpp" "$tree/util/A.cpp" >"$tree/build/w/Unity/unity_0.cxx"
commands w build/w/Unity/unity_0.cxx util/win/B.cpp
expect "several compiled at once" 0 "" "$checks/sources.sh" "$tree/build/l" "$tree/build/w" "$tree"
echo >"$tree/fuzz/CMakeLists.txt"
expect "a fuzz target that is not built" 1 "fuzz/FuzzX.cpp: not named" "$checks/sources.sh" "$tree/build/l" "" "$tree"

# Benchmarks and fuzz targets, read with the flags of a build.
tree=$scratch/compiles
mkdir -p "$tree"/{bench/win,fuzz,build/l,build/w}
commands() { # build, flags
    printf '{\n  "command": "%s -o main.o -c %s",\n}\n' "${CXX:-c++} $2" "$tree/tools/cli/main.cpp" >"$tree/build/$1/compile_commands.json"
}
commands l '-Wall -Werror -DTEXT=\\\"a\\\"'
commands w '-DWINDOWS=1'
echo 'add_executable(bench_a A.cpp)' | tee "$tree/bench/CMakeLists.txt" >"$tree/bench/win/CMakeLists.txt"
printf 'add_executable(fuzz_%s F.cpp)\ntarget_compile_definitions(fuzz_%s PRIVATE WHAT=%s)\n' x x 1 y y 2 >"$tree/fuzz/CMakeLists.txt"
echo 'const char* text = TEXT;' >"$tree/bench/A.cpp"
echo 'int what = 1 / WINDOWS;' >"$tree/bench/win/A.cpp"
echo 'static_assert(WHAT > 0);' >"$tree/fuzz/F.cpp"
expect "all compile" 0 "" "$checks/compiles.sh" "$tree/build/l" "$tree/build/w" "$tree"
echo 'static_assert(WHAT != 2);' >"$tree/fuzz/F.cpp"
expect "one of two targets" 123 "fuzz/F.cpp:1:" "$checks/compiles.sh" "$tree/build/l" "$tree/build/w" "$tree"
echo >"$tree/fuzz/F.cpp"
printf '[[nodiscard]] int answer();\nvoid ask() { answer(); }\n' >"$tree/bench/A.cpp"
expect "an answer that nobody looks at" 123 "bench/A.cpp:2:" "$checks/compiles.sh" "$tree/build/l" "" "$tree"
echo >"$tree/bench/A.cpp"
echo 'int what = NOTHING;' >"$tree/bench/win/A.cpp"
expect "the native half alone" 0 "" "$checks/compiles.sh" "$tree/build/l" "" "$tree"
expect "a Windows benchmark" 123 "bench/win/A.cpp:1:" "$checks/compiles.sh" "$tree/build/l" "$tree/build/w" "$tree"
echo '{}' >"$tree/build/w/compile_commands.json"
expect "no flags" 1 "build/w: nothing tells" "$checks/compiles.sh" "$tree/build/l" "$tree/build/w" "$tree"

# Line ends.
tree=$scratch/lineends
git init -q "$tree"
printf 'a\n' >"$tree/plain"
printf 'a\r\n' >"$tree/dos.kez"
git -C "$tree" add .
expect "a file with CR LF" 1 "dos.kez: has line ends crlf" "$checks/lineends.sh" "$tree"
echo '*.kez -text' >"$tree/.gitattributes"
expect "a file with CR LF kept as it is" 0 "" "$checks/lineends.sh" "$tree"

# Layout.
tree=$scratch/format
mkdir -p "$tree/util"
cp "$checks/../../.clang-format" "$tree"
printf 'int  x;\n' >"$tree/util/A.h"
expect "two blanks" 123 "util/A.h:1:4: error: code should be clang-formatted" "$checks/format.sh" "$tree"
printf 'int x;\n' >"$tree/util/A.h"
expect "laid out as it should be" 0 "" "$checks/format.sh" "$tree"

# Hashes: a declaration, text of the finding ("" for none).
tree=$scratch/hashes
mkdir -p "$tree/templates"
while IFS='|' read -r code text; do
    printf '// first line\n%s\n' "$code" >"$tree/templates/A.h"
    expect "$code" "$([ -z "$text" ] && echo 0 || echo 1)" "$text" "$checks/hashes.sh" "$tree"
done <<'ROWS'
std::unordered_map<std::string, int> m_rows;|templates/A.h:2: std::unordered_map<std::string, int> m_rows;
    const std::unordered_multiset< const std::string_view > all;|templates/A.h:2:
size_t h = std::hash<std::wstring>()(path);|templates/A.h:2:
std::unordered_set<size_t> m_numbers;|
KeyedMap<std::string, int> m_rows;|
ROWS

# Names: a declaration, text of the finding ("" for none).
tree=$scratch/names
mkdir -p "$tree/util"
cp "$checks/../../.clang-tidy" "$tree"
while IFS='|' read -r code text; do
    echo "$code" >"$tree/util/A.h"
    expect "$code" "$([ -z "$text" ] && echo 0 || echo 1)" "$text" "$checks/names.sh" "$tree"
done <<'ROWS'
struct bad_name {};|util/A.h:1:8: error: invalid case style for struct 'bad_name'
class A { int count = 0; };|invalid case style for private member 'count'
#include "util/None.h"|'util/None.h' file not found
class A { int m_count = 0; void addTo(int sum); };|
ROWS
mkdir -p "$tree/util/win"
printf '#include <windows.h>\nvoid bad_name(HWND window);\n' >"$tree/util/win/B.h"
expect "a name in a Windows header" 1 "util/win/B.h:2:6: error: invalid case style for function 'bad_name'" \
    "$checks/names.sh" "$tree"

# Counting: CTest's status of the program, its results file, the count.
tree=$scratch/count
while IFS='|' read -r ended results counts; do
    rm -rf "$tree"
    mkdir -p "$tree/tests/a"
    printf '<testcase name="a_tests" classname="a_tests" time="1" status="%s">\n' "$ended" >"$tree/junit.xml"
    [ -z "$results" ] || printf '%s\n' "$results" '</testsuites>' >"$tree/tests/a/a_tests.xml"
    expect "count of '$ended' with '$results'" 0 "$counts" "$checks/count.sh" "$tree"
done <<'ROWS'
run|<testsuites tests="7" failures="0" disabled="0" errors="0" name="AllTests">|7 0
fail|<testsuites tests="7" failures="2" disabled="0" errors="0" name="AllTests">|5 2
fail|<testsuites tests="7" failures="0" disabled="0" errors="0" name="AllTests">|7 1
run|<testsuites tests="7" failures="0" disabled="1" errors="0" name="AllTests">|6 1
run|<testsuites tests="0" failures="0" disabled="0" errors="0" name="AllTests">|0 1
fail||0 1
run||0 1
ROWS
rm "$tree/junit.xml"
expect "count of a run that left nothing" 0 "0 1" "$checks/count.sh" "$tree"
exit $status
