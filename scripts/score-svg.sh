#!/bin/bash
# SPDX-License-Identifier: MIT
# Scores the SVG engine: on reference pictures that Debian's librsvg2-tests holds beside its
# drawings, and on clip art beside rsvg-convert.
#
#   scripts/score-svg.sh [--floor SHARE] BUILD_DIR OUTPUT_DIR [STRIDE [CLIPART_STRIDE]]
#
# BUILD_DIR holds the built examples. Every STRIDE-th of the references (1) and every
# CLIPART_STRIDE-th drawing of openclipart-svg (20) is rendered. Text looks different with every font,
# so drawings that hold some are drawn without it, and rsvg-convert makes their references. Two
# pictures are alike when at most one of a thousand pixels is unlike all those around its place in the
# other one. Prints for each group how many are, and how many of the others came without a message;
# the ten worst, which worst.png shows beside their references; and fails when less than SHARE of a
# hundred are alike.
set -euo pipefail

floor=0
if [ "${1:-}" = --floor ]; then
    floor=$2
    shift 2
fi
if [ $# -lt 2 ]; then
    sed -n '3,/^set/p' "$0" | grep '^#' | cut -c3-
    exit 2
fi
programs=$(realpath "$1")/examples
svg2png=$(realpath "$1")/tools/svg2png
stride=${3:-1}
clipart_stride=${4:-20}
mkdir -p "$2"
cd "$2"
rm -rf pictures && mkdir pictures
side=256 # pixels of the longer side of clip art

for package in librsvg2-tests librsvg2-bin openclipart-svg; do
    dpkg -L $package > /dev/null 2>&1 || { echo "needs the package $package" >&2; exit 2; }
done

# --- The files: number, group, drawing, reference ------------------------------------------------

every() { awk -v stride="$1" 'NR % stride == 0 || stride == 1'; }
rm -rf reftests
cp -r "$(dpkg -L librsvg2-tests | grep -m 1 '/reftests$')" reftests
find reftests -name '*.svg' | LC_ALL=C sort | every "$stride" |
    while read -r file; do
        reference=${file%.svg}-ref.png
        [ -f "$reference" ] || continue
        if grep -q '<text' "$file"; then
            perl -0777 -pi -e 's/<text\b.*?<\/text>//gs' "$file"
            reference=-
        fi
        group=$(basename "$(dirname "$file")")
        [ "$group" = svg1.1 ] && group=$(basename "${file%%-*}")
        echo "$group $file $reference"
    done > files.txt
dpkg -L openclipart-svg | grep '[.]svg$' | LC_ALL=C sort | every "$clipart_stride" |
    sed 's/.*/clipart & -/' >> files.txt
awk '{ printf "%04d %s\n", NR, $0 }' files.txt > numbered.txt

# --- Both pictures of each -----------------------------------------------------------------------

size_of() { # of a PNG file, as WxH
    od -An -j16 -N8 -tu1 "$1" |
        awk '{ print $1 * 16777216 + $2 * 65536 + $3 * 256 + $4 "x" $5 * 16777216 + $6 * 65536 + $7 * 256 + $8 }'
}
render_one() {
    local group=$2 file=$3 reference=$4 out=pictures/$1 size
    if [ "$reference" != - ]; then
        cp "$reference" "$out-peer.png"
        size=$(size_of "$reference")
    else
        [ "$group" = clipart ] || side=480
        size=$side
    fi
    timeout 60 "$svg2png" --size "$size" --background white "$file" "$out.png" 2> "$out.log" || true
    [ "$reference" = - ] || return 0
    # Both fill their last rows and columns, so that a fraction of a pixel is no difference.
    size=$(size_of "$out.png" 2> /dev/null) || return 0
    rsvg-convert --background-color white --width "${size%x*}" --height "${size#*x}" \
        --output "$out-peer.png" "$file" 2> /dev/null || true
}
export -f render_one size_of
export svg2png side
xargs -P "$(nproc)" -L 1 bash -c 'render_one "$@"' _ < numbered.txt

# --- The verdict ---------------------------------------------------------------------------------

while read -r number group file reference; do
    if [ -f "pictures/$number.png" ] && [ -f "pictures/$number-peer.png" ]; then
        echo "pictures/$number.png pictures/$number-peer.png $number"
    fi
done < numbered.txt > pairs.txt
"$programs/compare_pictures" < pairs.txt > results.txt

# stray mean silent number group file
(cd pictures && find . -name '*.log' -size +0) | tr -d ./log > spoken.txt
awk 'FILENAME == ARGV[1] { spoken[$1] = 1; next }
    FILENAME == ARGV[2] { about[$1] = $2 " " $3; next }
    { print $4, $1, !($5 in spoken), $5, about[$5] }' spoken.txt numbered.txt results.txt > scores.txt

awk '{
    all[$5]++
    if ($1 <= 1) alike[$5]++
    else if ($3) silent[$5]++
}
END {
    printf "%-16s %6s %6s %20s\n", "group", "files", "alike", "unlike, no message"
    for (group in all) {
        printf "%-16s %6d %6d %20d\n", group, all[group], alike[group], silent[group] | "sort"
    }
}' scores.txt
echo "the ten worst, in worst.png each beside its reference (stray pixels of a thousand, file):"
sort -rn scores.txt | head -n 10 > worst.txt || true
awk '{ print "  " $1, $6 }' worst.txt
awk '{ printf "pictures/%s.png\npictures/%s-peer.png\n", $4, $4 }' worst.txt > worst-list.txt
"$programs/contact_sheet" $side 4 worst-list.txt worst.png
awk -v floor="$floor" '{ alike += $1 <= 1 } END {
    share = NR ? alike * 100 / NR : 0
    printf "%d of %d alike, %.1f of a hundred\n", alike, NR, share
    exit share < floor
}' scores.txt
