#!/bin/bash
# SPDX-License-Identifier: MIT
# Renders several hundred icons and drawings that Debian packages hold and compares them with
# rsvg-convert, a different renderer.
#
#   scripts/render-corpus.sh BUILD_DIR OUTPUT_DIR
#
# BUILD_DIR holds the built examples. Writes contact sheets, results.txt and worst.txt into
# OUTPUT_DIR. Fails when a file makes svg2png fail, makes a sanitizer speak up, or comes out blank
# where rsvg-convert draws something.
set -euo pipefail

if [ $# != 2 ]; then
    sed -n '3,/^set/p' "$0" | grep '^#' | cut -c3-
    exit 2
fi
programs=$(realpath "$1")/examples
svg2png=$(realpath "$1")/tools/svg2png
mkdir -p "$2"
cd "$2"

side=128          # pixels of the longer side
clipart_count=200 # drawings out of the thousands that there are
sheet_columns=16
sheet_cells=256

for package in librsvg2-tests librsvg2-bin openclipart-svg; do
    dpkg -L $package > /dev/null 2>&1 || { echo "needs the package $package" >&2; exit 2; }
done

# --- The files -----------------------------------------------------------------------------------

rm -rf pictures sheet-*.png && mkdir pictures
dpkg -L librsvg2-tests | grep '/adwaita/.*\.svg$' | LC_ALL=C sort > icons.txt
dpkg -L openclipart-svg | grep '\.svg$' | LC_ALL=C sort > clipart-all.txt
stride=$(($(wc -l < clipart-all.txt) / clipart_count))
awk -v stride=$stride -v most=$clipart_count \
    'NR % stride == 1 && taken < most { print; taken++ }' clipart-all.txt > clipart.txt
cat icons.txt clipart.txt | awk '{ printf "%04d %s\n", NR, $0 }' > files.txt

# --- Both renderers ------------------------------------------------------------------------------

render_one() {
    local number=$1 file=$2 out=pictures/$1 status=0
    timeout 60 "$svg2png" --size "$side" --background white "$file" "$out.png" \
        2> "$out.log" || status=$?
    echo $status > "$out.status"
    [ $status = 0 ] || return 0
    rsvg-convert --background-color white --width "$side" --height "$side" --keep-aspect-ratio \
        --output "$out-peer.png" "$file" 2> /dev/null ||
        rm -f "$out-peer.png"
}
export -f render_one
export svg2png side
# shellcheck disable=SC2016 # the inner shell expands it
xargs -P "$(nproc)" -d '\n' -n 1 bash -c 'render_one "${0%% *}" "${0#* }"' < files.txt

# --- The verdict ---------------------------------------------------------------------------------

failures=0
fail() {
    echo "FAILED: $1"
    failures=$((failures + 1))
}
: > pairs.txt
while read -r number file; do
    status=$(cat "pictures/$number.status")
    if [ "$status" != 0 ]; then
        fail "$file: exit code $status: $(head -n 1 "pictures/$number.log")"
    elif grep -qE 'Sanitizer|runtime error' "pictures/$number.log"; then
        fail "$file: $(grep -E -m 1 'Sanitizer|runtime error' "pictures/$number.log")"
    elif [ -f "pictures/$number-peer.png" ]; then
        echo "pictures/$number.png pictures/$number-peer.png $number" >> pairs.txt
    fi
done < files.txt
"$programs/compare_pictures" < pairs.txt > results.txt

name_of() { sed -n "s/^$1 //p" files.txt; }
while read -r mean blank peer_blank _ number; do
    if [ "$blank" = 1 ] && [ "$peer_blank" = 0 ]; then
        fail "$(name_of "$number"): blank, mean difference $mean"
    fi
done < results.txt

# Files about which svg2png had no reservation.
while read -r mean blank peer_blank _ number; do
    [ -s "pictures/$number.log" ] || echo "$mean $number $(name_of "$number")"
done < results.txt > supported.txt
sort -rn supported.txt | head -n 10 > worst.txt || true

# --- Contact sheets ------------------------------------------------------------------------------

find pictures -name '????.png' | LC_ALL=C sort | split -l $sheet_cells -d -a 1 - list-
for list in list-?; do
    "$programs/contact_sheet" $side $sheet_columns "$list" "sheet-${list#list-}.png"
    rm "$list"
done
while read -r mean number file; do
    printf 'pictures/%s.png\npictures/%s-peer.png\n' "$number" "$number"
done < worst.txt > worst-list.txt
"$programs/contact_sheet" $side 4 worst-list.txt worst.png
rm worst-list.txt clipart-all.txt

echo "$(wc -l < files.txt) files rendered, $failures failures"
awk '{ sum += $1 } END {
    printf "%d with supported features only: mean difference to rsvg-convert %.2f of 255\n",
           NR, NR ? sum / NR : 0 }' supported.txt
echo "the ten worst of them, in worst.png each beside rsvg-convert's:"
sed 's/^/  /' worst.txt
echo "contact sheets: $PWD/sheet-*.png"
[ $failures = 0 ]
