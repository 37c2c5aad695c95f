# Shared by script/* and .ci/run: finds the checkout, installs what is missing, configures, builds.
# Installing and building report on standard error and read nothing: standard input and output
# belong to the engine.

root=$(cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.." && pwd -P)

say() { printf '%s\n' "$*" >&2; }

# present PACKAGE: whether what this Debian package brings is here, however it was installed.
present() {
    case $1 in
        ninja-build) command -v ninja ;;
        clang) command -v clang++ ;;
        libgtest-dev) [[ -e /usr/include/gtest/gtest.h || -e /usr/local/include/gtest/gtest.h ]] ;;
        lib*) dpkg-query -W -f '${Status}\n' "$1" | grep 'ok installed' ;;
        *) command -v "$1" ;;
    esac &>/dev/null
}

# need PACKAGE...: installs the missing ones; where that is not possible, names them and exits.
need() {
    local package missing=() as_root=(env)
    for package in "$@"; do
        present "$package" || missing+=("$package")
    done
    if [[ ${#missing[@]} -eq 0 ]]; then
        return
    fi
    if [[ $EUID -ne 0 ]]; then
        as_root=(sudo)
    fi
    if ! command -v apt-get >/dev/null || ! command -v "${as_root[0]}" >/dev/null; then
        say "Please install the following (these are Debian's package names): ${missing[*]}"
        exit 1
    fi
    say "Installing ${missing[*]} ..."
    {
        "${as_root[@]}" apt-get update || say "The package lists could not be renewed; going on."
        "${as_root[@]}" DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 \
            install -y --no-install-recommends "${missing[@]}"
    } </dev/null >&2
}

# configure PRESET [CMAKE-ARGUMENT...]
configure() { cmake -S "$root" --preset "$@" </dev/null >&2; }

# build PRESET [BUILD-ARGUMENT...]: silent when everything is up to date.
build() {
    local preset=$1
    shift
    cmake --build "$root/build/$preset" "$@" </dev/null 2>&1 |
        { grep --line-buffered -v -e 'no work to do' -e 'Re-checking globbed' || true; } >&2
}
