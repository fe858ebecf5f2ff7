// SPDX-License-Identifier: MIT
// Copies of images at half their size.
#include "graphics2d/ImageReduction.h"

#include "math/LinearPart.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// How often the image can be halved and still be drawn no larger than it is, even along the
// direction in which the transform shrinks it least.
uint32_t halvingsOf(const MMPixmap& image, const Matrix2D& transform)
{
    if (image.pixels == nullptr || image.width == 0 || image.height == 0) return 0;
    const int64_t stretch = std::max<int64_t>(stretchOf(linearPartOf(transform)).greatest, 1);
    uint32_t halvings = 0;
    while (stretch << (halvings + 1) <= kFixedOne &&
           std::max(image.width, image.height) >> (halvings + 1) != 0)
        ++halvings;
    return halvings;
}

uint32_t half(uint32_t size)
{
    return (size + 1) / 2;
}

// The means of four bytes, two channels 16 bits apart at a time.
Pixel plainMean(const Pixel (&texels)[4])
{
    constexpr uint32_t kEven = 0x00FF00FFu;
    uint32_t even = 0x00020002u;
    uint32_t odd = 0x00020002u;
    for (Pixel texel : texels) {
        even += texel & kEven;
        odd += texel >> 8 & kEven;
    }
    return (even >> 2 & kEven) | (odd >> 2 & kEven) << 8;
}

// Where texels are translucent each counts by its alpha.
Pixel meanByAlpha(const Pixel (&texels)[4])
{
    uint32_t alphas = 0;
    for (Pixel texel : texels)
        alphas += texel >> 24;
    if (alphas == 0) return 0;
    if (alphas == 4 * 255) return plainMean(texels);
    Pixel mean = (alphas + 2) / 4 << 24;
    for (uint32_t shift = 0; shift < 24; shift += 8) {
        uint32_t sum = alphas / 2;
        for (Pixel texel : texels)
            sum += (texel >> shift & 0xFF) * (texel >> 24);
        mean |= sum / alphas << shift;
    }
    return mean;
}

// Halves an image into other pixels, or its own: what is written lies behind what is read. The
// last column and row of an odd size stand for two.
void halve(MMPixmap& image, Pixel* to)
{
    const bool hasAlpha = static_cast<uint8_t>(image.pixmapExtra) != 0;
    const uint32_t width = image.width;
    const uint32_t height = image.height;
    Pixel* out = to;
    for (uint32_t j = 0; j < height; j += 2) {
        const Pixel* upper = image.pixels + static_cast<size_t>(j) * width;
        const Pixel* lower = j + 1 < height ? upper + width : upper;
        for (uint32_t i = 0; i < width; i += 2) {
            const uint32_t next = i + 1 < width ? i + 1 : i;
            const Pixel texels[4] = {upper[i], upper[next], lower[i], lower[next]};
            *out++ = hasAlpha ? meanByAlpha(texels) : plainMean(texels);
        }
    }
    image.width = static_cast<uint16_t>(half(width));
    image.height = static_cast<uint16_t>(half(height));
    image.rowBytes = image.width * static_cast<uint32_t>(sizeof(Pixel));
    image.pixels = to;
}

} // namespace

uint32_t reducedImageRoom(const MMPixmap& image, const Matrix2D& transform)
{
    return halvingsOf(image, transform) != 0 ? half(image.width) * half(image.height) : 0;
}

void reduceImage(MMPixmap& image, Matrix2D& transform, Pixel* room)
{
    if (room == nullptr) return;
    const uint32_t halvings = halvingsOf(image, transform);
    for (uint32_t i = 0; i < halvings; ++i)
        halve(image, room);
    for (Fixed* element : {&transform.a, &transform.b, &transform.c, &transform.d})
        *element = wrapShl(*element, halvings);
}

} // namespace Graphics2D
} // namespace KAVO
