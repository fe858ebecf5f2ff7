#include "tests/support/FakeLayoutEngine.h"

#include "platform/LayoutEngine.h"

#include <cstdlib>
#include <cstring>
#include <new>

FakeLayoutEngine fakeLayoutEngine;

struct TsLayoutControl {
    char unused;
};
struct TsLayoutOptions : TsLayoutControl {};
struct TsFont : TsLayoutControl {};
struct TsFontStyle {
    const TsFontStyleCalls* calls;
    void* user;
};
struct TsText {
    uint16_t* units;
    uint32_t count;
    TsFontStyle* style;
};
struct TsLayout {
    const TsText* text;
    uint32_t lineCount;
    uint32_t* starts; // of each line, and behind the last
};
struct TsGlyph {
    const TsGlyphCalls* calls;
    void* user;
};

namespace {

bool refused()
{
    ++fakeLayoutEngine.calls;
    return fakeLayoutEngine.failAt != 0 && --fakeLayoutEngine.failAt == 0;
}

template <class T>
T* make(T value = {})
{
    T* object = refused() ? nullptr : static_cast<T*>(std::malloc(sizeof(T)));
    if (object == nullptr) return nullptr;
    ++fakeLayoutEngine.objectsAlive;
    return new (object) T(value);
}

void drop(void* object)
{
    --fakeLayoutEngine.objectsAlive;
    std::free(object);
}

bool advanceOf(const TsText& text, uint32_t i, int32_t& advance)
{
    TsGlyph* glyph = text.style->calls->createGlyph(text.style->user, text.units + i);
    if (glyph == nullptr) return false;
    TsPoint point;
    glyph->calls->advance(glyph->user, &point);
    glyph->calls->release(glyph->user);
    drop(glyph);
    advance = point.x;
    return true;
}

// The end of the line that starts at start; start itself when a glyph fails.
uint32_t lineEnd(const TsText& text, uint32_t start, int64_t limit)
{
    int64_t width = 0;
    uint32_t afterSpace = start;
    for (uint32_t i = start; i < text.count; ++i) {
        int32_t advance;
        if (!advanceOf(text, i, advance)) return start;
        width += advance;
        if (text.units[i] == ' ')
            afterSpace = i + 1;
        else if (width > limit && i > start)
            return afterSpace > start ? afterSpace : i;
    }
    return text.count;
}

} // namespace

extern "C" {

TsLayoutControl* TsLayoutControl_new(void*)
{
    return refused() ? nullptr
                     : static_cast<TsLayoutControl*>(std::calloc(1, sizeof(TsLayoutControl)));
}

void TsLayoutControl_delete(TsLayoutControl* control)
{
    std::free(control);
}

TsLayoutOptions* TsLayoutOptions_new(void)
{
    return make<TsLayoutOptions>();
}

void TsLayoutOptions_defaults(TsLayoutOptions*) {}

int32_t TsLayoutOptions_set(TsLayoutOptions*, uint32_t option, uint32_t value)
{
    return refused() || option != 13 || value != 2 ? 1 : 0;
}

void TsLayoutOptions_delete(TsLayoutOptions* options)
{
    drop(options);
}

TsFont* TsFont_new(const TsFontCalls*, void*)
{
    return make<TsFont>();
}

void TsFont_delete(TsFont* font)
{
    drop(font);
}

void TsFontParam_defaults(TsFontParam* param)
{
    std::memset(param, 0, sizeof *param);
}

TsFontStyle* TsFontStyle_new(TsFont*, const TsFontParam*, const TsFontStyleCalls* calls, void* user)
{
    return make<TsFontStyle>({calls, user});
}

void TsFontStyle_delete(TsFontStyle* style)
{
    drop(style);
}

TsText* TsText_new(void)
{
    return make<TsText>();
}

int32_t TsText_setFontStyle(TsText* text, TsFontStyle* style, int32_t, int32_t)
{
    text->style = style;
    return refused() ? 1 : 0;
}

int32_t TsText_insertRun(TsText* text, const uint16_t* units, uint32_t count, uint32_t, int32_t)
{
    if (refused()) return 1;
    text->units = static_cast<uint16_t*>(std::malloc((count + 1) * sizeof(uint16_t)));
    if (text->units == nullptr) return 1;
    std::memcpy(text->units, units, count * sizeof(uint16_t));
    text->count = count;
    return 0;
}

void TsText_delete(TsText* text)
{
    std::free(text->units);
    drop(text);
}

TsLayout* TsLayout_new(TsText* text, TsLayoutControl*, const TsLayoutOptions*)
{
    return make<TsLayout>({text, 0, nullptr});
}

int32_t TsLayout_compose(TsLayout* layout, int32_t width, uint32_t* lineCount)
{
    if (refused()) return 1;
    const TsText& text = *layout->text;
    layout->starts = static_cast<uint32_t*>(std::calloc(text.count + 1, sizeof(uint32_t)));
    if (layout->starts == nullptr) return 1;
    while (layout->starts[layout->lineCount] < text.count) {
        const uint32_t start = layout->starts[layout->lineCount];
        const uint32_t end = lineEnd(text, start, int64_t{width} * 65536);
        if (end == start) return 1;
        layout->starts[++layout->lineCount] = end;
    }
    *lineCount = layout->lineCount;
    return 0;
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
    return refused() ? 1 : 0;
}

void TsLayout_delete(TsLayout* layout)
{
    std::free(layout->starts);
    drop(layout);
}

TsGlyph* TsGlyph_new(const TsGlyphCalls* calls, void* user)
{
    return make<TsGlyph>({calls, user});
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
