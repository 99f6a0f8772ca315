# Installing Debian packages; sourced by setup.sh, which gives say, die and $log.

# Prints those of the packages named that are not installed.
missing_packages() {
    local package native state
    native=$(dpkg --print-architecture)
    for package in "$@"; do
        case $package in
        *:*) state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || state= ;;
        *) # one of another architecture does not do, one for all architectures does
            state=$(dpkg-query -W -f '${db:Status-Status}' "$package:$native" 2>/dev/null) ||
                state=$(dpkg-query -W -f '${db:Status-Status}' "$package:all" 2>/dev/null) || state= ;;
        esac
        [ "$state" = installed ] || echo "$package"
    done
}

# Runs a command as root.
as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo -- "$@"
    fi
}

# An index that is just being renewed on the server makes an update fail for a moment, and
# packages that are known already can still be installed without it.
update_package_lists() {
    local pause
    for pause in 2 5 0; do
        as_root apt-get update >>"$log" 2>&1 </dev/null && return 0
        sleep $pause
    done
    say "the package lists could not be brought up to date in full; going on with what is known"
}

# All packages of a call are installed in one step, so that one choice of versions fits all.
install_missing() { # package...
    local missing release pin back options
    command -v dpkg-query >/dev/null || die "this is not a Debian machine; install by hand what stands for: $*"
    missing=$(missing_packages "$@" | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
        die "packages are missing, and there is no sudo here. As root: apt-get install $missing"
    fi
    case $missing in
    *:i386*)
        if ! dpkg --print-foreign-architectures | grep -qx i386; then
            say "letting this machine install 32-bit packages, for Wine"
            as_root dpkg --add-architecture i386
        fi
        ;;
    esac
    say "bringing the package lists up to date"
    update_package_lists
    # A library installed for two architectures must be of one version for both. Where an
    # update has reached only one of them so far, the release's own versions fit together; the
    # libraries among them that have the update already must then go back to those.
    release=$(. /etc/os-release && echo "${VERSION_CODENAME:-stable}")
    pin=$root/build/setup.preferences
    {
        cat /etc/apt/preferences 2>/dev/null || true
        printf '\nPackage: *\nPin: release n=%s\nPin-Priority: 1001\n' "$release"
    } >"$pin"
    back=(-o "Dir::Etc::preferences=$pin" --allow-downgrades)
    # shellcheck disable=SC2086 # a list of words
    if apt_install --simulate $missing; then
        options=()
    elif apt_install --simulate -t "$release" $missing; then
        options=(-t "$release")
    elif [[ $missing == *:i386* ]] && apt_install --simulate "${back[@]}" $missing; then
        options=("${back[@]}")
        say "an update has not reached the 32-bit libraries yet; going back to $release's own versions of:" \
            "$(downgraded) (once it has, 'apt-get upgrade' brings them up again)"
    else
        grep -A 6 'unmet dependencies' "$log" | tail -n 7 >&2
        [[ $missing != *wine* ]] ||
            say "where 32-bit Wine can't be had, ZOKA_NO_WINE=1 runs the native half alone: make test ZOKA_NO_WINE=1"
        die "these packages can't be installed here (the whole story is in $log): $missing"
    fi
    say "installing $missing"
    # shellcheck disable=SC2086
    apt_install "${options[@]}" $missing || {
        tail -n 15 "$log" >&2
        die "installing failed (the whole story is in $log)"
    }
}

# The packages that the simulation written to the log last would put back to an older version.
downgraded() {
    awk '/^The following packages will be DOWNGRADED/ { list = ""; on = 1; next }
        !/^ / { on = 0 }
        on { list = list $0 }
        END { print list }' "$log" | xargs
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@" \
        >>"$log" 2>&1 </dev/null
}
