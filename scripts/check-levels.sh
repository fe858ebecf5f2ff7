#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when an object that is compiled for a level of the processor defines a symbol for others
# outside the level's namespace: the linker might take it for the whole library, which would then
# need such a processor.
#
#   scripts/check-levels.sh NM LEVEL OBJECT...
set -euo pipefail

nm=$1
level=$2
shift 2
symbols=$("$nm" --demangle --defined-only --extern-only --no-sort "$@" | grep -E '^[0-9a-f]+ [A-Za-z] ')
inside="KAVO::Graphics2D::$level::"

# What belongs to something of the level, and what the sanitizers need, which the linker keeps apart.
if grep -vE "^[0-9a-f]+ [A-Za-z] ([a-z ]*\bfor )?([^(]* )?$inside|DW\.ref\.|__odr_asan" <<<"$symbols"; then
    echo "level $level: the symbols above are not in $inside"
    exit 1
fi
grep -q "${inside}kLevelTable" <<<"$symbols" || { echo "level $level has no table"; exit 1; }
echo "level $level: $(wc -l <<<"$symbols") symbols, all of them in $inside"
