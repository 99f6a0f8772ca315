# Boost.Filesystem's sources for the Windows build; sourced by setup.sh.
#
# They are taken from the source package of the very version whose headers are installed,
# with the machine's own package sources, so that both builds use one version. Only the
# library's own sources are kept, in build/libs/boost; the build compiles them.

fetch_boost_sources() {
    local version target=$root/build/libs/boost work
    version=$(dpkg-query -W -f '${source:Version}' libboost-filesystem1.81-dev)
    [ "$(cat "$target/version" 2>/dev/null)" != "$version" ] || return 0
    say "fetching the sources of Boost.Filesystem $version for the Windows build"
    work=$(mktemp -d)
    mkdir -p "$work/parts" "$work/lists/partial" "$work/cache/archives/partial" "$work/unpacked"
    source_lists "$work/parts"
    local apt=(apt-get -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/parts"
        -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work/cache" -o APT::Sandbox::User=root)
    local pause
    for pause in 2 5 0; do
        "${apt[@]}" update >>"$log" 2>&1 && break
        sleep $pause
    done
    (cd "$work" && "${apt[@]}" source --download-only --tar-only "boost1.81=$version") >>"$log" 2>&1 || {
        tail -n 15 "$log" >&2
        rm -rf "$work"
        die "Boost's source package can't be fetched"
    }
    tar -xJf "$work"/boost1.81_*.orig.tar.xz -C "$work/unpacked" --strip-components=1 \
        boost/libs/filesystem/src boost/LICENSE_1_0.txt
    rm -rf "$target"
    mkdir -p "$target"
    cp -r "$work/unpacked/." "$target"
    echo "$version" >"$target/version" # last: says that all before it is whole
    rm -rf "$work"
}

# Writes the machine's package sources into a folder, asking for source packages.
source_lists() { # folder
    local file
    for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ -f "$file" ] || continue
        sed -nE 's/^[[:space:]]*deb[[:space:]]+/deb-src /p' "$file" >"$1/$(basename "$file" .list).list"
    done
    for file in /etc/apt/sources.list.d/*.sources; do
        [ -f "$file" ] || continue
        sed -E 's/^[Tt]ypes:.*/Types: deb-src/' "$file" >"$1/$(basename "$file")"
    done
}
