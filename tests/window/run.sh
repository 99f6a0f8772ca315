#!/bin/bash
# Runs the window tests: run.sh [-j LANES] WINDOWS_BUILD [TEST...]
#
# Each *.drive file beside this script is one test: a script that the stand-in editor carries out in a process of its
# own, in real windows. With -j the tests are shared out to that many lanes (1), each with a display and a Wine session
# of its own; within a lane they follow one another, because a session's tests share its keyboard focus and its count
# of objects. Comment lines at the head of a script may say
#   #: status N      the exit status that the process must end with (0 when not said)
#   #: says TEXT     a text that the process must write on its output; may be repeated
#   #: options TEXT  further options of zunhost, in quotes where they hold blanks
#   #: catalogue N   the templates' catalogue is one of N scripts, which have no files
#   #: scripts N     the project includes that many scripts of such a catalogue, which are in its folder and in the template folder
#   #: wizard N      there is a wizard "Many files", which copies N files
#   #: wizards N     there are N more wizards, "Wizard 1" and so on, each of 20 files
#   #: script N      the project's main script has that many values to customize
#   #: project N     the quay's project has that many more entities
#   #: parts N       runs N times, each a test of its own (NAME-1 and so on), because all of it would take too long for
#                    one; ${PART} is the part's number
#   #: parts-long N  the same where ZOKA_LONG=1 is set or the test is named; otherwise there is one part
#   #: hosts NAME..  also runs, each a test of its own (NAME-plain and so on), in the host "plain", which has no
#                    manifest, and in "aware", which knows the screen's resolution
#   #: only NAME..   runs in these hosts alone
# Each test has its own copies of the folders that it may change. Pictures and logs stay in WINDOWS_BUILD/window.
# Prints a PASS or FAIL line for each test and, last, "window tests: N passed, N failed"; ends with 1 if any failed.
set -uo pipefail
lanes=1
if [ "${1:-}" = -j ]; then
    lanes=$2
    shift 2
fi
build=$(cd "$1" && pwd) || exit 1
shift
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
watchdog=45 # seconds for one test
fault='zunhost: unhandled exception'
tries=3     # where Wine itself does not come up

windows_path() { echo "Z:${1//\//\\}"; }
directives() { sed -nE "s/^#: $2 (.*)$/\1/p" "$1"; }

# A test's folders: a project, one with a level but no scripts, one that has a project file beside its main script,
# one with all that such a file can name, one that gives the level's entities their components; a suite with templates and one without.
lay_out() { # folder
    rm -rf "$1"
    mkdir -p "$1"/{bare,suite,empty} || return 1
    cp -r "$root/samples/project" "$1/project"
    cp "$root/samples/project/main.zlm" "$1/bare/"
    cp -r "$root/samples/project" "$1/j8"
    [ -e "$1/j8/main.xml" ] || printf '<Project name="harbour"/>\r\n' >"$1/j8/main.xml"
    cp -r "$root/samples/project" "$1/town"
    cp "$root"/samples/j8project/* "$1/town/"
    cp -r "$root/samples/project" "$1/quay"
    cp "$root"/samples/quay/* "$1/quay/"
    cp -r "$root/samples/templates" "$1/suite/templates"
    cp -r "$root/samples/templates-newer" "$1/suite/templates-newer"
    [ -e "$1/suite/templates/template_6.xml" ] || printf '<TavrixTemplate name="samples"/>\r\n' >"$1/suite/templates/template_6.xml"
    chmod -R u+w "$1"
    local name folder data
    data=$(windows_path "$1/suite/templates/xml")
    for name in town quay; do
        folder=$(windows_path "$1/$name")
        sed -i "s|<Paths [^>]*>|<Paths proj_file=\"${folder//\\/\\\\}\\\\\" j8_file=\"${data//\\/\\\\}\\\\\"/>|" "$1/$name/main.xml"
    done
}

# A catalogue of that many scripts.
large_catalogue() { # scripts
    awk -v scripts="$1" 'BEGIN {
        print "<TavrixTemplate name=\"large\" type=\"full\" version=\"1\" date=\"260101\">"
        for (i = 0; i < scripts; i++) {
            printf "<Script id=\"ID%d\" directory=\"code\" filename=\"script_%d.kez\" name=\"Script %d\"", i, i, i
            printf " type=\"USER\" vers=\"3\" date=\"260101\">\n<class>Class %d</class>\n", i % 40
            printf "<desc>What script %d does.</desc>\n", i
            for (n = 1; n <= 3; n++) printf "<need>script_%d.kez</need>\n", (i + n) % scripts
            printf "<section name=\"Use\"><action name=\"act_%d\" filename=\"script_%d.kez\">", i, i
            print "Opens and closes.</action></section>\n</Script>"
        }
        print "</TavrixTemplate>"
    }'
}

# That many of its scripts, in both folders, and a main script that includes them.
large_project() { # scripts, templates folder, project folder
    awk -v scripts="$1" -v templates="$2" -v project="$3" 'BEGIN {
        print "// main"
        for (i = 0; i < scripts; i++) {
            text = sprintf("// title: Script %d\r\n// ver: 3\r\n// date: 260101\r\n\r\nvar v%d = 1;\r\n", i, i)
            file = "/script_" i ".kez"
            printf "%s", text >(templates file)
            close(templates file)
            printf "%s", text >(project file)
            close(project file)
            printf "include <script_%d.kez>;\r\n", i
        }
    }' >"$3/main.kez"
}

# A wizard of that many files.
large_wizard() { # files, templates folder
    local i
    mkdir "$2/many" || return 1
    for ((i = 0; i < $1; i++)); do printf 'file %d\n' "$i" >"$2/many/$i.txt"; done
    {
        echo '<Wizard><Title>Many files</Title><Desc>Copies many files.</Desc>'
        echo '<Defaults><Name>Many</Name><LevelMap>main</LevelMap></Defaults><Folder name="many">'
        for ((i = 0; i < $1; i++)); do echo "<File name=\"$i.txt\" folder=\"many\"/>"; done
        echo '</Folder><Folder name="sounds"/></Wizard>'
    } >"$2/wizards/many.xml"
}

# That many wizards.
many_wizards() { # wizards, templates folder
    mkdir "$2/start" || return 1
    local i
    for ((i = 1; i <= 20; i++)); do printf 'file %d\n' "$i" >"$2/start/$i.txt"; done
    awk -v wizards="$1" -v folder="$2/wizards" 'BEGIN {
        for (n = 1; n <= wizards; n++) {
            file = folder "/of" n ".xml"
            printf "<Wizard><Title>Wizard %d</Title><Desc>Makes project %d.</Desc>\n", n, n >file
            printf "<Defaults><Name>Project %d</Name><LevelMap>main</LevelMap></Defaults><Folder name=\"files\">\n", n >file
            for (i = 1; i <= 20; i++) printf "<File name=\"%d.txt\" folder=\"start\"/>\n", i >file
            print "</Folder></Wizard>" >file
            close(file)
        }
    }'
}

# A script of that many values.
large_script() { # values
    awk -v values="$1" 'BEGIN {
        for (i = 1; i <= values; i++) printf "// entry: Value %d\r\n// id: %d\r\nvar v%d = %d;\r\n", i, i, i, i
    }'
}

# The entities of a level.
many_entities() { # entities
    awk -v entities="$1" 'BEGIN {
        for (i = 1; i <= entities; i++) printf "\t\t<Entity name=\"crate_%d\" parent=\"guard\"/>\n", i
    }'
}

# Runs one script; its output is in output.txt.
drive() { # script, folder, part
    local project suite try status=1 host=zunhost EMPTY options
    project=$(windows_path "$2/project")
    suite=$(windows_path "$2/suite")
    # shellcheck disable=SC2034 # the options name it
    EMPTY=$(windows_path "$2/empty")
    eval "options=($(directives "$1" options | tr '\n' ' '))"
    [ "$3" != plain ] || host=zunhost_plain
    [ "$3" != aware ] || options+=(--dpi-aware)
    for ((try = 0; try < tries; try++)); do
        rm -f "$2/calls.log"
        timeout -k 2 $watchdog "$root/tools/run/wine.sh" "$prefix" "$build/tools/editor/$host.exe" \
            --drive "$(windows_path "$1")" --limit $((watchdog - 3)) \
            --log "$(windows_path "$2/calls.log")" --pictures "$(windows_path "$2")" --suite "$suite" \
            --set "PROJECT=$project" --set "BARE=$(windows_path "$2/bare")" --set "J8=$(windows_path "$2/j8")" --set "TOWN=$(windows_path "$2/town")" --set "QUAY=$(windows_path "$2/quay")" \
            --set "PART=${3:-1}" --set LF=$'\n' --set CRLF=$'\r\n' --set "OUT=$(windows_path "$2")" \
            --set "DLL=$(windows_path "$build/plugin/zoka.dll")" \
            --set "EXAMPLE=$(windows_path "$build/tools/editor/example_plugin.dll")" \
            --set "LEAKY=$(windows_path "$build/tests/window/leaky_plugin.dll")" \
            "${options[@]}" >"$2/output.txt" 2>&1 </dev/null
        status=$?
        # The log is the first thing that the program makes. Without it, it never ran.
        [ -e "$2/calls.log" ] && break
        echo "$(basename "$1"): Wine did not come up, status $status" >&2
    done
    return $status
}

# Prints a PASS or FAIL line for one test.
run_test() { # script[@part]
    local script=${1%.drive*}.drive part=${1##*.drive} name folder start wrong='' large status wanted text took
    name=$(basename "$script" .drive)${part/@/-}
    folder=$build/window/$name
    start=$(date +%s%N)
    if lay_out "$folder"; then
        large=$(directives "$script" catalogue)
        [ -z "$large" ] || large_catalogue "$large" >"$folder/suite/templates/template_6.xml"
        large=$(directives "$script" scripts)
        [ -z "$large" ] || large_project "$large" "$folder/suite/templates" "$folder/project"
        large=$(directives "$script" wizard)
        [ -z "$large" ] || large_wizard "$large" "$folder/suite/templates"
        large=$(directives "$script" wizards)
        [ -z "$large" ] || many_wizards "$large" "$folder/suite/templates"
        large=$(directives "$script" script)
        [ -z "$large" ] || large_script "$large" >"$folder/project/main.kez"
        large=$(directives "$script" project)
        [ -z "$large" ] || many_entities "$large" |
            sed -i -e '/fishing_boat/r /dev/stdin' "$folder/quay/main.xml"
        drive "$script" "$folder" "${part#@}"
        status=$?
        wanted=$(directives "$script" status)
        [ $status = "${wanted:-0}" ] || wrong="ended with $status instead of ${wanted:-0}"
        while IFS= read -r text; do
            grep -qF -- "$text" "$folder/output.txt" || wrong="$wrong; did not say \"$text\""
        done < <(directives "$script" says)
        # A fault as the process ends leaves its status alone. (The system's own programs may have faults, too.)
        if grep -qF "$fault" "$folder/output.txt" && ! directives "$script" says | grep -qF "$fault"; then
            wrong="$wrong; $(grep -m1 -F "$fault" "$folder/output.txt")"
        fi
    else
        wrong="its folders can't be made"
    fi
    took=$((($(date +%s%N) - start) / 100000000))
    took="$((took / 10)).$((took % 10)) s"
    if [ -z "$wrong" ]; then
        echo "PASS $name ($took)"
    else
        echo "FAIL $name ($took): ${wrong#; }"
        sed 's/^/    /' "$folder/output.txt" | tail -n 60
        echo "    last calls:"
        tail -n 15 "$folder/calls.log" 2>/dev/null | sed 's/^/      /'
    fi
}

# One lane: takes one script after another that no lane has taken yet.
if [ "${1:-}" = --lane ]; then
    prefix=$2
    taken=$3
    shift 3
    for script in "$@"; do
        mkdir "$taken/$(basename "$script")" 2>/dev/null || continue
        outcome=$(run_test "$script")
        echo "$outcome" # in one piece: the lanes write into one log
    done
    exit 0
fi

scripts=()
add() { # script, whether all of its parts are wanted
    local parts part
    parts=$(directives "$1" parts)
    [ -n "$parts" ] || [ "$2" != 1 ] || parts=$(directives "$1" parts-long)
    [ -n "$parts$(directives "$1" only)" ] || scripts+=("$1")
    for ((part = 1; part <= ${parts:-0}; part++)); do scripts+=("$1@$part"); done
    for part in $(directives "$1" hosts) $(directives "$1" only); do scripts+=("$1@$part"); done
}
if [ $# -gt 0 ]; then
    for name in "$@"; do add "$here/${name%.drive}.drive" 1; done
else
    for script in "$here"/*.drive; do add "$script" "${ZOKA_LONG:-0}"; done
fi
taken=$(mktemp -d) || exit 1
outcomes=$taken/outcomes
trap 'kill $(jobs -p) 2>/dev/null; rm -rf "$taken"' EXIT
trap 'exit 130' INT TERM
for ((lane = 1; lane <= lanes; lane++)); do
    "$root/tools/run/onecpu.sh" $((lane - 1)) "$root/tools/run/display.sh" "$0" "$build" --lane "$build/wine-lane-$lane" "$taken" "${scripts[@]}" | tee -a "$outcomes" &
done
wait
passed=$(grep -c '^PASS ' "$outcomes")
failed=$((${#scripts[@]} - passed)) # one that has no outcome has failed, too
echo "window tests: $passed passed, $failed failed"
[ $failed = 0 ] && [ $passed -gt 0 ]
