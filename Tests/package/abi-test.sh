#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# abi-test.sh ABI C-COMPILER: the comparison of two libraries accepts what is added and refuses what is taken away or changed.
set -euo pipefail
abi=$1 cc=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

library() { # name, source
    echo "$2" >"$work/$1.c"
    "$cc" -g -shared -fPIC "$work/$1.c" -o "$work/$1.so" -Wl,-soname,lib.so
}
expect() { # status, new library
    local status=0
    "$abi" "$work/old.so" "$work/$2.so" >"$work/said" 2>&1 || status=$?
    [ $status -eq "$1" ] || { cat "$work/said"; echo "$2: status $status, not $1" >&2; exit 1; }
}

library old 'int size(int x) { return x; } int count(void) { return 1; }'
library more 'int size(int x) { return x; } int count(void) { return 1; } int third(void) { return 3; }'
library less 'int size(int x) { return x; }'
library wider 'int size(long x) { return (int)x; } int count(void) { return 1; }'
expect 0 old
expect 0 more
expect 1 less
expect 1 wider
