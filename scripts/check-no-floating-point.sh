#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when the library computes in floating point anywhere.
#
#   scripts/check-no-floating-point.sh OBJDUMP OBJECT...
#
# Looks for the keywords in the library's sources, and for floating-point instructions and the
# compiler's software routines for them in its objects. Moves through vector registers are fine:
# integer code uses them too.
set -euo pipefail

objdump=$1
shift
cd "$(dirname "$0")/.."

sources=()
for folder in graphics2d math memory util; do
    [ -d "$folder" ] && sources+=("$folder")
done
status=0

# Comments may say what they like.
if find "${sources[@]}" -name '*.h' -o -name '*.cpp' | LC_ALL=C sort | while read -r file; do
    sed -e 's|//.*||' "$file" | grep -nwE 'float|double' | sed "s|^|$file:|"
done | grep .; then
    echo "floating-point types in the sources above"
    status=1
fi

x87='f(i?(add|sub|mul|div)r?p?|i?(ld|st)p?[slt]*|u?comi?p?p?|sqrt|abs|chs|xch|rndint|prem1?)[slt]*'
sse='v?(add|sub|mul|div|sqrt|min|max|rcp|rsqrt|cmp[a-z]*|u?comi|round|fn?madd[0-9]+)(ss|sd|ps|pd)'
convert='v?cvt[a-z0-9]+'
arm32='v(add|sub|n?mul|div|n?ml[as]|fn?m[as]|sqrt|cmpe?|cvt[a-z]?|abs|neg)\.f(16|32|64)[a-z0-9.]*'
arm64='(f(add|sub|n?mul|div|n?madd|n?msub|sqrt|cmpe?|cvt[a-z]*|abs|neg|rint[a-z]|max|min)|[su]cvtf)'
soft='<?__(aeabi_[fd](add|sub|mul|div|2[a-z]+)|(add|sub|mul|div)[sdt]f3|fix[a-z]*[sdt]f[a-z]i)'

# A line of the disassembly: address, tab, mnemonic, operands.
if "$objdump" -d --no-show-raw-insn "$@" |
    grep -E "^ *[0-9a-f]+:[[:space:]]+($x87|$sse|$convert|$arm32|$arm64)([[:space:]]|$)|$soft" |
    sort | uniq -c | sort -rn | head -n 20 | grep .; then
    echo "floating-point instructions in the library's objects, as above"
    status=1
fi

[ $status = 0 ] && echo "no floating point in ${sources[*]}, nor in $# objects"
exit $status
