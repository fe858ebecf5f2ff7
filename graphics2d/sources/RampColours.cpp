// SPDX-License-Identifier: MIT
// From places on a ramp to pixels.
#include "graphics2d/sources/RampColours.h"

namespace KAVO {
namespace Graphics2D {

namespace {

I32x4 load4(const int32_t* from)
{
    I32x4 lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
}

I32x4 larger(I32x4 a, I32x4 b)
{
    const I32x4 isBelow = a < b;
    return (b & isBelow) | (a & ~isBelow);
}

// The lanes of the last four that no pixel belongs to.
void fillUp(int32_t* values, int32_t count)
{
    for (int32_t i = count; i % 4 != 0; ++i)
        values[i] = 0;
}

} // namespace

void writePlaces(const MMGradientSource& source, Pixel* pixels, int32_t count, int32_t* places)
{
    fillUp(places, count);
    writeRampColours(source, pixels, count, [=](int32_t i) { return load4(places + i); });
}

void writeParameters(const MMGradientSource& source, Pixel* pixels, int32_t count,
                     int32_t* parameters)
{
    fillUp(parameters, count);
    const I32x4 least = (I32x4)all4(static_cast<uint32_t>(source.least));
    const I32x4 greatest = (I32x4)all4(static_cast<uint32_t>(source.greatest));
    const uint32_t shift = source.shift;
    const U32x4 mask = all4(source.mask);
    writeRampColours(source, pixels, count, [=](int32_t i) {
        const I32x4 values = larger(smaller(load4(parameters + i), greatest), least);
        return larger((I32x4)((U32x4)values << shift & mask), I32x4{-1, -1, -1, -1});
    });
}

} // namespace Graphics2D
} // namespace KAVO
