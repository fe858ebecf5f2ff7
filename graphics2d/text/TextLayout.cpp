// SPDX-License-Identifier: MIT
// Breaking a paragraph into lines with the layout engine.
//
// The engine measures the text through the tables of calls below, which answer from this library's
// own measurements: every character is a glyph of its own, as wide as getTextWidth says.
#include "graphics2d/MMContext2D.h"
#include "platform/LayoutEngine.h"
#include "util/WideString.h"

#include <cstdlib>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kStyleExtent = 10 * kFixedOne; // ascent and descent that a style reports

// What the engine's glyph stands for, in scratch memory. The owner is the second word, so that the
// stack to give it back to is found from the record alone.
struct GlyphRecord {
    uint16_t character;
    MMContext2D* context;
};

constexpr uint32_t kGlyphRecordWords = 2;
static_assert(sizeof(GlyphRecord) == kGlyphRecordWords * sizeof(void*), "a pointer takes one word");

// The room of one line of n code units in bytes.
constexpr size_t lineBytes(uint32_t n)
{
    return (2 * size_t{n} + 5) & ~size_t{3};
}

// --- Glyphs --------------------------------------------------------------------------------------

const GlyphRecord& recordOf(void* glyph)
{
    return *static_cast<GlyphRecord*>(glyph);
}

void releaseGlyph(void* glyph)
{
    recordOf(glyph).context->scratchStack.DeAlloc(glyph);
}

TsPoint glyphOrigin(void*)
{
    return {0, 0};
}

// The width of the character where no list places or turns it.
Fixed glyphWidth(void* glyph)
{
    const GlyphRecord& record = recordOf(glyph);
    MMContext2D& context = *record.context;
    const uint32_t xCount = context.charXCount;
    const uint32_t yCount = context.charYCount;
    const uint32_t rotateCount = context.charRotateCount;
    context.charXCount = 0;
    context.charYCount = 0;
    context.charRotateCount = 0;
    const Fixed width = context.getTextWidth(&record.character, 1);
    context.charXCount = xCount;
    context.charYCount = yCount;
    context.charRotateCount = rotateCount;
    return width;
}

void glyphAdvance(void* glyph, TsPoint* result)
{
    TsPoint_setCoords(result, glyphWidth(glyph), 0);
}

void glyphBounds(void* glyph, TsRect* result)
{
    TsRect_setCoords(result, 0, 0, glyphWidth(glyph), 0);
}

// --- Answers that are the same for all -----------------------------------------------------------

void* answerSelf(void* object)
{
    return object;
}

int32_t answerZero(void*)
{
    return 0;
}

int32_t answerOne(void*)
{
    return 1;
}

int32_t answerExtent(void*)
{
    return kStyleExtent;
}

int32_t answerUnmapped(void*, uint32_t value, uint32_t* result)
{
    *result = value;
    return 0;
}

void answerUnmappedPair(void*, uint32_t first, uint32_t second, uint32_t* firstResult,
                        uint32_t* secondResult)
{
    *firstResult = first;
    *secondResult = second;
}

int32_t answerRun(void*, uint32_t, uint32_t, uint16_t* level, uint32_t* before, uint32_t* after)
{
    *before = 0;
    *after = 0;
    *level = 9;
    return 0;
}

constexpr TsGlyphCalls kGlyphCalls = {releaseGlyph, glyphOrigin, glyphAdvance, glyphBounds,
                                      answerZero};

// --- Font styles and fonts: their object is the context ------------------------------------------

TsGlyph* createGlyph(void* style, const uint16_t* character)
{
    MMContext2D& context = *static_cast<MMContext2D*>(style);
    GlyphRecord* record = static_cast<GlyphRecord*>(context.scratchStack.Alloc(kGlyphRecordWords));
    if (record == nullptr) {
        context.outOfMemory |= kScratchExhausted;
        return nullptr;
    }
    *record = {*character, &context};
    TsGlyph* glyph = TsGlyph_new(&kGlyphCalls, record);
    if (glyph == nullptr) context.scratchStack.DeAlloc(record);
    return glyph;
}

constexpr TsFontStyleCalls kFontStyleCalls = {
    answerSelf,   answerUnmapped,     answerRun,  createGlyph, answerZero,
    answerZero,   answerZero,         answerZero, answerZero,  answerExtent,
    answerExtent, answerUnmappedPair, answerZero};

constexpr TsFontCalls kFontCalls = {answerSelf, answerZero,     answerOne, answerZero,
                                    answerZero, answerUnmapped, answerZero};

// --- The engine's objects for one paragraph ------------------------------------------------------

enum class LayoutResult { kDone, kRefused, kOutOfMemory };

// Made one after the other and deleted from the last to the first.
class ParagraphLayout {
public:
    ParagraphLayout() = default;
    ParagraphLayout(const ParagraphLayout&) = delete;
    ParagraphLayout& operator=(const ParagraphLayout&) = delete;
    ~ParagraphLayout()
    {
        if (layout_ != nullptr) TsLayout_delete(layout_);
        if (text_ != nullptr) TsText_delete(text_);
        if (style_ != nullptr) TsFontStyle_delete(style_);
        if (font_ != nullptr) TsFont_delete(font_);
        if (options_ != nullptr) TsLayoutOptions_delete(options_);
    }

    LayoutResult compose(MMContext2D& context, const uint16_t* text, int32_t width)
    {
        if (!prepare(context)) return LayoutResult::kOutOfMemory;
        const uint32_t length = static_cast<uint32_t>(MMwsstrlen(text));
        if (TsText_insertRun(text_, text, length, TS_RUN_UTF16, 0) != 0)
            return LayoutResult::kRefused;
        layout_ =
            TsLayout_new(text_, static_cast<TsLayoutControl*>(context.layoutControl), options_);
        if (layout_ == nullptr) return LayoutResult::kOutOfMemory;
        uint32_t lineCount = 0;
        if (TsLayout_compose(layout_, width, &lineCount) != 0) return LayoutResult::kRefused;
        lineCount_ = static_cast<uint16_t>(lineCount);
        return LayoutResult::kDone;
    }

    uint16_t lineCount() const { return lineCount_; }

    // A copy of a line in a block of its own, or null when there is no memory. A character that the
    // engine refuses ends it.
    uint16_t* copyLine(uint32_t line) const
    {
        TsLineInfo info = {};
        TsLayout_getLineInfo(layout_, line, &info);
        uint16_t* units = static_cast<uint16_t*>(std::malloc(lineBytes(info.glyphCount)));
        if (units == nullptr) return nullptr;
        uint32_t i = 0;
        for (; i < info.glyphCount; ++i) {
            TsGlyphInfo glyph = {};
            if (TsLayout_getGlyphInfo(layout_, line, i, &glyph) != 0) break;
            units[i] = static_cast<uint16_t>(glyph.character);
        }
        units[i] = 0;
        return units;
    }

private:
    bool prepare(MMContext2D& context)
    {
        options_ = TsLayoutOptions_new();
        if (options_ == nullptr) return false;
        TsLayoutOptions_defaults(options_);
        if (TsLayoutOptions_set(options_, TS_OPTION_BREAKING, TS_BREAK_BY_WORDS) != 0) return false;
        font_ = TsFont_new(&kFontCalls, &context);
        if (font_ == nullptr) return false;
        TsFontParam param;
        TsFontParam_defaults(&param);
        style_ = TsFontStyle_new(font_, &param, &kFontStyleCalls, &context);
        if (style_ == nullptr) return false;
        text_ = TsText_new();
        return text_ != nullptr &&
               TsText_setFontStyle(text_, style_, TS_TEXT_START, TS_TEXT_END) == 0;
    }

    TsLayoutOptions* options_ = nullptr;
    TsFont* font_ = nullptr;
    TsFontStyle* style_ = nullptr;
    TsText* text_ = nullptr;
    TsLayout* layout_ = nullptr;
    uint16_t lineCount_ = 0;
};

} // namespace

void MMContext2D::createLayoutManager()
{
    layoutControl = nullptr;
}

void MMContext2D::destroyLayoutManager()
{
    if (layoutControl != nullptr)
        TsLayoutControl_delete(static_cast<TsLayoutControl*>(layoutControl));
    layoutControl = nullptr;
}

MMTextLayout* MMContext2D::createTextLayout(const uint16_t* text, int32_t width)
{
    if (text == nullptr) return nullptr;
    if (layoutControl == nullptr) layoutControl = TsLayoutControl_new(this);
    if (layoutControl == nullptr) return nullptr;

    ParagraphLayout paragraph;
    const LayoutResult result = paragraph.compose(*this, text, width);
    if (result == LayoutResult::kOutOfMemory) outOfMemory |= kScratchExhausted;
    if (result != LayoutResult::kDone) return nullptr;

    MMTextLayout* layout = static_cast<MMTextLayout*>(std::calloc(1, sizeof(MMTextLayout)));
    const uint16_t lineCount = paragraph.lineCount();
    if (layout != nullptr && lineCount != 0) {
        layout->lines = static_cast<uint16_t**>(std::calloc(lineCount, sizeof(uint16_t*)));
        if (layout->lines != nullptr) layout->lineCount = lineCount;
    }
    bool complete = layout != nullptr && layout->lineCount == lineCount;
    for (uint32_t i = 0; complete && i < lineCount; ++i) {
        layout->lines[i] = paragraph.copyLine(i);
        complete = layout->lines[i] != nullptr;
    }
    if (complete) return layout;
    outOfMemory |= kScratchExhausted;
    destroyTextLayout(layout);
    return nullptr;
}

void MMContext2D::destroyTextLayout(MMTextLayout* layout)
{
    if (layout == nullptr) return;
    for (uint32_t i = 0; i < layout->lineCount; ++i)
        std::free(layout->lines[i]);
    std::free(layout->lines);
    std::free(layout);
}

} // namespace Graphics2D
} // namespace KAVO
