// SPDX-License-Identifier: MIT
// From places on a ramp to pixels. Internal.
#pragma once

#include "graphics2d/sources/RampTable.h"
#include "graphics2d/strips/PixelLanes.h"

namespace KAVO {
namespace Graphics2D {

constexpr int32_t kMostPixels = 128; // that a source is asked for at once

inline I32x4 smaller(I32x4 a, I32x4 b)
{
    const I32x4 isBelow = a < b;
    return (a & isBelow) | (b & ~isBelow);
}

// Writes count pixels; placesAt(i) gives four places from the i-th on, those beyond the last pixel
// included: from -1 to 2^24, and for a reflected ramp up to 2^25 - 1.
template <class PlacesAt>
inline void writeRampColours(const MMGradientSource& source, Pixel* pixels, int32_t count,
                             PlacesAt placesAt)
{
    const Pixel* const ramp = source.ramp + 1;
    const bool isReflected = source.spread == kSpreadReflect;
    const int32_t cutCount = source.cutCount;
    const int32_t* const cuts = source.cuts;
    for (int32_t i = 0; i < count; i += 4) {
        I32x4 places = placesAt(i);
        if (isReflected) places = smaller(places, (2 << kPlaceBits) - 1 - places);
        I32x4 entries = places >> kEntryBits;
        for (int32_t k = 0; k < cutCount; ++k)
            entries -= places >= cuts[k]; // a true comparison is -1
        const U32x4 colours = {ramp[entries[0]], ramp[entries[1]], ramp[entries[2]],
                               ramp[entries[3]]};
        if (i + 4 > count) return storeFew(pixels + i, colours, count - i);
        store4(pixels + i, colours);
    }
}

// The same from an array with room for a multiple of four.
void writePlaces(const MMGradientSource& source, Pixel* pixels, int32_t count, int32_t* places);

// From parameters, which may be anything.
void writeParameters(const MMGradientSource& source, Pixel* pixels, int32_t count,
                     int32_t* parameters);

} // namespace Graphics2D
} // namespace KAVO
