#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# installed-test.sh BUILD-FOLDER MARKDOWN-CHECK: what belongs to the tools and the manual is installed where systems look for it.
set -euo pipefail
build=$1 links=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work" >/dev/null

missing() { echo "not installed: $1" >&2; exit 1; }
for tool in "$work"/bin/*; do
    name=${tool##*/}
    [ -f "$work/share/man/man1/$name.1" ] || missing "the manual page of $name"
    [ -f "$work/share/bash-completion/completions/$name" ] || missing "the completion of $name"
    { "$tool" --help 2>&1 || true; } | grep usage >/dev/null || missing "$name that runs"
done
for tool in zalasm zaldiff zalinfo; do [ -x "$work/bin/$tool" ] || missing "$tool"; done
pages=$(find "$work/share/doc" -name README.md)
[ -n "$pages" ] || missing "README.md"
python3 -B "$links" "${pages%/*}"
