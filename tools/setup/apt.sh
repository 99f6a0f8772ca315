# Installing Debian packages; sourced by setup.sh, which gives say, die and $log.

# Prints those of the packages named that are not installed.
missing_packages() {
    local package native state
    native=$(dpkg --print-architecture)
    for package in "$@"; do
        case $package in
        *:*) state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || state= ;;
        *) # a package for all architectures is known without a suffix only
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
    local try
    for try in 1 2 3; do
        as_root apt-get update >>"$log" 2>&1 && return 0
        sleep $((try * 3))
    done
    say "the package lists could not be brought up to date in full; going on with what is known"
}

install_missing() { # what package...
    local what=$1 missing
    shift
    command -v dpkg-query >/dev/null || die "this is not a Debian machine; install by hand: $*"
    missing=$(missing_packages "$@" | tr '\n' ' ')
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
        die "$what must be installed, and there is no sudo here. As root: apt-get install $missing"
    fi
    say "installing $what: $missing"
    case " $missing" in
    *:i386\ *) dpkg --print-foreign-architectures | grep -qx i386 || as_root dpkg --add-architecture i386 ;;
    esac
    update_package_lists
    # Libraries of two architectures must be of one version. Where an update has reached only
    # one of them so far, the versions of the release itself fit together.
    # shellcheck disable=SC2086 # a list of words
    apt_install $missing || apt_install -t "$(. /etc/os-release && echo "$VERSION_CODENAME")" $missing || {
        tail -n 15 "$log" >&2
        return 1
    }
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@" \
        >>"$log" 2>&1 </dev/null
}
