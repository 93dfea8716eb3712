#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# install-test.sh cmake|pkg-config BUILD-FOLDER HOST-SOURCES C-COMPILER: installs the built tree into a folder of its own, moves it, builds the
# host project against it in the way named, and runs what was built.
set -euo pipefail
way=$1 build=$2 host=$3 cc=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"

expect() { # program, what it prints
    local got; got=$("$1" 2>/dev/null)
    [ "$got" = "$2" ] || { echo "$1 prints '$got', not '$2'" >&2; exit 1; }
}

if [ "$way" = cmake ]; then
    cmake -S "$host" -B "$work/host" -DCMAKE_PREFIX_PATH="$work/moved" >/dev/null
    cmake --build "$work/host" >/dev/null
    expect "$work/host/host_c" "255 102 51 255"
    expect "$work/host/host_cpp" "loaded"
else
    pc=$(find "$work/moved" -name zalmetal.pc)
    export PKG_CONFIG_PATH=${pc%/*}
    # shellcheck disable=SC2046
    "$cc" $(pkg-config --cflags zalmetal) "$host/host.c" -o "$work/host_c" $(pkg-config --libs zalmetal) "-Wl,-rpath,$(pkg-config --variable=libdir zalmetal)"
    expect "$work/host_c" "255 102 51 255"
fi
