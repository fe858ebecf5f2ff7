// SPDX-License-Identifier: MIT
// The layout engine on ICU, which says where lines may break: at words of languages that write
// spaces and of those that do not, not before small kana, not inside joined emoji.
#include "platform/LayoutEngine.h"
#include "platform/icu/LineFiller.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

// Opening the iterators reads tables, so a context keeps them.
struct TsLayoutControl {
    UBreakIterator* lines;
    UBreakIterator* clusters;
};

// There is one way of breaking, so all options are the same.
struct TsLayoutOptions {};

// Fonts are asked nothing: the glyphs of a style know their advances.
struct TsFont {};

struct TsFontStyle {
    const TsFontStyleCalls* calls;
    void* user;
};

struct TsText {
    uint16_t* units;
    uint32_t count;
    const TsFontStyle* style; // of the whole text
};

struct TsLayout {
    const TsText* source;
    TsLayoutControl* control;
    uint16_t* text;
    FilledLine* lines;
    uint32_t lineCount;
};

struct TsGlyph {
    const TsGlyphCalls* calls;
    void* user;
};

namespace {

// A zeroed object on the heap, or null.
template <class T>
T* make()
{
    return static_cast<T*>(std::calloc(1, sizeof(T)));
}

const UChar* icuUnits(const uint16_t* units)
{
    return reinterpret_cast<const UChar*>(units);
}

// Memory from the heap until the scope ends.
template <class T>
class HeapArray {
public:
    explicit HeapArray(size_t count) : items_(static_cast<T*>(std::malloc(count * sizeof(T)))) {}
    ~HeapArray() { std::free(items_); }
    HeapArray(const HeapArray&) = delete;
    HeapArray& operator=(const HeapArray&) = delete;
    T* data() { return items_; }
    explicit operator bool() const { return items_ != nullptr; }
    T& operator[](size_t i) { return items_[i]; }

private:
    T* items_;
};

// Asks for the advance of one character. False when its style cannot make a glyph.
bool measure(const TsFontStyle& style, uint16_t character, int32_t& advance)
{
    TsGlyph* glyph = style.calls->createGlyph(style.user, &character);
    if (glyph == nullptr) return false;
    TsPoint point = {0, 0};
    glyph->calls->advance(glyph->user, &point);
    glyph->calls->release(glyph->user);
    advance = point.x;
    return true;
}

// The width a unit takes within a line. Tabs are drawn as spaces.
bool measureUnit(const TsFontStyle& style, uint16_t unit, int32_t& advance)
{
    advance = 0;
    if (isLineEnd(unit) || unit == kSoftHyphen) return true;
    return measure(style, unit == '\t' ? uint16_t{' '} : unit, advance);
}

bool measureAll(const TsText& text, TextPosition* positions)
{
    positions[0].sum = 0;
    positions[0].visibleEnd = 0;
    for (uint32_t i = 0; i < text.count; ++i) {
        int32_t advance;
        if (!measureUnit(*text.style, text.units[i], advance)) return false;
        const bool blank = u_isWhitespace(text.units[i]) != 0;
        positions[i + 1].sum = positions[i].sum + advance;
        positions[i + 1].visibleEnd = blank ? positions[i].visibleEnd : i + 1;
    }
    return true;
}

// Whether the heap has the room that ICU's dictionaries may need. When it runs out while one of
// them starts, a single ubrk_next tries again and again without end, so nothing outside can stop
// it: they all start when a control is made, and never later. Memory functions of our own would not
// do either: ICU takes them for the whole process, and only before its first use.
bool heapHasRoom()
{
    constexpr size_t kRoom = 128 * 1024;
    void* volatile room = std::malloc(kRoom); // volatile: or the compiler leaves both calls out
    const bool has = room != nullptr;
    std::free(room);
    return has;
}

// Sets an iterator to the beginning of a text.
bool startAt(UBreakIterator* iterator, const uint16_t* units, uint32_t count)
{
    UErrorCode error = U_ZERO_ERROR;
    ubrk_setText(iterator, icuUnits(units), static_cast<int32_t>(count), &error);
    return U_SUCCESS(error);
}

// Starts the dictionaries of an iterator, one for each script that writes no spaces between words.
// Two letters of each: words are looked for from there on.
bool loadDictionaries(UBreakIterator* lines)
{
    constexpr uint16_t kLetters[] = {
        0x0E01, 0x0E01, ' ',           // Thai
        0x0E81, 0x0E81, ' ',           // Lao
        0x1000, 0x1000, ' ',           // Burmese
        0x1780, 0x1780, ' ',           // Khmer
        0x1950, 0x1950, ' ',           // Tai Le, which has none, as the following
        0x1980, 0x1980, ' ',           // New Tai Lue
        0x1A20, 0x1A20, ' ',           // Tai Tham
        0xAA80, 0xAA80, ' ',           // Tai Viet
        0xD805, 0xDF00, 0xD805, 0xDF00 // Ahom, in pairs of surrogates
    };
    if (!startAt(lines, kLetters, std::size(kLetters))) return false;
    while (ubrk_next(lines) != UBRK_DONE) {
    }
    return true;
}

// Writes into one field of all positions the boundary that follows each.
bool findBoundaries(UBreakIterator* iterator, const TsText& text, TextPosition* positions,
                    uint32_t TextPosition::*nextBoundary)
{
    if (!startAt(iterator, text.units, text.count)) return false;
    uint32_t from = 0;
    for (int32_t boundary = ubrk_next(iterator); boundary != UBRK_DONE;
         boundary = ubrk_next(iterator))
        for (; from < static_cast<uint32_t>(boundary); ++from)
            positions[from].*nextBoundary = static_cast<uint32_t>(boundary);
    for (; from <= text.count; ++from)
        positions[from].*nextBoundary = text.count;
    return true;
}

bool contains(const TsText& text, uint16_t unit)
{
    for (uint32_t i = 0; i < text.count; ++i)
        if (text.units[i] == unit) return true;
    return false;
}

void dropLines(TsLayout& layout)
{
    std::free(layout.text);
    std::free(layout.lines);
    layout.text = nullptr;
    layout.lines = nullptr;
    layout.lineCount = 0;
}

} // namespace

extern "C" {

TsLayoutControl* TsLayoutControl_new(void*)
{
    TsLayoutControl* control = heapHasRoom() ? make<TsLayoutControl>() : nullptr;
    if (control == nullptr) return nullptr;
    UErrorCode error = U_ZERO_ERROR;
    control->lines = ubrk_open(UBRK_LINE, "", nullptr, 0, &error);
    control->clusters = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error);
    if (U_SUCCESS(error) && loadDictionaries(control->lines)) return control;
    TsLayoutControl_delete(control);
    return nullptr;
}

void TsLayoutControl_delete(TsLayoutControl* control)
{
    if (control->lines != nullptr) ubrk_close(control->lines);
    if (control->clusters != nullptr) ubrk_close(control->clusters);
    std::free(control);
}

TsLayoutOptions* TsLayoutOptions_new(void)
{
    static TsLayoutOptions options;
    return &options;
}

void TsLayoutOptions_defaults(TsLayoutOptions*) {}

int32_t TsLayoutOptions_set(TsLayoutOptions*, uint32_t option, uint32_t value)
{
    return option == TS_OPTION_BREAKING && value == TS_BREAK_BY_WORDS ? 0 : 1;
}

void TsLayoutOptions_delete(TsLayoutOptions*) {}

TsFont* TsFont_new(const TsFontCalls*, void*)
{
    static TsFont font;
    return &font;
}

void TsFont_delete(TsFont*) {}

void TsFontParam_defaults(TsFontParam* param)
{
    std::memset(param, 0, sizeof *param);
}

TsFontStyle* TsFontStyle_new(TsFont*, const TsFontParam*, const TsFontStyleCalls* calls, void* user)
{
    TsFontStyle* style = make<TsFontStyle>();
    if (style != nullptr) *style = {calls, user};
    return style;
}

void TsFontStyle_delete(TsFontStyle* style)
{
    std::free(style);
}

TsText* TsText_new(void)
{
    return make<TsText>();
}

int32_t TsText_setFontStyle(TsText* text, TsFontStyle* style, int32_t from, int32_t to)
{
    if (from != TS_TEXT_START || to != TS_TEXT_END) return 1;
    text->style = style;
    return 0;
}

int32_t TsText_insertRun(TsText* text, const uint16_t* units, uint32_t count, uint32_t kind,
                         int32_t at)
{
    if (text->units != nullptr || kind != TS_RUN_UTF16 || at != 0 || count > INT32_MAX) return 1;
    const size_t bytes = size_t{count} * sizeof(uint16_t);
    text->units = static_cast<uint16_t*>(std::malloc(bytes + sizeof(uint16_t)));
    if (text->units == nullptr) return TS_OUT_OF_MEMORY;
    std::memcpy(text->units, units, bytes);
    text->count = count;
    return 0;
}

void TsText_delete(TsText* text)
{
    std::free(text->units);
    std::free(text);
}

TsLayout* TsLayout_new(TsText* text, TsLayoutControl* control, const TsLayoutOptions*)
{
    TsLayout* layout = make<TsLayout>();
    if (layout == nullptr) return nullptr;
    layout->source = text;
    layout->control = control;
    return layout;
}

int32_t TsLayout_compose(TsLayout* layout, int32_t width, uint32_t* lineCount)
{
    *lineCount = 0;
    dropLines(*layout);
    const TsText& text = *layout->source;
    if (text.style == nullptr) return 1;
    if (text.count == 0) return 0;
    HeapArray<TextPosition> positions(size_t{text.count} + 1);
    if (!positions || !measureAll(text, positions.data())) return TS_OUT_OF_MEMORY;
    if (!findBoundaries(layout->control->lines, text, positions.data(), &TextPosition::nextBreak) ||
        !findBoundaries(layout->control->clusters, text, positions.data(),
                        &TextPosition::nextCluster))
        return TS_OUT_OF_MEMORY;
    int32_t hyphenWidth = 0;
    if (contains(text, kSoftHyphen) && !measure(*text.style, kHyphen, hyphenWidth))
        return TS_OUT_OF_MEMORY;

    LineFiller filler(text.units, positions.data(), text.count, int64_t{width} * 65536,
                      hyphenWidth);
    if (!filler.fill()) return TS_OUT_OF_MEMORY;
    layout->lineCount = filler.lineCount();
    layout->text = filler.takeText();
    layout->lines = filler.takeLines();
    *lineCount = layout->lineCount;
    return 0;
}

int32_t TsLayout_getLineInfo(const TsLayout* layout, uint32_t line, TsLineInfo* info)
{
    if (line >= layout->lineCount) return 1;
    info->glyphCount = layout->lines[line].count;
    return 0;
}

int32_t TsLayout_getGlyphInfo(const TsLayout* layout, uint32_t line, uint32_t glyph,
                              TsGlyphInfo* info)
{
    if (line >= layout->lineCount || glyph >= layout->lines[line].count) return 1;
    info->index = glyph;
    info->character = layout->text[layout->lines[line].first + glyph];
    return 0;
}

void TsLayout_delete(TsLayout* layout)
{
    dropLines(*layout);
    std::free(layout);
}

// A glyph only lives while it is measured, one at a time.
TsGlyph* TsGlyph_new(const TsGlyphCalls* calls, void* user)
{
    static thread_local TsGlyph glyph;
    glyph = {calls, user};
    return &glyph;
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
