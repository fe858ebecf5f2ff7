// SPDX-License-Identifier: MIT
// A font engine for tests: blocks instead of letters, every call can fail, and glyphs are counted.
//
// The em is a square of pixels: a glyph image is as many pixels wide and high as the matrix makes
// of the em along its own axes, stands on the baseline and advances by one em. Every character from
// the space on has a glyph, except surrogate halves:
//   space     no bitmap
//   'g'       a gradient: level (x + y) mod 16
//   'i'       a full block of half the width, half the advance
//   'j'       a full block that starts one pixel left of the pen
//   others    a full block
// Blocks of more than 1,000 pixels along a side are without their bitmap.
#pragma once

#include <cstdint>
#include <string>

// Calls that can be refused; freeing cannot.
enum FontCall : uint32_t {
    kInit,
    kAddFont,
    kSetFont,
    kSetCharacterMap,
    kMetrics,
    kSetBold,
    kSetScale,
    kGetGlyph,
    kFontCalls
};

struct FakeFontEngine {
    struct Scale {
        int32_t xx, xy, yx, yy;
    };

    uint32_t refused = 0; // bit n: FontCall n fails

    // What has happened.
    int32_t inits = 0; // started or tried to
    int32_t exits = 0;
    int32_t glyphsMade = 0;
    int32_t glyphsAlive = 0;
    int64_t pixelsDrawn = 0; // of all glyphs
    int64_t levelsDrawn = 0; // their sum
    int32_t scalesSet = 0;
    int32_t boldFraction = -1;
    Scale scale = {};
    std::string fontPath;
};

extern FakeFontEngine fakeFontEngine;
