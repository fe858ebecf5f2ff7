// SPDX-License-Identifier: MIT
#include "tests/support/FakeLayoutEngine.h"

#include "platform/LayoutEngine.h"

#include <vector>

FakeLayoutEngine fakeLayoutEngine;

namespace {

// Not 0 when the call is to fail.
int32_t refused()
{
    ++fakeLayoutEngine.calls;
    const bool fails = fakeLayoutEngine.failAt != 0 && --fakeLayoutEngine.failAt == 0;
    return fails ? fakeLayoutEngine.refusal : 0;
}

struct Counted {
    Counted() { ++fakeLayoutEngine.objectsAlive; }
    ~Counted() { --fakeLayoutEngine.objectsAlive; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

} // namespace

struct TsLayoutControl {};
struct TsLayoutOptions : Counted {};
struct TsFont : Counted {};
struct TsFontStyle : Counted {
    const TsFontStyleCalls* calls;
    void* user;
};
struct TsText : Counted {
    std::vector<uint16_t> units;
    TsFontStyle* style;
};
struct TsLayout : Counted {
    const TsText* text;
    std::vector<uint32_t> starts; // of each line, and behind the last
};
struct TsGlyph : Counted {
    const TsGlyphCalls* calls;
    void* user;
};

namespace {

bool advanceOf(const TsText& text, uint32_t i, int32_t& advance)
{
    TsGlyph* glyph = text.style->calls->createGlyph(text.style->user, &text.units[i]);
    if (glyph == nullptr) return false;
    TsPoint point;
    glyph->calls->advance(glyph->user, &point);
    glyph->calls->release(glyph->user);
    delete glyph;
    advance = point.x;
    return true;
}

// The end of the line that starts at start; start itself when a glyph fails.
uint32_t lineEnd(const TsText& text, uint32_t start, int64_t limit)
{
    int64_t width = 0;
    uint32_t afterSpace = start;
    for (uint32_t i = start; i < text.units.size(); ++i) {
        int32_t advance;
        if (!advanceOf(text, i, advance)) return start;
        width += advance;
        if (text.units[i] == ' ')
            afterSpace = i + 1;
        else if (width > limit && i > start)
            return afterSpace > start ? afterSpace : i;
    }
    return static_cast<uint32_t>(text.units.size());
}

} // namespace

extern "C" {

TsLayoutControl* TsLayoutControl_new(void*)
{
    return refused() != 0 ? nullptr : new TsLayoutControl;
}

void TsLayoutControl_delete(TsLayoutControl* control)
{
    delete control;
}

TsLayoutOptions* TsLayoutOptions_new(void)
{
    return refused() != 0 ? nullptr : new TsLayoutOptions;
}

void TsLayoutOptions_defaults(TsLayoutOptions*) {}

int32_t TsLayoutOptions_set(TsLayoutOptions*, uint32_t option, uint32_t value)
{
    return option == TS_OPTION_BREAKING && value == TS_BREAK_BY_WORDS ? refused() : 1;
}

void TsLayoutOptions_delete(TsLayoutOptions* options)
{
    delete options;
}

TsFont* TsFont_new(const TsFontCalls*, void*)
{
    return refused() != 0 ? nullptr : new TsFont;
}

void TsFont_delete(TsFont* font)
{
    delete font;
}

void TsFontParam_defaults(TsFontParam* param)
{
    *param = {};
}

TsFontStyle* TsFontStyle_new(TsFont*, const TsFontParam*, const TsFontStyleCalls* calls, void* user)
{
    return refused() != 0 ? nullptr : new TsFontStyle{{}, calls, user};
}

void TsFontStyle_delete(TsFontStyle* style)
{
    delete style;
}

TsText* TsText_new(void)
{
    return refused() != 0 ? nullptr : new TsText{{}, {}, nullptr};
}

int32_t TsText_setFontStyle(TsText* text, TsFontStyle* style, int32_t, int32_t)
{
    text->style = style;
    return refused();
}

int32_t TsText_insertRun(TsText* text, const uint16_t* units, uint32_t count, uint32_t, int32_t)
{
    text->units.assign(units, units + count);
    return refused();
}

void TsText_delete(TsText* text)
{
    delete text;
}

TsLayout* TsLayout_new(TsText* text, TsLayoutControl*, const TsLayoutOptions*)
{
    return refused() != 0 ? nullptr : new TsLayout{{}, text, {0}};
}

int32_t TsLayout_compose(TsLayout* layout, int32_t width, uint32_t* lineCount)
{
    std::vector<uint32_t>& starts = layout->starts;
    while (starts.back() < layout->text->units.size()) {
        const uint32_t end = lineEnd(*layout->text, starts.back(), int64_t{width} * 65536);
        if (end == starts.back()) return 1;
        starts.push_back(end);
    }
    *lineCount = static_cast<uint32_t>(starts.size()) - 1;
    return refused();
}

int32_t TsLayout_getLineInfo(const TsLayout* layout, uint32_t line, TsLineInfo* info)
{
    info->glyphCount = layout->starts[line + 1] - layout->starts[line];
    return 0;
}

int32_t TsLayout_getGlyphInfo(const TsLayout* layout, uint32_t line, uint32_t glyph,
                              TsGlyphInfo* info)
{
    info->character = layout->text->units[layout->starts[line] + glyph];
    return refused();
}

void TsLayout_delete(TsLayout* layout)
{
    delete layout;
}

TsGlyph* TsGlyph_new(const TsGlyphCalls* calls, void* user)
{
    return refused() != 0 ? nullptr : new TsGlyph{{}, calls, user};
}

void TsPoint_setCoords(TsPoint* point, int32_t x, int32_t y)
{
    *point = {x, y};
}

void TsRect_setCoords(TsRect* rect, int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    *rect = {left, top, right, bottom};
}

} // extern "C"
