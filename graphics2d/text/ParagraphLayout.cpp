// SPDX-License-Identifier: MIT
// The layout engine's objects for one paragraph.
//
// The engine measures the text through the tables of calls below, which answer from this library's
// own measurements: every character is a glyph of its own, as wide as it is drawn.
#include "graphics2d/text/ParagraphLayout.h"

#include "graphics2d/OutOfMemory.h"
#include "graphics2d/text/TextRendering.h"
#include "util/WideString.h"

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
    return widthOf(*record.context, {&record.character, 1, 0, false, false});
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
        noteOutOfMemory(context);
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

} // namespace

ParagraphLayout::~ParagraphLayout()
{
    if (layout_ != nullptr) TsLayout_delete(layout_);
    if (text_ != nullptr) TsText_delete(text_);
    if (style_ != nullptr) TsFontStyle_delete(style_);
    if (font_ != nullptr) TsFont_delete(font_);
    if (options_ != nullptr) TsLayoutOptions_delete(options_);
}

bool ParagraphLayout::compose(MMContext2D& context, const uint16_t* text, int32_t width)
{
    const int32_t result = tryToCompose(context, text, width);
    if (result == TS_OUT_OF_MEMORY) noteOutOfMemory(context);
    return result == 0;
}

// 0, TS_OUT_OF_MEMORY, or what the engine answers when it refuses.
int32_t ParagraphLayout::tryToCompose(MMContext2D& context, const uint16_t* text, int32_t width)
{
    if (context.layoutControl == nullptr) context.layoutControl = TsLayoutControl_new(&context);
    if (context.layoutControl == nullptr || !prepare(context)) return TS_OUT_OF_MEMORY;
    const uint32_t length = static_cast<uint32_t>(MMwsstrlen(text));
    const int32_t inserted = TsText_insertRun(text_, text, length, TS_RUN_UTF16, 0);
    if (inserted != 0) return inserted;
    layout_ = TsLayout_new(text_, static_cast<TsLayoutControl*>(context.layoutControl), options_);
    if (layout_ == nullptr) return TS_OUT_OF_MEMORY;
    uint32_t lineCount = 0;
    const int32_t composed = TsLayout_compose(layout_, width, &lineCount);
    if (composed == 0) lineCount_ = static_cast<uint16_t>(lineCount);
    return composed;
}

// Everything that is made before the text is known. None of it fails but for memory.
bool ParagraphLayout::prepare(MMContext2D& context)
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
    return text_ != nullptr && TsText_setFontStyle(text_, style_, TS_TEXT_START, TS_TEXT_END) == 0;
}

uint32_t ParagraphLayout::lengthOf(uint32_t line) const
{
    TsLineInfo info = {};
    TsLayout_getLineInfo(layout_, line, &info);
    return info.glyphCount;
}

void ParagraphLayout::copyLine(uint32_t line, uint16_t* units) const
{
    const uint32_t length = lengthOf(line);
    uint32_t i = 0;
    for (; i < length; ++i) {
        TsGlyphInfo glyph = {};
        if (TsLayout_getGlyphInfo(layout_, line, i, &glyph) != 0) break;
        units[i] = static_cast<uint16_t>(glyph.character);
    }
    units[i] = 0;
}

} // namespace Graphics2D
} // namespace KAVO
