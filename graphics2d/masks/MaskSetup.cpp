// SPDX-License-Identifier: MIT
#include "graphics2d/masks/MMMaskSetup.h"

#include "graphics2d/Redirection.h"
#include "graphics2d/masks/LevelBlending.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

// The linear light of an sRGB byte c: c / 12.92 up to 0.04045, above it ((c + 0.055) / 1.055) to
// the power of 2.4; 65535 is 1.
constexpr uint16_t kLinear[256] = {
    0,     20,    40,    60,    80,    99,    119,   139,   159,   179,   199,   219,   241,
    264,   288,   313,   340,   367,   396,   427,   458,   491,   526,   562,   599,   637,
    677,   718,   761,   805,   851,   898,   947,   997,   1048,  1101,  1156,  1212,  1270,
    1330,  1391,  1453,  1517,  1583,  1651,  1720,  1790,  1863,  1937,  2013,  2090,  2170,
    2250,  2333,  2418,  2504,  2592,  2681,  2773,  2866,  2961,  3058,  3157,  3258,  3360,
    3464,  3570,  3678,  3788,  3900,  4014,  4129,  4247,  4366,  4488,  4611,  4736,  4864,
    4993,  5124,  5257,  5392,  5530,  5669,  5810,  5953,  6099,  6246,  6395,  6547,  6700,
    6856,  7014,  7174,  7335,  7500,  7666,  7834,  8004,  8177,  8352,  8528,  8708,  8889,
    9072,  9258,  9445,  9635,  9828,  10022, 10219, 10417, 10619, 10822, 11028, 11235, 11446,
    11658, 11873, 12090, 12309, 12530, 12754, 12980, 13209, 13440, 13673, 13909, 14146, 14387,
    14629, 14874, 15122, 15371, 15623, 15878, 16135, 16394, 16656, 16920, 17187, 17456, 17727,
    18001, 18277, 18556, 18837, 19121, 19407, 19696, 19987, 20281, 20577, 20876, 21177, 21481,
    21787, 22096, 22407, 22721, 23038, 23357, 23678, 24002, 24329, 24658, 24990, 25325, 25662,
    26001, 26344, 26688, 27036, 27386, 27739, 28094, 28452, 28813, 29176, 29542, 29911, 30282,
    30656, 31033, 31412, 31794, 32179, 32567, 32957, 33350, 33745, 34143, 34544, 34948, 35355,
    35764, 36176, 36591, 37008, 37429, 37852, 38278, 38706, 39138, 39572, 40009, 40449, 40891,
    41337, 41785, 42236, 42690, 43147, 43606, 44069, 44534, 45002, 45473, 45947, 46423, 46903,
    47385, 47871, 48359, 48850, 49344, 49841, 50341, 50844, 51349, 51858, 52369, 52884, 53401,
    53921, 54445, 54971, 55500, 56032, 56567, 57105, 57646, 58190, 58737, 59287, 59840, 60396,
    60955, 61517, 62082, 62650, 63221, 63795, 64372, 64952, 65535};

// BT.709: 0.2126, 0.7152 and 0.0722; together 65536.
constexpr uint32_t kRedShare = 13933;
constexpr uint32_t kGreenShare = 46871;
constexpr uint32_t kBlueShare = 4732;

// Channels are premultiplied, and none counts for more than the alpha.
struct Premultiplied {
    explicit Premultiplied(Pixel pixel)
        : alpha(pixel >> 24), red(std::min(pixel >> 16 & 255, alpha)),
          green(std::min(pixel >> 8 & 255, alpha)), blue(std::min(pixel & 255, alpha))
    {
    }

    uint32_t alpha;
    uint32_t red;
    uint32_t green;
    uint32_t blue;
};

uint8_t luminanceOf(Pixel pixel)
{
    const Premultiplied c(pixel);
    return static_cast<uint8_t>(
        (kRedShare * c.red + kGreenShare * c.green + kBlueShare * c.blue + 0x8000) >> 16);
}

// The linear light of a channel divided by the alpha, between those of the bytes around it.
uint32_t linearOf(uint32_t channel, uint32_t alpha)
{
    const uint32_t scaled = (channel * 255 * 256 + alpha / 2) / alpha; // 8.8
    const uint32_t whole = scaled >> 8;
    const uint32_t next = std::min(whole + 1, 255u);
    return kLinear[whole] + ((kLinear[next] - kLinear[whole]) * (scaled & 255) >> 8);
}

uint8_t linearLuminanceOf(Pixel pixel)
{
    const Premultiplied c(pixel);
    if (c.alpha == 0) return 0;
    const uint64_t light = uint64_t{kRedShare} * linearOf(c.red, c.alpha) +
                           uint64_t{kGreenShare} * linearOf(c.green, c.alpha) +
                           uint64_t{kBlueShare} * linearOf(c.blue, c.alpha);
    constexpr uint64_t kWhite = uint64_t{65535} << 16;
    return static_cast<uint8_t>((light * c.alpha + kWhite / 2) / kWhite);
}

uint8_t levelOf(Pixel pixel, MMMaskSource source)
{
    switch (source) {
    case kMaskFromLuminance:
        return luminanceOf(pixel);
    case kMaskFromLinearLuminance:
        return linearLuminanceOf(pixel);
    default:
        return static_cast<uint8_t>(pixel >> 24);
    }
}

template <class Change>
void changeLevels(const MMMask& mask, Change change)
{
    const PixelBox box = boxOf(mask);
    if (box.empty()) return;
    for (int32_t row = box.top; row < box.bottom; ++row) {
        uint8_t* const levels = maskRow(mask, row);
        for (int32_t column = box.left; column < box.right; ++column)
            levels[column] = change(levels[column], column, row);
    }
}

} // namespace

MMMask makeMask(uint8_t* levels, int16_t left, int16_t top, int16_t right, int16_t bottom)
{
    MMMask mask = {left, top, right, bottom, 0, levels};
    if (right <= left || bottom <= top) return {0, 0, 0, 0, 0, nullptr};
    mask.rowBytes = static_cast<uint32_t>(right - left);
    fillMask(mask, 0);
    return mask;
}

void fillMask(const MMMask& mask, uint8_t level)
{
    const PixelBox box = boxOf(mask);
    if (box.empty()) return;
    size_t width = static_cast<size_t>(box.right - box.left);
    int32_t rows = box.bottom - box.top;
    if (mask.rowBytes == width) { // all in one, which the C library does in less time
        width *= static_cast<size_t>(rows);
        rows = 1;
    }
    for (int32_t row = box.top; row < box.top + rows; ++row)
        std::memset(maskRow(mask, row) + box.left, level, width);
}

void invertMask(const MMMask& mask)
{
    changeLevels(mask,
                 [](uint8_t level, int32_t, int32_t) { return static_cast<uint8_t>(255 - level); });
}

void intersectMask(const MMMask& mask, const MMMask& other)
{
    const PixelBox box = boxOf(other);
    changeLevels(mask, [&](uint8_t level, int32_t column, int32_t row) -> uint8_t {
        if (column < box.left || column >= box.right || row < box.top || row >= box.bottom)
            return 0;
        return static_cast<uint8_t>(shareOfLevel(level, maskRow(other, row)[column]));
    });
}

void setMaskFromPixels(const MMMask& mask, const MMPixmap& pixels, int16_t left, int16_t top,
                       MMMaskSource source)
{
    changeLevels(mask, [&](uint8_t, int32_t column, int32_t row) -> uint8_t {
        const int32_t x = column - left;
        const int32_t y = row - top;
        if (pixels.pixels == nullptr || x < 0 || x >= pixels.width || y < 0 || y >= pixels.height)
            return 0;
        return levelOf(targetRow(pixels, y, pixels.rowBytes)[x], source);
    });
}

} // namespace Graphics2D
} // namespace KAVO
