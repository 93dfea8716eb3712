#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# install-test.sh cmake|pkg-config|debian BUILD-FOLDER HOST-SOURCES C-COMPILER: installs the built tree into a folder of its own,
# moves it, builds the host project against it in the way named, and runs what was built. For debian the tree is what the
# package holds.
set -euo pipefail
way=$1 build=$2 host=$3 cc=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if [ "$way" = debian ]; then
    cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/packages" >/dev/null
    dpkg-deb -x "$work"/packages/libzalmetal-dev_*.deb "$work/unpacked"
    mv "$work/unpacked/usr" "$work/moved"
    [ -s "$work/moved/share/doc/libzalmetal-dev/copyright" ] || { echo "the package says nothing of its licence" >&2; exit 1; }
else
    cmake --install "$build" --prefix "$work/installed" >/dev/null
    mv "$work/installed" "$work/moved"
fi

expect() { # program, what it prints
    local got; got=$("$1" 2>/dev/null)
    [ "$got" = "$2" ] || { echo "$1 prints '$got', not '$2'" >&2; exit 1; }
}

if [ "$way" != pkg-config ]; then
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
