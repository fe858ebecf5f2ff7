#!/bin/bash
# SPDX-License-Identifier: MIT
# The manual page of a program describes exactly the options that --help lists, with the same values.
#
#   man-page.sh PROGRAM PAGE
set -euo pipefail
program=$1
page=$2

# Both as sorted lines like "--size N". The page says "\-" for a hyphen.
listed=$("$program" --help | sed -nE 's/^  (--[a-z-]+( [A-Za-z]+)?)  .*/\1/p' | sort)
described=$(sed -n '/^\.SH OPTIONS/,/^\.SH EXIT/p' "$page" |
    sed -nE '/^\.BI? \\-\\-/{ s/^\.BI? //; s/\\-/-/g; s/"//g; s/ +/ /g; p }' | sort)

[ -n "$listed" ] || { echo "--help lists no options"; exit 1; }
diff <(echo "$listed") <(echo "$described") ||
    { echo "the manual page ($page, right) is not what --help says (left)"; exit 1; }
