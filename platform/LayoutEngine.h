// SPDX-License-Identifier: MIT
// The text layout engine as the library sees it: a plain interface that a build may fill with any
// engine. platform/icu is the usual one; MM2D_LAYOUT_ENGINE names the CMake target to link.
//
// An engine breaks a text into lines. It knows nothing of fonts: fonts, font styles and glyphs are
// objects of the caller, each a table of calls and the caller's own pointer for it, which is the
// first argument of every call. Constructors return null when memory runs out; the other functions
// TS_OUT_OF_MEMORY then, and 1 when they refuse.
#pragma once

#include <stdint.h>

typedef struct TsPoint {
    int32_t x; // 16.16
    int32_t y;
} TsPoint;

typedef struct TsRect {
    int32_t left; // 16.16
    int32_t top;
    int32_t right;
    int32_t bottom;
} TsRect;

typedef struct TsLayoutControl TsLayoutControl;
typedef struct TsLayoutOptions TsLayoutOptions;
typedef struct TsFont TsFont;
typedef struct TsFontStyle TsFontStyle;
typedef struct TsText TsText;
typedef struct TsLayout TsLayout;
typedef struct TsGlyph TsGlyph;

typedef struct TsFontParam {
    uint32_t reserved[4];
} TsFontParam;

typedef struct TsLineInfo {
    uint32_t glyphCount;
} TsLineInfo;

typedef struct TsGlyphInfo {
    uint32_t index;     // of the glyph within its line
    uint32_t character; // UTF-16 code unit
} TsGlyphInfo;

// Answers of a font style. An engine need not ask for more than createGlyph; the others are there
// for engines that do. Those that are the same whatever is asked are named by their place in the
// table.
typedef struct TsFontStyleCalls {
    void* (*self)(void* style);
    int32_t (*mapped)(void* style, uint32_t value, uint32_t* result);
    int32_t (*run)(void* style, uint32_t first, uint32_t count, uint16_t* level, uint32_t* before,
                   uint32_t* after);
    TsGlyph* (*createGlyph)(void* style, const uint16_t* character);
    int32_t (*query4)(void* style);
    int32_t (*query5)(void* style);
    int32_t (*query6)(void* style);
    int32_t (*query7)(void* style);
    int32_t (*query8)(void* style);
    int32_t (*ascent)(void* style);  // 16.16
    int32_t (*descent)(void* style); // 16.16
    void (*mappedPair)(void* style, uint32_t first, uint32_t second, uint32_t* firstResult,
                       uint32_t* secondResult);
    int32_t (*query12)(void* style);
} TsFontStyleCalls;

// Answers of a font.
typedef struct TsFontCalls {
    void* (*self)(void* font);
    int32_t (*query14)(void* font);
    int32_t (*query15)(void* font);
    int32_t (*query16)(void* font);
    int32_t (*query17)(void* font);
    int32_t (*mapped)(void* font, uint32_t value, uint32_t* result);
    int32_t (*query19)(void* font);
} TsFontCalls;

// Answers of a glyph. Glyphs are released in the reverse order of their making.
typedef struct TsGlyphCalls {
    void (*release)(void* glyph);
    TsPoint (*origin)(void* glyph);
    void (*advance)(void* glyph, TsPoint* result);
    void (*bounds)(void* glyph, TsRect* result);
    int32_t (*query24)(void* glyph);
} TsGlyphCalls;

#define TS_OUT_OF_MEMORY 2

// The whole text, as the range of a font style.
#define TS_TEXT_START ((int32_t)-0x7FFFFFF6)
#define TS_TEXT_END ((int32_t)0x7FFFFFF5)

// The option that the library sets, its value, and the kind of its text runs.
#define TS_OPTION_BREAKING 13u
#define TS_BREAK_BY_WORDS 2u
#define TS_RUN_UTF16 3u

#ifdef __cplusplus
extern "C" {
#endif

// What an engine wants to keep between layouts, one for each context.
TsLayoutControl* TsLayoutControl_new(void* context);
void TsLayoutControl_delete(TsLayoutControl* control);

TsLayoutOptions* TsLayoutOptions_new(void);
void TsLayoutOptions_defaults(TsLayoutOptions* options);
int32_t TsLayoutOptions_set(TsLayoutOptions* options, uint32_t option, uint32_t value);
void TsLayoutOptions_delete(TsLayoutOptions* options);

TsFont* TsFont_new(const TsFontCalls* calls, void* user);
void TsFont_delete(TsFont* font);

void TsFontParam_defaults(TsFontParam* param);
TsFontStyle* TsFontStyle_new(TsFont* font, const TsFontParam* param, const TsFontStyleCalls* calls,
                             void* user);
void TsFontStyle_delete(TsFontStyle* style);

// A text copies the runs that are inserted into it and refers to its style.
TsText* TsText_new(void);
int32_t TsText_setFontStyle(TsText* text, TsFontStyle* style, int32_t from, int32_t to);
int32_t TsText_insertRun(TsText* text, const uint16_t* units, uint32_t count, uint32_t kind,
                         int32_t at);
void TsText_delete(TsText* text);

// A layout refers to its text, which must outlive it.
TsLayout* TsLayout_new(TsText* text, TsLayoutControl* control, const TsLayoutOptions* options);

// Fills lines of width whole units, and stores their number, at most 65,535; what follows is left
// out. A line end always breaks and is not part of a line; blanks are dropped where a line is
// broken; a word wider than the line is broken between characters; even in the narrowest line
// stands one character. A soft hyphen shows, as a hyphen, only where its line is broken at it.
int32_t TsLayout_compose(TsLayout* layout, int32_t width, uint32_t* lineCount);
int32_t TsLayout_getLineInfo(const TsLayout* layout, uint32_t line, TsLineInfo* info);
int32_t TsLayout_getGlyphInfo(const TsLayout* layout, uint32_t line, uint32_t glyph,
                              TsGlyphInfo* info);
void TsLayout_delete(TsLayout* layout);

// For createGlyph: an engine's glyph over the caller's record. The engine deletes it itself, after
// it has called release.
TsGlyph* TsGlyph_new(const TsGlyphCalls* calls, void* user);

void TsPoint_setCoords(TsPoint* point, int32_t x, int32_t y);
void TsRect_setCoords(TsRect* rect, int32_t left, int32_t top, int32_t right, int32_t bottom);

#ifdef __cplusplus
}
#endif
