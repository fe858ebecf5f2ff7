// SPDX-License-Identifier: MIT
#include "tests/support/FakeFontEngine.h"

#include "platform/FontEngine.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

FakeFontEngine fakeFontEngine;

namespace {

// 1 when the call is to fail.
int32_t refused(FontCall call)
{
    return fakeFontEngine.refused >> call & 1;
}

// Longer glyphs have no bitmap.
constexpr int64_t kMostPixels = 1000;

// Pixels for the longer one of two 16.16 lengths along an axis.
int64_t pixelsOf(int64_t a, int64_t b)
{
    return std::min<int64_t>((std::max(std::abs(a), std::abs(b)) + 0x8000) >> 16, INT16_MAX);
}

int levelAt(uint32_t character, int32_t x, int32_t y)
{
    return character == 'g' ? (x + y) % 16 : 15;
}

} // namespace

extern "C" {

int32_t FS_init(void* state, int32_t)
{
    std::memset(state, 0, FS_STATE_BYTES);
    ++fakeFontEngine.inits;
    return refused(kInit);
}

int32_t FS_exit(void*)
{
    ++fakeFontEngine.exits;
    return 0;
}

int32_t FS_add_font(void* state, const char*, const char* path, int32_t, int32_t)
{
    fakeFontEngine.fontPath = path;
    if (refused(kAddFont)) return 1;
    static_cast<uint8_t*>(state)[FS_REGISTERED_BYTE] = 1;
    return 0;
}

int32_t FS_set_font(void*, const char*)
{
    return refused(kSetFont);
}

int32_t FS_set_cmap(void*, int32_t platform, int32_t encoding)
{
    return platform == 3 && encoding == 1 ? refused(kSetCharacterMap) : 1;
}

int32_t FS_font_metrics(void*, void* metrics)
{
    if (refused(kMetrics)) return 1;
    int16_t* units = static_cast<int16_t*>(metrics);
    std::memset(metrics, 0, FS_METRICS_BYTES);
    units[FS_METRICS_UNITS_PER_EM] = 1000;
    units[FS_METRICS_DESCENT] = -200;
    units[FS_METRICS_ASCENT] = 800;
    return 0;
}

int32_t FS_set_bold_pct(void*, int32_t fraction)
{
    if (!refused(kSetBold)) fakeFontEngine.boldFraction = fraction;
    return refused(kSetBold);
}

int32_t FS_set_scale(void*, int32_t xx, int32_t xy, int32_t yx, int32_t yy)
{
    ++fakeFontEngine.scalesSet;
    if (!refused(kSetScale)) fakeFontEngine.scale = {xx, xy, yx, yy};
    return refused(kSetScale);
}

void* FS_get_graymap(void* state, uint32_t character)
{
    return FS_get_graymap_within(state, character, UINT32_MAX);
}

void* FS_get_graymap_within(void*, uint32_t character, uint32_t maxBytes)
{
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (refused(kGetGlyph) || refused(kAddFont) || character < ' ' || isSurrogate) return nullptr;
    const FakeFontEngine::Scale& scale = fakeFontEngine.scale;
    const int32_t parts = character == 'i' ? 2 : 1;
    const int64_t width = character == ' ' ? 0 : pixelsOf(scale.xx, scale.xy) / parts;
    const int64_t height = character == ' ' ? 0 : pixelsOf(scale.yy, scale.yx);
    const int64_t stride = (width + 1) / 2;
    const size_t whole = sizeof(FS_GrayMap) + static_cast<size_t>(stride * height);
    const bool drawn = whole <= maxBytes && width <= kMostPixels && height <= kMostPixels;
    FS_GrayMap* map = static_cast<FS_GrayMap*>(std::calloc(1, drawn ? whole : sizeof(FS_GrayMap)));
    if (map == nullptr) return nullptr;
    map->size = drawn ? static_cast<uint32_t>(whole) : offsetof(FS_GrayMap, bitmap);
    map->left = character == 'j' ? -1 : 0;
    map->top = map->height = static_cast<int16_t>(height);
    map->advanceX = scale.xx / parts;
    map->advanceY = scale.yx / parts;
    map->width = static_cast<int16_t>(width);
    map->stride = static_cast<int16_t>(stride);
    for (int32_t y = 0; drawn && y < height; ++y)
        for (int32_t x = 0; x < width; ++x) { // of two pixels, the left one is in the high half
            const int level = levelAt(character, x, y);
            map->bitmap[y * stride + x / 2] |= static_cast<uint8_t>(level << (x % 2 == 0 ? 4 : 0));
            fakeFontEngine.levelsDrawn += level;
        }
    ++fakeFontEngine.glyphsMade;
    if (drawn) fakeFontEngine.pixelsDrawn += width * height;
    ++fakeFontEngine.glyphsAlive;
    return map;
}

int32_t FS_free_char(void*, void* graymap)
{
    if (graymap != nullptr) --fakeFontEngine.glyphsAlive;
    std::free(graymap);
    return 0;
}

} // extern "C"
