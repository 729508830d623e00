# Shared by the scripts beside it, which source it: installing what is missing, configuring, building.
# shellcheck shell=bash

set -euo pipefail

project="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$project"

say() {
    printf '%s\n' "$*" >&2
}

fail() {
    say "$@"
    exit 1
}

# The test builds with and without Qt compile the same files to the same objects. With ccache, the second build reuses
# those of the first, because the build folder is left out of the hash, and so does another checkout, because paths are
# made relative.
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER="${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}" CCACHE_NOHASHDIR=1
    export CCACHE_BASEDIR="${CCACHE_BASEDIR:-$project}"
fi

# packages_of SECTION...: the names in these sections of packages.txt, one a line.
packages_of() {
    local section
    for section in "$@"; do
        sed -n "/^\[$section\]/,/^\[/{ /^\[/d; s/#.*//; s/[[:space:]]//g; /^\$/d; p }" packages.txt
    done
}

# missing_of SECTION...: those packages of the sections that this machine does not have.
missing_of() {
    local package
    for package in $(packages_of "$@"); do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            printf '%s\n' "$package"
        fi
    done
}

# apt_get ARGUMENT...: runs apt-get as root, through sudo for any other user.
apt_get() {
    local -a environment=(env DEBIAN_FRONTEND=noninteractive)
    if [ "$(id -u)" -eq 0 ]; then
        "${environment[@]}" apt-get "$@" >&2
    elif command -v sudo >/dev/null; then
        sudo "${environment[@]}" apt-get "$@" >&2
    else
        say "Installing packages needs root, and this machine has no sudo."
        return 1
    fi
}

# install_missing SECTION...: installs the packages of these sections that are missing. When none is missing, it neither
# runs apt-get nor uses the network. Fails when something cannot be installed.
install_missing() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "This machine has no apt-get: the packages in packages.txt are taken to be installed by other means."
        return 0
    fi
    local -a missing
    mapfile -t missing < <(missing_of "$@")
    if [ "${#missing[@]}" -eq 0 ]; then
        return 0
    fi
    say "Installing: ${missing[*]}"
    if apt_get update -q && apt_get install -q -y --no-install-recommends "${missing[@]}"; then
        return 0
    fi
    say "These packages could not be installed: ${missing[*]}"
    say "See apt-get's messages above. Install them as root and start again:"
    say "    apt-get update && apt-get install ${missing[*]}"
    return 1
}

require_packages() {
    install_missing "$@" || exit 1
}

# Qt is wanted, but a machine that cannot have it still gets everything else.
want_window_packages() {
    install_missing window desktop || say "Going on without the window."
    install_missing recommend || say "Going on with Qt's own texts in English."
}

# build PRESET FOLDER [CMAKE_ARGUMENT...]: configures and builds. Writes nothing to standard output.
build() {
    local preset="$1" folder="$2"
    shift 2
    local log="$folder/configure.log"
    mkdir -p "$folder"
    if ! cmake --preset "$preset" -B "$folder" "$@" >"$log" 2>&1; then
        cat "$log" >&2
        fail "CMake could not configure $folder: see above."
    fi
    if [ ! -e "$folder/.ninja_log" ]; then
        say "Building $folder: this takes some minutes the first time."
    fi
    cmake --build "$folder" -- --quiet >&2 || fail "Building $folder failed: see above."
}
