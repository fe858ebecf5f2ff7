// SPDX-License-Identifier: MIT
#include "svg/images/Picture.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

int channel(uint32_t pixel, int shift)
{
    return static_cast<int>(pixel >> shift & 0xFF);
}

uint32_t separatePixel(uint32_t black, uint32_t white)
{
    int ground = 0; // three times how much of it shows
    for (int shift = 0; shift < 24; shift += 8)
        ground += std::clamp(channel(white, shift) - channel(black, shift), 0, 255);
    const int alpha = 255 - (ground + 1) / 3;
    if (alpha == 0) return 0;
    uint32_t pixel = static_cast<uint32_t>(alpha) << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        const int value = std::min(255, (channel(black, shift) * 255 + alpha / 2) / alpha);
        pixel |= static_cast<uint32_t>(value) << shift;
    }
    return pixel;
}

// The mean of four pixels, those that are more opaque counting for more.
uint32_t mean(const uint32_t (&pixels)[4])
{
    uint32_t alphaSum = 0;
    uint32_t sums[3] = {};
    for (const uint32_t pixel : pixels) {
        const uint32_t alpha = pixel >> 24;
        alphaSum += alpha;
        for (uint32_t channel = 0; channel < 3; ++channel)
            sums[channel] += (pixel >> (8 * channel) & 0xFF) * alpha;
    }
    if (alphaSum == 0) return 0;
    uint32_t result = (alphaSum + 2) / 4 << 24;
    for (uint32_t channel = 0; channel < 3; ++channel)
        result |= (sums[channel] + alphaSum / 2) / alphaSum << (8 * channel);
    return result;
}

} // namespace

Picture separateFromGround(const Picture& overBlack, const Picture& overWhite)
{
    Picture result(overBlack.width, overBlack.height, 0);
    for (size_t i = 0; i < result.pixels.size(); ++i)
        result.pixels[i] = separatePixel(overBlack.pixels[i], overWhite.pixels[i]);
    result.hasAlpha = true;
    return result;
}

Picture halved(const Picture& picture)
{
    Picture result(std::max(1, picture.width / 2), std::max(1, picture.height / 2), 0);
    result.hasAlpha = picture.hasAlpha;
    for (int y = 0; y < result.height; ++y) {
        const int y0 = 2 * y;
        const int y1 = std::min(y0 + 1, picture.height - 1);
        for (int x = 0; x < result.width; ++x) {
            const int x0 = 2 * x;
            const int x1 = std::min(x0 + 1, picture.width - 1);
            result.at(x, y) = mean(
                {picture.at(x0, y0), picture.at(x1, y0), picture.at(x0, y1), picture.at(x1, y1)});
        }
    }
    return result;
}

void spreadColours(Picture& picture)
{
    if (!picture.hasAlpha) return;
    constexpr int kReach = 2; // texels that a filter looks away from a point
    std::vector<bool> coloured(picture.pixels.size());
    for (size_t i = 0; i < coloured.size(); ++i)
        coloured[i] = picture.pixels[i] >> 24 != 0;
    const auto width = static_cast<size_t>(picture.width);
    const auto index = [=](int x, int y) {
        return static_cast<size_t>(y) * width + static_cast<size_t>(x);
    };
    for (int round = 0; round < kReach; ++round) {
        const std::vector<bool> before = coloured;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const int left = std::max(0, x - 1);
                const int right = std::min(picture.width - 1, x + 1);
                const int top = std::max(0, y - 1);
                const int bottom = std::min(picture.height - 1, y + 1);
                const size_t neighbours[] = {index(left, y), index(right, y), index(x, top),
                                             index(x, bottom)};
                for (const size_t neighbour : neighbours) {
                    if (coloured[index(x, y)] || !before[neighbour]) continue;
                    picture.pixels[index(x, y)] = picture.pixels[neighbour] & 0x00FFFFFFu;
                    coloured[index(x, y)] = true;
                }
            }
        }
    }
}

} // namespace Svg
} // namespace KAVO
