// SPDX-License-Identifier: MIT
#include "svg/render/TileSampling.h"

#include <algorithm>
#include <cmath>

namespace KAVO {
namespace Svg {

namespace {

// Parts of a tile in 32 bits, which begin anew where the next tile does.
uint32_t fractionOf(double tiles)
{
    constexpr double kWhole = 4294967296.0;
    const double part = (tiles - std::floor(tiles)) * kWhole;
    return part < kWhole ? static_cast<uint32_t>(part) : 0; // also when it is not a number
}

struct Position {
    uint32_t x;
    uint32_t y;
};

Position positionOf(Point tiles)
{
    return {fractionOf(tiles.x), fractionOf(tiles.y)};
}

// Sums of the four channels, in two words of two: red and blue, alpha and green.
struct Sums {
    uint32_t redBlue = 0;
    uint32_t alphaGreen = 0;

    void add(uint32_t pixel)
    {
        redBlue += pixel & 0xFF00FF;
        alphaGreen += pixel >> 8 & 0xFF00FF;
    }
    uint32_t mean(uint32_t count) const
    {
        const auto divided = [count](uint32_t two) {
            const uint32_t high = ((two >> 16) + count / 2) / count;
            const uint32_t low = ((two & 0xFFFF) + count / 2) / count;
            return high << 16 | low;
        };
        return divided(alphaGreen) << 8 | divided(redBlue);
    }
};

} // namespace

void repeatTile(const Picture& tile, const Affine& toTile, const PixelArea& area, Picture& picture)
{
    constexpr double kStep = 1.0 / kTileSamples;
    const Position right = positionOf(toTile.mapVector({kStep, 0}));
    const Position down = positionOf(toTile.mapVector({0, kStep}));
    const auto width = static_cast<uint64_t>(tile.width);
    const auto height = static_cast<uint64_t>(tile.height);
    const auto texelAt = [&](uint32_t x, uint32_t y) {
        const uint64_t row = y * height >> 32;
        return tile.pixels[static_cast<size_t>(row * width + (x * width >> 32))];
    };
    for (int y = area.top; y < area.bottom; ++y) {
        Position at = positionOf(toTile.map({area.left + kStep / 2, y + kStep / 2}));
        for (int x = area.left; x < area.right; ++x) {
            Sums sums;
            for (int i = 0; i < kTileSamples; ++i) {
                Position sample = at;
                for (int j = 0; j < kTileSamples; ++j) {
                    sums.add(texelAt(sample.x, sample.y));
                    sample = {sample.x + down.x, sample.y + down.y};
                }
                at = {at.x + right.x, at.y + right.y};
            }
            picture.at(x, y) = sums.mean(kTileSamples * kTileSamples);
        }
    }
}

void copyTile(const Picture& tile, int left, int top, const PixelArea& area, Picture& picture)
{
    const auto remainder = [](int value, int size) { return ((value % size) + size) % size; };
    for (int y = area.top; y < area.bottom; ++y) {
        const auto texels = tile.pixels.begin() + remainder(y - top, tile.height) * tile.width;
        int column = remainder(area.left - left, tile.width);
        for (int x = area.left, length; x < area.right; x += length, column = 0) {
            length = std::min(tile.width - column, area.right - x);
            std::copy_n(texels + column, length, &picture.at(x, y));
        }
    }
}

} // namespace Svg
} // namespace KAVO
