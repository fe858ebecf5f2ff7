// SPDX-License-Identifier: MIT
// Gradients over the whole target, and images.
#include "Paints.h"

#include <cstring>
#include <memory>

namespace {

uint32_t texel(uint32_t x, uint32_t y, uint32_t alpha, bool premultiplied)
{
    const uint32_t share = premultiplied ? alpha : 255;
    const auto channel = [share](uint32_t v) { return (v * share + 127) / 255; };
    return alpha << 24 | channel(x * 255 / kImageSize) << 16 | channel(y * 255 / kImageSize) << 8 |
           channel((x ^ y) & 255);
}

// What the memory can do: the image copied row by row.
Draw copyImage()
{
    auto pixels = std::make_shared<std::vector<uint32_t>>(kSceneSize * kSceneSize);
    auto texels = std::make_shared<std::vector<uint32_t>>(paintImage(false, false));
    return [pixels, texels] {
        for (size_t y = 0; y < kImageSize; ++y)
            std::memcpy(&(*pixels)[y * kSceneSize], &(*texels)[y * kImageSize],
                        kImageSize * sizeof(uint32_t));
    };
}

} // namespace

std::vector<uint32_t> paintImage(bool hasAlpha, bool premultiplied)
{
    std::vector<uint32_t> texels;
    for (uint32_t y = 0; y < kImageSize; ++y)
        for (uint32_t x = 0; x < kImageSize; ++x)
            texels.push_back(texel(x, y, hasAlpha ? (x + y) / 2 : 255, premultiplied));
    return texels;
}

std::vector<Scene> paintScenes()
{
    using Square = PaintedSquare;
    constexpr double kWhole = kSceneSize;
    const struct {
        const char* name;
        Square square;
    } kSquares[] = {
        {"linear gradient opaque", {Square::Linear, 255, kWhole}},
        {"linear gradient translucent", {Square::Linear, 128, kWhole}},
        {"radial gradient opaque", {Square::Radial, 255, kWhole}},
        {"radial gradient translucent", {Square::Radial, 128, kWhole}},
        {"image 1:1 nearest", {Square::Image, 255, kImageSize}},
        {"image 1:1 with alpha", {Square::Image, 255, kImageSize, Filter::Nearest, 1, 0, true}},
        {"image 1:1 translucent", {Square::Image, 128, kImageSize}},
        {"image 3.9x nearest", {Square::Image, 255, kWhole, Filter::Nearest, 3.9}},
        {"image 3.9x bilinear", {Square::Image, 255, kWhole, Filter::Bilinear, 3.9}},
        {"image 3.9x bicubic", {Square::Image, 255, kWhole, Filter::Bicubic, 3.9}},
        {"image 3.9x bilinear translucent", {Square::Image, 128, kWhole, Filter::Bilinear, 3.9}},
        {"image rotated nearest", {Square::Image, 255, kWhole, Filter::Nearest, 3.9, 10}},
        {"image rotated bilinear", {Square::Image, 255, kWhole, Filter::Bilinear, 3.9, 10}},
        {"image rotated bicubic", {Square::Image, 255, kWhole, Filter::Bicubic, 3.9, 10}},
    };
    std::vector<Scene> scenes;
    for (const auto& s : kSquares) {
        scenes.push_back(sceneOf(s.name, s.square));
        const bool opaque = s.square.opacity == 255 && !s.square.hasAlpha;
        if (s.square.kind == Square::Image && s.square.isPlainCopy() && opaque)
            scenes.back().memory = copyImage();
    }
    return scenes;
}
