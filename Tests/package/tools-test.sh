#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# tools-test.sh PROGRAM REPOSITORY: the options that a tool's help names are those that its manual page describes and that its
# completion offers, --help and --version apart, which help need not name.
set -euo pipefail
program=$1 root=$2 tool=${1##*/}

options() { grep -oE -- '--[a-z]+(-[a-z]+)*' | grep -vxE -- '--(help|version)' | sort -u || true; }

named=$({ "$program" --help 2>&1 || true; } | options) # zalbench ends with 2 after it
described=$(sed 's/\\-/-/g' "$root/docs/man/$tool.1" | sed -n '/^\.SH OPTIONS/,/^\.SH EXIT/p' | options)
offered=$(
    # shellcheck source=/dev/null
    source "$root/Tools/completion/$tool"
    COMP_WORDS=("$program" -)
    COMP_CWORD=1
    "_$tool"
    printf '%s\n' "${COMPREPLY[@]}" | options
)
[ -n "$named" ] || { echo "$tool names no options" >&2; exit 1; }
[ "$named" = "$described" ] || { printf '%s.1 describes:\n%s\nhelp names:\n%s\n' "$tool" "$described" "$named" >&2; exit 1; }
[ "$named" = "$offered" ] || { printf 'the completion of %s offers:\n%s\nhelp names:\n%s\n' "$tool" "$offered" "$named" >&2; exit 1; }

# The completion answers to its own name, and narrows.
complete=$(bash -c 'source "$1" && complete -p "$2"' _ "$root/Tools/completion/$tool" "$tool")
[[ $complete == *"-F _$tool $tool" ]] || { echo "completion: $complete" >&2; exit 1; }
first=$(head -n 1 <<<"$named")
narrowed=$(source "$root/Tools/completion/$tool"; COMP_WORDS=("$program" "$first"); COMP_CWORD=1; "_$tool"; printf '%s' "${COMPREPLY[*]}")
[ "$narrowed" = "$first" ] || { echo "$first completes to '$narrowed'" >&2; exit 1; }

# The manual page is well-formed, where there is something to tell.
if command -v groff >/dev/null; then
    said=$(groff -man -ww -Tascii -z "$root/docs/man/$tool.1" 2>&1) || true
    [ -z "$said" ] || { echo "$said" >&2; exit 1; }
fi
