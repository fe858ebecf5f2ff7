#include "tests/support/FakeFontEngine.h"

#include "platform/FontEngine.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

FakeFontEngine fakeFontEngine;

namespace {

struct Scale {
    int32_t xx, xy, yx, yy;
} scale;

bool refused(FontCall call)
{
    return (fakeFontEngine.refused >> call & 1) != 0;
}

bool hasGlyph(uint32_t character)
{
    return character >= ' ' && (character < 0xD800 || character > 0xDFFF);
}

// Pixels for a 16.16 length along either axis.
int32_t pixelsOf(int32_t length)
{
    const int64_t magnitude = length < 0 ? -int64_t{length} : length;
    return static_cast<int32_t>((magnitude + 0x8000) >> 16);
}

void fillBitmap(FS_GrayMap& map, uint32_t character)
{
    for (int32_t y = 0; y < map.height; ++y)
        for (int32_t x = 0; x < map.width; ++x) {
            uint8_t& pair = map.bitmap[y * map.stride + x / 2];
            const int level = character == 'g' ? (x + y) % 16 : 15;
            pair = static_cast<uint8_t>(pair | (x % 2 == 0 ? level << 4 : level));
        }
}

} // namespace

extern "C" {

int32_t FS_init(void* state, int32_t)
{
    std::memset(state, 0, FS_STATE_BYTES);
    ++fakeFontEngine.inits;
    return refused(kInit) ? 1 : 0;
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
    return refused(kSetFont) ? 1 : 0;
}

int32_t FS_set_cmap(void*, int32_t platform, int32_t encoding)
{
    return refused(kSetCharacterMap) || platform != 3 || encoding != 1 ? 1 : 0;
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
    if (refused(kSetBold)) return 1;
    fakeFontEngine.boldFraction = fraction;
    return 0;
}

int32_t FS_set_scale(void*, int32_t xx, int32_t xy, int32_t yx, int32_t yy)
{
    if (refused(kSetScale)) return 1;
    scale = {xx, xy, yx, yy};
    return 0;
}

void* FS_get_graymap(void*, uint32_t character)
{
    if (refused(kGetGlyph) || refused(kAddFont) || !hasGlyph(character)) return nullptr;
    int32_t width = std::max(pixelsOf(scale.xx), pixelsOf(scale.xy));
    int32_t height = std::max(pixelsOf(scale.yy), pixelsOf(scale.yx));
    if (character == ' ') width = height = 0;
    if (character == 'i') width /= 2;
    if (width > 1000 || height > 1000) return nullptr;

    const size_t stride = static_cast<size_t>((width + 1) / 2);
    const size_t bytes = sizeof(FS_GrayMap) + stride * static_cast<size_t>(height);
    FS_GrayMap* map = static_cast<FS_GrayMap*>(std::calloc(1, bytes));
    if (map == nullptr) return nullptr;
    const int32_t parts = character == 'i' ? 2 : 1;
    map->size = static_cast<uint32_t>(bytes);
    map->left = character == 'j' ? -1 : 0;
    map->top = static_cast<int16_t>(height);
    map->advanceX = scale.xx / parts;
    map->advanceY = scale.yx / parts;
    map->width = static_cast<int16_t>(width);
    map->height = static_cast<int16_t>(height);
    map->stride = static_cast<int16_t>(stride);
    fillBitmap(*map, character);
    ++fakeFontEngine.glyphsMade;
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
