// SPDX-License-Identifier: MIT
// Rows of linear gradients.
//
// Along a row the parameter grows by the same step from pixel to pixel. Repeated and reflected ones
// wrap in 32 bits; a padded one does not leave the ramp within most pieces of a row, and is then
// stepped alike.
#include "graphics2d/sources/GradientRows.h"
#include "graphics2d/sources/RampColours.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int64_t kEnd = int64_t{1} << 32; // of the ramp
constexpr uint32_t kToPlace = 32 - kPlaceBits;

bool isOnRamp(int64_t parameter)
{
    return parameter >= 0 && parameter < kEnd;
}

void writeOnRamp(const MMGradientSource& source, int64_t parameter, Pixel* pixels, int32_t count)
{
    const uint32_t shift = kToPlace - (source.spread == kSpreadReflect ? 1 : 0);
    const auto step = static_cast<uint32_t>(source.axes[0].perColumn);
    U32x4 parameters = all4(static_cast<uint32_t>(parameter)) + U32x4{0, 1, 2, 3} * step;
    writeRampColours(source, pixels, count, [&](int32_t) {
        const I32x4 places = (I32x4)(parameters >> shift);
        parameters += 4 * step;
        return places;
    });
}

// A piece that begins or ends beside the ramp.
void writePadded(const MMGradientSource& source, int64_t parameter, Pixel* pixels, int32_t count)
{
    int32_t places[kMostPixels];
    auto sum = static_cast<uint64_t>(parameter);
    for (int32_t i = 0; i < count; ++i) {
        const auto now = static_cast<int64_t>(sum);
        places[i] = static_cast<int32_t>(std::clamp<int64_t>(now, -1, kEnd) >> kToPlace);
        sum += static_cast<uint64_t>(source.axes[0].perColumn);
    }
    writePlaces(source, pixels, count, places);
}

} // namespace

void writeLinearRow(const void* state, int32_t row, int32_t column, int32_t count, Pixel* pixels)
{
    const auto& source = *static_cast<const MMGradientSource*>(state);
    const MMSourceAxis& axis = source.axes[0];
    const int64_t first = axis.at(row, column);
    const int64_t last = axis.at(row, column + (count - 1));
    const bool wraps = source.spread != kSpreadPad;
    const bool isFlat = axis.perColumn == 0 ||
                        (!wraps && ((first < 0 && last < 0) || (first >= kEnd && last >= kEnd)));
    const int32_t length = isFlat ? 1 : count;
    if (wraps || (isOnRamp(first) && isOnRamp(last)))
        writeOnRamp(source, first, pixels, length);
    else
        writePadded(source, first, pixels, length);
    std::fill(pixels + length, pixels + count, pixels[0]);
}

} // namespace Graphics2D
} // namespace KAVO
