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
symbols=$("$nm" --defined-only --extern-only --no-sort "$@" | grep -E '^[0-9a-f]+ [A-Za-z] ')
# As the compiler spells it: not every nm can take apart what compilers make of lambdas. Statics of
# functions, and what belongs to a type, have letters before it.
inside="_Z[A-Z]*N[A-Z]*4KAVO10Graphics2D${#level}$level"

# The sanitizers and exceptions need symbols of their own, which the linker keeps apart.
if grep -vE "^[0-9a-f]+ [A-Za-z] ($inside|DW\.ref\.|__odr_asan)" <<<"$symbols"; then
    echo "level $level: the symbols above are not in its namespace"
    exit 1
fi
grep -q "${inside}11kLevelTable" <<<"$symbols" || { echo "level $level has no table"; exit 1; }
echo "level $level: $(wc -l <<<"$symbols") symbols, all of them in its namespace"
