#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when a program in a document is not the one in the tree.
#
#   scripts/check-documented-code.sh DOCUMENT...
#
# A block of C++ belongs to the file that the text names last before it, as `examples/....cpp`. It
# must be that file's end, from its first line of code (after the licence, or after the includes) on.
set -euo pipefail
cd "$(dirname "$0")/.."
status=0
blocks=0

# check FILE BLOCK: says where they differ unless the block is the file's end.
check() {
    local lines
    lines=$(wc -l < "$2")
    if [ "$lines" -lt 5 ] || ! diff <(tail -n "$lines" "$1") "$2" > /dev/null; then
        echo "$document: this is not the end of $1:"
        diff <(tail -n "$lines" "$1") "$2" | head -n 20
        status=1
    elif head -n "-$lines" "$1" | grep -vE '^(//.*|#include .*|using namespace .*|)$'; then
        echo "$document: $1 begins with the code above"
        status=1
    fi
}

for document in "$@"; do
    file=
    block=
    while IFS= read -r line; do
        if [ -n "$block" ]; then
            if [ "$line" != '```' ]; then
                echo "$line" >> "$block"
                continue
            fi
            [ -z "$file" ] || { check "$file" "$block"; blocks=$((blocks + 1)); }
            rm "$block"
            block=
            file=
        elif [ "$line" = '```cpp' ]; then
            block=$(mktemp)
        elif [[ $line =~ \`(examples/[A-Za-z0-9_/]+\.cpp)\` ]]; then
            file=${BASH_REMATCH[1]}
        fi
    done < "$document"
done
echo "$blocks programs compared"
[ "$blocks" -gt 0 ] || status=1
exit $status
