#!/bin/bash
# SPDX-License-Identifier: MIT
# What svg2png says to bad files and options: one line, and exit code 1.
set -u
svg2png=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
failures=0

# refused NAME ARGUMENTS...: must fail with 1 and a line that says why.
refused() {
    local name=$1 status=0
    shift
    timeout 20 "$svg2png" "$@" "$folder/out.png" 2> "$folder/message" > /dev/null || status=$?
    if [ $status != 1 ] || [ "$(wc -l < "$folder/message")" != 1 ] ||
        ! grep -q '^svg2png: ..*' "$folder/message"; then
        echo "$name: exit code $status, message: $(cat "$folder/message")"
        failures=$((failures + 1))
    fi
}

good='<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><path d="M1 1h8v8z"/></svg>'
echo "$good" > "$folder/good.svg"
: > "$folder/empty.svg"
echo '<html/>' > "$folder/other.svg"
echo '<svg><g>' > "$folder/open.svg"
echo "${good/width=\"10\"/width=\"1e6\"}" > "$folder/huge.svg"
echo "${good/width=\"10\"/width=\"0\"}" > "$folder/flat.svg"
head -c 3000 /dev/urandom > "$folder/noise.svg"

refused "missing file" "$folder/missing.svg"
for bad in empty other open huge flat noise; do
    refused "$bad file" "$folder/$bad.svg"
done
refused "folder" "$folder"
refused "size 0" --size 0x0 "$folder/good.svg"
refused "size too large" --size 100000 "$folder/good.svg"
refused "size no number" --size ten "$folder/good.svg"
refused "scale" --scale -1 "$folder/good.svg"
refused "background" --background nothing "$folder/good.svg"
refused "font without a name" --font "" "$folder/good.svg"
refused "missing font" --font "$folder/missing.ttf" "$folder/good.svg"
refused "font that is none" --font "$folder/good.svg" "$folder/good.svg"
refused "standard input that is a folder" - < "$folder"
refused "option" --frobnicate "$folder/good.svg"

refused "size not a number" --size nan "$folder/good.svg"
refused "size without end" --size inf "$folder/good.svg"
refused "size with more behind it" --size 10x10x10 "$folder/good.svg"

# complains NAME ARGUMENTS...: must fail with 1 and a line that says why, whatever is written where.
complains() {
    local name=$1 status=0
    shift
    "$svg2png" "$@" 2> "$folder/message" > /dev/null || status=$?
    if [ $status != 1 ] || [ "$(wc -l < "$folder/message")" != 1 ]; then
        echo "$name: exit code $status, message: $(cat "$folder/message")"
        failures=$((failures + 1))
    fi
}
mkdir "$folder/other" "$folder/pictures"
cp "$folder/good.svg" "$folder/other/good.svg"
complains "no files"
complains "value that is missing" "$folder/good.svg" "$folder/out.png" --size
complains "folder as output" "$folder/good.svg" "$folder/pictures"
complains "drawing as output" "$folder/good.svg" "$folder/good.svg"
complains "picture without a name" --out "$folder/pictures" -
complains "one picture of two drawings" --out "$folder/pictures" "$folder/good.svg" \
    "$folder/other/good.svg"
[ "$(cat "$folder/good.svg")" = "$good" ] || failures=$((failures + 1))
if [ -e /dev/full ]; then
    complains "full device" "$folder/good.svg" /dev/full
fi

"$svg2png" - "$folder/piped.png" < "$folder/good.svg" || failures=$((failures + 1))
"$svg2png" "$folder/good.svg" "$folder/named.png"
cmp "$folder/piped.png" "$folder/named.png" || failures=$((failures + 1))

# Strict: what is not drawn is a failure, but the picture is there.
echo "${good/<path/<foreignObject/><path}" > "$folder/foreign.svg"
"$svg2png" "$folder/foreign.svg" "$folder/out.png" 2> /dev/null || failures=$((failures + 1))
rm "$folder/out.png"
complains "strict" --strict "$folder/foreign.svg" "$folder/out.png"
[ -s "$folder/out.png" ] || failures=$((failures + 1))

"$svg2png" --size 20x10 --background white "$folder/good.svg" "$folder/out.png" || failures=1
if "$svg2png" "$folder/good.svg" "$folder/no/such/folder.png" 2> /dev/null; then
    echo "wrote into a folder that is not there"
    failures=$((failures + 1))
fi
[ $failures = 0 ]
