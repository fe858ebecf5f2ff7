#!/bin/bash
# SPDX-License-Identifier: MIT
# svgview in a window of its own: keys, pointer and changed files in, pixels, title and standard
# output back. Waits for what must come, and fails when it does not.
#
#   window.sh SVGVIEW
set -u
svgview=${1:-}
skip() { echo "skipped: $1"; exit 77; }
[ -n "$svgview" ] || skip "svgview is not built, SDL2 is missing (libsdl2-dev)"
for program in Xvfb:xvfb xdotool:xdotool import:imagemagick; do
    command -v ${program%:*} > /dev/null || skip "${program%:*} is missing (Debian's ${program#*:})"
done

folder=$(mktemp -d)
server=
viewer=
clean_up() {
    [ -z "$viewer" ] || kill "$viewer" 2> /dev/null
    [ -z "$server" ] || kill "$server" 2> /dev/null
    wait
    rm -rf "$folder"
}
trap clean_up EXIT
fail() {
    echo "FAILED: $1"
    cat "$folder/messages"
    exit 1
}

# wait_for WHAT COMMAND...: until the command succeeds.
wait_for() {
    local what=$1 end=$((SECONDS + 20))
    shift
    until "$@"; do
        [ $SECONDS -lt $end ] || fail "$what"
        sleep 0.02
    done
}

# A field of 200 x 150 with a square of 50 x 50 at (50, 50), its colour given.
draw() {
    cat << EOF
<svg xmlns="http://www.w3.org/2000/svg" width="200" height="150">
  <rect id="field" width="200" height="150" fill="#eeeeee"/>
  <rect id="square" x="50" y="50" width="50" height="50" fill="$1"/>
</svg>
EOF
}
red=FF0000 tan=D2B48C green=008000 field=EEEEEE

# The colour of a pixel of the window.
pixel() {
    import -silent -window "$window" -crop "1x1+$1+$2" -depth 8 txt:- 2> /dev/null |
        sed -n 's/.*#\([0-9A-F]\{6\}\).*/\1/p'
}
# shows (X Y COLOUR)...
shows() {
    while [ $# != 0 ]; do
        [ "$(pixel "$1" "$2")" = "$3" ] || return 1
        shift 3
    done
}
# square LEFT TOP RIGHT BOTTOM COLOUR: has just these edges on the field.
square() {
    shows "$1" "$2" "$5" $(($3 - 1)) $(($4 - 1)) "$5" \
        $(($1 - 1)) "$2" $field "$1" $(($2 - 1)) $field "$3" $(($4 - 1)) $field $(($3 - 1)) "$4" $field
}
is_titled() { [ "$(xdotool getwindowname "$window")" = "$1" ]; }
has_said() { [ "$(tail -n 1 "$folder/said")" = "$1" ]; }
xdo() { xdotool "$@" || fail "xdotool $*"; }
point_at() { xdo mousemove --window "$window" "$1" "$2"; }

: > "$folder/messages"
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 640x480x24 -nolisten tcp 3> "$folder/display" 2> "$folder/server" &
server=$!
display=$(timeout 20 head -n 1 "$folder/display")
[ -n "$display" ] || fail "Xvfb does not start: $(cat "$folder/server")"
export DISPLAY=:$display
export SDL_VIDEODRIVER=x11

# What cannot be shown is answered at once, by one line.
draw red > "$folder/drawing.svg"
echo '<html/>' > "$folder/other.svg"
refused() {
    local name=$1 status=0
    shift
    timeout 20 "$@" > /dev/null 2> "$folder/messages" || status=$?
    [ $status = 1 ] || fail "$name: exit code $status"
    grep -q '^svgview: ..*' "$folder/messages" || fail "$name: no message"
    [ "$(wc -l < "$folder/messages")" = 1 ] || fail "$name: more than a line"
}
refused "no file" "$svgview"
refused "missing file" "$svgview" "$folder/missing.svg"
refused "folder" "$svgview" "$folder"
refused "no drawing" "$svgview" "$folder/other.svg"
refused "two files" "$svgview" "$folder/drawing.svg" "$folder/drawing.svg"
refused "size" "$svgview" --size 400 "$folder/drawing.svg"
refused "size 0" "$svgview" --size 0x10 "$folder/drawing.svg"
refused "background" "$svgview" --background nothing "$folder/drawing.svg"
refused "option" "$svgview" --frobnicate "$folder/drawing.svg"
refused "font" "$svgview" --font "$folder/other.svg" "$folder/drawing.svg"
refused "no display" env -u DISPLAY "$svgview" "$folder/drawing.svg"

# What system libraries keep until the end of the process is no leak of ours.
ASAN_OPTIONS=${ASAN_OPTIONS:-}:detect_leaks=0 "$svgview" --size 400x300 "$folder/drawing.svg" \
    > "$folder/said" 2> "$folder/messages" &
viewer=$!
window=$(timeout 20 xdotool search --sync --onlyvisible --name '^drawing.svg - 200 %$' | head -n 1)
[ -n "$window" ] || fail "no window with the title"
xdo windowfocus --sync "$window"

# Fitted: twice its size.
wait_for "the drawing fills the window" square 100 100 200 200 $red
shows 0 0 $field 399 0 $field 399 299 $field || fail "to its corners"

point_at 150 150
xdo click 1
wait_for "a click on the square says so" has_said square
wait_for "and the title" is_titled "drawing.svg - 200 % - #square"
point_at 50 150
xdo click 1
wait_for "a click on the field says so" has_said field

# Dragging: the picture moves by just that, and what was outside of it is white.
xdo mousedown 1
xdo mousemove_relative --sync 20 -5 mousemove_relative --sync 17 -16
xdo mouseup 1
wait_for "dragging moves the picture" square 137 79 237 179 $red
shows 36 0 FFFFFF 37 0 $field 399 278 $field 399 279 FFFFFF || fail "the edges move along"
[ "$(wc -l < "$folder/said")" = 2 ] || fail "dragging is no click"

# The wheel, on the pixel in the square's corner, whose middle stays: the square's edges, half a
# pixel before it and 99.5 behind it, come to 0.78 and 155.47.
point_at 137 79
xdo click --repeat 2 --delay 10 4
wait_for "the wheel enlarges" is_titled "drawing.svg - 313 % - #field"
wait_for "about the pointer" shows 137 79 $red 135 79 $field 137 77 $field \
    291 79 $red 293 79 $field 137 233 $red 137 235 $field
xdo click --repeat 2 --delay 10 5
wait_for "the wheel back" square 137 79 237 179 $red

# A new size fits the drawing anew: 300 x 225 in the middle.
xdo windowsize --sync "$window" 300 285
wait_for "a new size fits the drawing" square 75 105 150 180 $red
shows 0 29 FFFFFF 0 30 $field 299 254 $field 299 255 FFFFFF || fail "it lies in the middle"
is_titled "drawing.svg - 150 % - #field" || fail "the title tells the scale"

# F5: the file has another colour, and the same size and time.
touch -r "$folder/drawing.svg" "$folder/time"
draw tan > "$folder/drawing.svg"
touch -r "$folder/time" "$folder/drawing.svg"
xdo key F5
wait_for "F5 loads the file again" square 75 105 150 180 $tan

# A changed file, put in the old one's place.
draw green > "$folder/new.svg"
mv "$folder/new.svg" "$folder/drawing.svg"
wait_for "a changed file is loaded" square 75 105 150 180 $green

# Keys: an arrow moves the sight by an eighth, 0 brings everything back.
xdo key Left
wait_for "an arrow pans" square 112 105 187 180 $green
xdo key 0
wait_for "0 fits" square 75 105 150 180 $green

[ ! -s "$folder/messages" ] || fail "there were messages"
xdo key q
status=0
wait "$viewer" || status=$?
viewer=
[ $status = 0 ] || fail "q ends with exit code $status"
