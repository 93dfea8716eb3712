#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# picture-test.sh DEMO ZALDIFF REPOSITORY: the picture on the first page is what the demo draws.
set -euo pipefail
demo=$1 zaldiff=$2 root=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$demo" "$root/Examples/models/teapot.obj" --size 640x360 --out "$work/demo.png" >/dev/null
"$zaldiff" --tolerance 8 --within 0.99 "$work/demo.png" "$root/docs/pictures/demo.png"
