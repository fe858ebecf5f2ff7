// SPDX-License-Identifier: MIT
// The font engine on FreeType.
//
// Outlines are loaded in font units and transformed here, in 64 bits, so that one em may become
// anything from nothing to thousands of pixels under any transform without losing precision;
// FreeType then renders the 26.6 outline.
#include "platform/FontEngine.h"
#include "platform/freetype/LightHinting.h"

#include <cstdlib>
#include <cstring>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

// Greatest size of a glyph image, per side, and of one that is drawn as a whole: rendering takes a
// byte for each pixel.
constexpr int64_t kMaxSide = 32767;
constexpr int64_t kMaxPixels = 16 << 20;

// 26.6 coordinates beyond which the offsets from the pen do not fit their 16 bits.
constexpr int64_t kMaxCoordinate = kMaxSide * 64;

constexpr size_t kBitmapOffset = offsetof(FS_GrayMap, bitmap);
constexpr size_t kMaxNameBytes = 32;

bool lightHinting = false;

struct Scale { // 16.16 pixels per em
    int32_t xx;
    int32_t xy;
    int32_t yx;
    int32_t yy;
};

struct Engine {
    FT_Library library;
    FT_Face face; // null until a font is registered
    char name[kMaxNameBytes];
    int32_t boldFraction; // of the em, 16.16
    Scale scale;
};

// The caller's block: the engine in its first words, whether a font is registered in the fifth.
struct StateBlock {
    Engine* engine;
    alignas(8) uint32_t unused[2];
    uint32_t fontRegistered;
};
static_assert(offsetof(StateBlock, fontRegistered) == FS_REGISTERED_BYTE &&
                  sizeof(StateBlock) <= FS_STATE_BYTES,
              "the block's size and fifth word are the interface's");

Engine* engineOf(void* state)
{
    return state != nullptr ? static_cast<StateBlock*>(state)->engine : nullptr;
}

FT_Face faceOf(void* state)
{
    const Engine* engine = engineOf(state);
    return engine != nullptr ? engine->face : nullptr;
}

// Quotient rounded to nearest, halves up, for a positive divisor.
int64_t roundedQuotient(int64_t value, int64_t divisor)
{
    const int64_t shifted = 2 * value + divisor;
    const int64_t quotient = shifted / (2 * divisor);
    return shifted % (2 * divisor) < 0 ? quotient - 1 : quotient;
}

// Maps an outline from font units to 26.6 pixels. False when it leaves the range of glyph images.
bool transformOutline(FT_Outline& outline, const Scale& scale, int64_t unitsPerEm)
{
    const int64_t divisor = unitsPerEm * 1024; // 16.16 per em to 26.6
    for (int i = 0; i < outline.n_points; ++i) {
        FT_Vector& point = outline.points[i];
        const int64_t x =
            roundedQuotient(scale.xx * int64_t{point.x} + scale.xy * int64_t{point.y}, divisor);
        const int64_t y =
            roundedQuotient(scale.yx * int64_t{point.x} + scale.yy * int64_t{point.y}, divisor);
        if (x < -kMaxCoordinate || x > kMaxCoordinate || y < -kMaxCoordinate || y > kMaxCoordinate)
            return false;
        point.x = static_cast<FT_Pos>(x);
        point.y = static_cast<FT_Pos>(y);
    }
    return true;
}

// Most of the emboldening goes into the width of the stems: as much in height would close the
// counters of small sizes.
struct Emboldening {
    FT_Pos x;
    FT_Pos y;
};

Emboldening emboldeningOf(int32_t fraction, int64_t em)
{
    const int64_t whole = em * fraction;
    return {static_cast<FT_Pos>(roundedQuotient(whole * 3, 4 << 16)),
            static_cast<FT_Pos>(roundedQuotient(whole, 4 << 16))};
}

// Whether the current glyphs stand upright, so that hinting them makes sense.
bool isHintable(const Scale& scale)
{
    constexpr int32_t kMostPixels = 1000 << 16;
    return scale.xy == 0 && scale.yx == 0 && scale.xx > 0 && scale.yy > 0 &&
           scale.xx < kMostPixels && scale.yy < kMostPixels;
}

// Loads a glyph, hinted and emboldened, in 26.6 pixels into the face's slot.
bool loadHinted(const Engine& engine, FT_UInt index)
{
    const FT_F26Dot6 width = engine.scale.xx >> 10;
    const FT_F26Dot6 height = engine.scale.yy >> 10;
    if (FT_Set_Char_Size(engine.face, width, height, 72, 72) != 0) return false;
    if (FT_Load_Glyph(engine.face, index, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) != 0)
        return false;
    FT_GlyphSlot glyph = engine.face->glyph;
    if (glyph->format != FT_GLYPH_FORMAT_OUTLINE) return false;
    const FT_Pos x = emboldeningOf(engine.boldFraction, width).x;
    const FT_Pos y = emboldeningOf(engine.boldFraction, height).y;
    return engine.boldFraction == 0 || FT_Outline_EmboldenXY(&glyph->outline, x, y) == 0;
}

// Loads a glyph in font units into the face's slot.
bool loadUnscaled(FT_Face face, FT_UInt index)
{
    constexpr FT_Int32 kFlags = FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP;
    return FT_Load_Glyph(face, index, kFlags) == 0 &&
           face->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
}

// The advance along one axis, cut to 32 bits.
int32_t scaledAdvance(int32_t scale, int64_t units, int64_t unitsPerEm)
{
    const int64_t advance = roundedQuotient(scale * units, unitsPerEm);
    if (advance > INT32_MAX) return INT32_MAX;
    return advance < INT32_MIN ? INT32_MIN : static_cast<int32_t>(advance);
}

// The box of an outline in whole pixels, y up.
struct PixelExtent {
    int64_t left;
    int64_t bottom;
    int64_t width;
    int64_t height;

    // The bytes of a row in a record, which is rounded up so that its own padding lies inside.
    size_t stride() const { return static_cast<size_t>((width + 1) / 2); }

    size_t recordBytes() const
    {
        const size_t bytes = kBitmapOffset + stride() * static_cast<size_t>(height);
        return bytes < sizeof(FS_GrayMap) ? sizeof(FS_GrayMap) : bytes;
    }

    bool fits() const
    {
        return width <= kMaxSide && height <= kMaxSide && left >= INT16_MIN && left <= INT16_MAX &&
               bottom + height >= INT16_MIN && bottom + height <= INT16_MAX;
    }
};

PixelExtent extentOf(const FT_Outline& outline)
{
    FT_BBox box;
    FT_Outline_Get_CBox(const_cast<FT_Outline*>(&outline), &box);
    const int64_t left = box.xMin >> 6;
    const int64_t bottom = box.yMin >> 6;
    return {left, bottom, ((box.xMax + 63) >> 6) - left, ((box.yMax + 63) >> 6) - bottom};
}

// Packs 8-bit coverage into 4 bits; of all roundings tried this one errs least.
void packRow(uint8_t* packed, const uint8_t* coverage, int64_t width)
{
    for (int64_t x = 0; x < width; ++x) {
        const uint32_t level = (coverage[x] + 8u) / 17u;
        if (x % 2 == 0)
            packed[x / 2] = static_cast<uint8_t>(level << 4);
        else
            packed[x / 2] = static_cast<uint8_t>(packed[x / 2] | level);
    }
}

// Renders an outline of the given extent into a packed bitmap. False when memory runs out.
bool renderOutline(FT_Library library, FT_Outline& outline, const PixelExtent& extent,
                   uint8_t* packed, size_t stride)
{
    const size_t width = static_cast<size_t>(extent.width);
    const size_t height = static_cast<size_t>(extent.height);
    uint8_t* coverage = static_cast<uint8_t*>(std::calloc(height, width));
    if (coverage == nullptr) return false;
    FT_Bitmap bitmap = {};
    bitmap.rows = static_cast<unsigned int>(height);
    bitmap.width = static_cast<unsigned int>(width);
    bitmap.pitch = static_cast<int>(width); // positive: the top row comes first
    bitmap.buffer = coverage;
    bitmap.num_grays = 256;
    bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
    FT_Outline_Translate(&outline, static_cast<FT_Pos>(-extent.left * 64),
                         static_cast<FT_Pos>(-extent.bottom * 64));
    const bool rendered = FT_Outline_Get_Bitmap(library, &outline, &bitmap) == 0;
    for (size_t y = 0; rendered && y < height; ++y)
        packRow(packed + y * stride, coverage + y * width, extent.width);
    std::free(coverage);
    return rendered;
}

// Loads a glyph as an outline in 26.6 pixels into the face's slot. False when it has none or memory
// runs out. An outline that leaves the range of glyph images becomes an empty box: what cannot be
// drawn still has its advance.
bool loadScaled(const Engine& engine, FT_UInt index, const Emboldening& bold, PixelExtent& extent)
{
    FT_Face face = engine.face;
    FT_Outline& outline = face->glyph->outline;
    bool inRange = true;
    if (lightHinting && isHintable(engine.scale)) {
        if (!loadHinted(engine, index)) return false;
    } else {
        if (engine.boldFraction != 0 && FT_Outline_EmboldenXY(&outline, bold.x, bold.y) != 0)
            return false;
        inRange = transformOutline(outline, engine.scale, face->units_per_EM);
    }
    extent = inRange ? extentOf(outline) : PixelExtent{};
    if (!extent.fits()) extent = {};
    return true;
}

// The image of a character. It comes without its bitmap when its record would take more than
// maxBytes, or when it has more pixels than are drawn.
FS_GrayMap* makeGraymap(const Engine& engine, uint32_t character, size_t maxBytes)
{
    FT_Face face = engine.face;
    const FT_UInt index = face != nullptr ? FT_Get_Char_Index(face, character) : 0;
    if (index == 0 || !loadUnscaled(face, index)) return nullptr;
    const Emboldening bold = emboldeningOf(engine.boldFraction, face->units_per_EM);
    const int64_t units = face->glyph->metrics.horiAdvance + bold.x;
    PixelExtent extent;
    if (!loadScaled(engine, index, bold, extent)) return nullptr;

    const bool drawn =
        extent.recordBytes() <= maxBytes && extent.width * extent.height <= kMaxPixels;
    const size_t bytes = drawn ? extent.recordBytes() : sizeof(FS_GrayMap);
    FS_GrayMap* map = static_cast<FS_GrayMap*>(std::calloc(1, bytes));
    if (map == nullptr) return nullptr;
    map->size = static_cast<uint32_t>(drawn ? bytes : kBitmapOffset);
    map->left = static_cast<int16_t>(extent.left);
    map->top = static_cast<int16_t>(extent.bottom + extent.height);
    map->advanceX = scaledAdvance(engine.scale.xx, units, face->units_per_EM);
    map->advanceY = scaledAdvance(engine.scale.yx, units, face->units_per_EM);
    map->width = static_cast<int16_t>(extent.width);
    map->height = static_cast<int16_t>(extent.height);
    map->stride = static_cast<int16_t>(extent.stride());
    if (!drawn || extent.width == 0 || extent.height == 0) return map;
    FT_Outline& outline = face->glyph->outline;
    if (renderOutline(engine.library, outline, extent, map->bitmap, extent.stride())) return map;
    std::free(map);
    return nullptr;
}

} // namespace

extern "C" {

void FS_set_light_hinting(int32_t on)
{
    lightHinting = on != 0;
}

int32_t FS_init(void* state, int32_t)
{
    if (state == nullptr) return 1;
    std::memset(state, 0, FS_STATE_BYTES);
    Engine* engine = static_cast<Engine*>(std::calloc(1, sizeof(Engine)));
    if (engine == nullptr) return 1;
    if (FT_Init_FreeType(&engine->library) != 0) {
        std::free(engine);
        return 1;
    }
    static_cast<StateBlock*>(state)->engine = engine;
    return 0;
}

int32_t FS_exit(void* state)
{
    Engine* engine = engineOf(state);
    if (engine == nullptr) return 1;
    FT_Done_FreeType(engine->library); // and its face
    std::free(engine);
    std::memset(state, 0, FS_STATE_BYTES);
    return 0;
}

int32_t FS_add_font(void* state, const char* name, const char* path, int32_t index, int32_t)
{
    Engine* engine = engineOf(state);
    if (engine == nullptr || engine->face != nullptr) return 1;
    if (std::strlen(name) >= kMaxNameBytes) return 1;
    FT_Face face;
    if (FT_New_Face(engine->library, path, index, &face) != 0) return 1;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        FT_Done_Face(face);
        return 1;
    }
    engine->face = face;
    std::strcpy(engine->name, name);
    static_cast<StateBlock*>(state)->fontRegistered = 1;
    return 0;
}

int32_t FS_set_font(void* state, const char* name)
{
    const Engine* engine = engineOf(state);
    return engine != nullptr && engine->face != nullptr && std::strcmp(engine->name, name) == 0 ? 0
                                                                                                : 1;
}

int32_t FS_set_cmap(void* state, int32_t platform, int32_t encoding)
{
    FT_Face face = faceOf(state);
    if (face == nullptr) return 1;
    for (int i = 0; i < face->num_charmaps; ++i) {
        FT_CharMap map = face->charmaps[i];
        if (map->platform_id == platform && map->encoding_id == encoding)
            return FT_Set_Charmap(face, map) == 0 ? 0 : 1;
    }
    return 1;
}

int32_t FS_font_metrics(void* state, void* metrics)
{
    int16_t* units = static_cast<int16_t*>(metrics);
    std::memset(metrics, 0, FS_METRICS_BYTES);
    FT_Face face = faceOf(state);
    const uint16_t unitsPerEm = face != nullptr ? face->units_per_EM : 1000;
    units[FS_METRICS_UNITS_PER_EM] = static_cast<int16_t>(unitsPerEm);
    units[FS_METRICS_DESCENT] = face != nullptr ? face->descender : int16_t{-200};
    units[FS_METRICS_ASCENT] = face != nullptr ? face->ascender : int16_t{800};
    return 0;
}

int32_t FS_set_bold_pct(void* state, int32_t fraction)
{
    Engine* engine = engineOf(state);
    if (engine == nullptr) return 1;
    engine->boldFraction = fraction;
    return 0;
}

int32_t FS_set_scale(void* state, int32_t xx, int32_t xy, int32_t yx, int32_t yy)
{
    Engine* engine = engineOf(state);
    if (engine == nullptr) return 1;
    engine->scale = {xx, xy, yx, yy};
    return 0;
}

void* FS_get_graymap(void* state, uint32_t character)
{
    return FS_get_graymap_within(state, character, UINT32_MAX);
}

void* FS_get_graymap_within(void* state, uint32_t character, uint32_t bytes)
{
    const Engine* engine = engineOf(state);
    return engine != nullptr ? makeGraymap(*engine, character, bytes) : nullptr;
}

int32_t FS_free_char(void*, void* graymap)
{
    std::free(graymap);
    return 0;
}

} // extern "C"
