#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# abi-test.sh ABI C-COMPILER: the comparison of two libraries accepts what is added and refuses what is taken away or changed;
# without libraries it builds the last tag and the tree, here those of a small repository.
set -euo pipefail
abi=$1
export CC=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

both='int size(int x) { return x; } int count(void) { return 1; }'
library() { # name, source
    echo "$2" >"$work/$1.c"
    "$CC" -g -shared -fPIC "$work/$1.c" -o "$work/$1.so" -Wl,-soname,lib.so
}
expect() { # status, what it says, command
    local wanted=$1 words=$2 status=0; shift 2
    "$@" >"$work/said" 2>&1 || status=$?
    [ $status -eq "$wanted" ] && grep -q "$words" "$work/said" || { cat "$work/said"; echo "$*: status $status, not $wanted" >&2; exit 1; }
}

library old "$both"
library more "$both int third(void) { return 3; }"
library less 'int size(int x) { return x; }'
library wider 'int size(long x) { return (int)x; } int count(void) { return 1; }'
expect 0 'still work' "$abi" "$work/old.so" "$work/old.so"
expect 0 'still work' "$abi" "$work/old.so" "$work/more.so"
expect 1 'would break' "$abi" "$work/old.so" "$work/less.so"
expect 1 'would break' "$abi" "$work/old.so" "$work/wider.so"

command -v git >/dev/null && command -v ninja >/dev/null || exit 0
tree=$work/tree
mkdir -p "$tree/Tools/abi"
cp "$abi" "$tree/Tools/abi/abi"
cat >"$tree/CMakeLists.txt" <<TEXT
cmake_minimum_required(VERSION 3.25)
project(Small C)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "\${CMAKE_BINARY_DIR}/lib")
add_library(ZALMetal SHARED library.c)
TEXT
git() { command git -C "$tree" -c user.name=test -c user.email=test@localhost -c commit.gpgsign=false -c tag.gpgsign=false "$@"; }
echo "$both" >"$tree/library.c"
git init -q && git add . && git commit -q -m first
expect 0 'no tag' "$tree/Tools/abi/abi"
git tag v1
expect 0 'still work' "$tree/Tools/abi/abi"
echo 'int size(int x) { return x; }' >"$tree/library.c"
expect 1 'would break' "$tree/Tools/abi/abi"
echo 'int size(int x) { return x }' >"$tree/library.c"
expect 2 'does not build' "$tree/Tools/abi/abi"
