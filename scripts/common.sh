# SPDX-FileCopyrightText: 2026 The Merivo Connections developers
# SPDX-License-Identifier: MIT
# Shared by the scripts in this folder, which source it.

set -euo pipefail
called_from=$PWD
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

say() { printf '== %s\n' "$*"; }
fail() {
    printf '%s: %s\n' "$(basename "$0")" "$*" >&2
    exit 1
}

build_packages=(cmake g++ ninja-build qtbase5-dev qttools5-dev qttools5-dev-tools libqt5svg5-dev
                libqt5xmlpatterns5-dev libqt5sql5-sqlite libkf5archive-dev fonts-dejavu-core)
check_packages=("${build_packages[@]}" binutils clang-format clang-tidy doxygen git python3-pytest
                python3-pytest-xdist)

# from_caller PATH: prints an absolute path. A relative path starts at the folder that the script was called from.
from_caller() {
    case $1 in
    /*) printf '%s\n' "$1" ;;
    *) printf '%s\n' "$called_from/$1" ;;
    esac
}

# install_missing PACKAGE...: installs by apt-get the packages that dpkg doesn't list as installed.
install_missing() {
    command -v dpkg-query >/dev/null || {
        say "No Debian package system here; assuming that these are installed: $*"
        return
    }
    local package missing=() as_root=()
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "packages are missing and there is no sudo; as root, run: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# build PRESET [CMAKE_ARGUMENT...]: configures and builds.
build() {
    local preset=$1
    shift
    say "Building: $preset"
    mkdir -p "build/$preset"
    cmake --preset "$preset" "$@" >"build/$preset/configure.log" 2>&1 || {
        cat "build/$preset/configure.log" >&2
        fail "configuring the preset $preset failed"
    }
    # Generated sources in the build folder aren't linted; clang-tidy needs at least one check.
    printf "Checks: '-*,misc-definitions-in-headers'\n" >"build/$preset/.clang-tidy"
    cmake --build --preset "$preset"
}

# start_reader FOLDER ARGUMENT...: starts the reader of the demo build on FOLDER/drive and waits until it is ready. The
# reader is terminated when the script exits.
start_reader() {
    local folder=$1
    shift
    mkdir -p "$folder/drive"
    say "Starting a reader on $folder/drive"
    build/demo/tools/reader/merivo-reader "$@" --log "$folder/reader.log" "$folder/drive" >"$folder/reader.out" 2>&1 &
    reader=$!
    trap 'kill "$reader" 2>/dev/null || true' EXIT
    local i
    for ((i = 0; i < 100; ++i)); do
        ! grep -q '^merivo-reader: serving' "$folder/reader.out" || return 0
        kill -0 "$reader" 2>/dev/null || fail "the reader ended: $(cat "$folder/reader.out")"
        sleep 0.1
    done
    fail "the reader isn't ready; see $folder/reader.log"
}
