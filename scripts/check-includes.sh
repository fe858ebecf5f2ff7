#!/bin/bash
# SPDX-License-Identifier: MIT
# Fails when an include of the library runs against the grain, and names it.
#
#   scripts/check-includes.sh INSTALLED_HEADER...
#
# A folder may include itself and what stands in its line below. Every wing of graphics2d may
# include the headers of the face, graphics2d/*.h, and the face none of the wings. Installed headers
# include each other by relative path, so that a program's own headers of the same names do no harm,
# and include no header that is not installed.
set -euo pipefail
cd "$(dirname "$0")/.."

directions='
math:
memory:
util:
platform:
platform/freetype:      platform math util
platform/icu:           platform util
graphics2d:             math memory util platform
graphics2d/strips:      graphics2d math memory
graphics2d/masks:       graphics2d/strips graphics2d math memory
graphics2d/raster:      graphics2d/masks graphics2d/strips graphics2d math memory
graphics2d/strokes:     graphics2d/raster graphics2d/strips graphics2d math memory
graphics2d/paths:       graphics2d/strokes graphics2d/raster graphics2d/strips graphics2d math memory
graphics2d/text:        graphics2d/masks graphics2d/strips graphics2d math memory util platform
graphics2d/sources:     graphics2d/strips graphics2d math memory
graphics2d/layers:      graphics2d/masks graphics2d/strips graphics2d math memory
graphics2d/levels:      graphics2d/layers graphics2d/masks graphics2d/sources graphics2d/strips graphics2d/text graphics2d math memory
graphics2d/convenience: graphics2d/paths graphics2d/text graphics2d math memory util platform
'

# Lines of "file:#include "name"", for awk with the installed headers and the directions.
grep -roE --include='*.h' --include='*.cpp' '^ *# *include *"[^"]*"' graphics2d math memory util platform |
    awk -F '[:"]' -v directions="$directions" -v installed="$*" -v top="$PWD/" '
    BEGIN {
        count = split(directions, line, "\n")
        for (i = 1; i <= count; i++) {
            words = split(line[i], word, "[: ]+")
            if (words == 0) continue
            known[word[1]] = may[word[1], word[1]] = 1
            for (j = 2; j <= words; j++) may[word[1], word[j]] = 1
        }
        count = split(installed, header, " ")
        for (i = 1; i <= count; i++) {
            sub("^" top, "", header[i])
            is_installed[header[i]] = 1
        }
    }
    function folder_of(path) { sub("/[^/]*$", "", path); return path }
    function complain(what) { print $1 ": " what; failed = 1 }
    {
        folder = folder_of($1)
        name = $3
        relative = name ~ /^\.\.\// || name !~ /\//
        if (relative) {
            name = folder "/" name
            while (sub("[^/]+/\\.\\./", "", name)) {}
        }
        if (!(folder in known)) complain("nothing says what " folder " may include")
        else if (!((folder, folder_of(name)) in may)) complain("must not include " name)
        if (!($1 in is_installed)) next
        if (!relative) complain("is installed and names " name " from the top")
        if (!(name in is_installed)) complain("is installed and includes " name ", which is not")
        seen++
    }
    END {
        if (!seen) { print "no installed header includes another: nothing was checked"; exit 1 }
        if (failed) exit 1
        print "all includes run one way"
    }'
