// SPDX-License-Identifier: MIT
// A gradient's stops on their way into a paint.
#include "graphics2d/RampWriter.h"

#include "math/WideMath.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int64_t kMostPieces = 8; // of all that lies between two stops

Pixel mixed(Pixel from, Pixel to, int64_t part, int64_t whole)
{
    Pixel result = 0;
    for (uint32_t shift = 0; shift < 32; shift += 8) {
        const int64_t a = (from >> shift) & 0xFF;
        const int64_t b = (to >> shift) & 0xFF;
        result |= static_cast<Pixel>(a + divideRounded((b - a) * part, whole)) << shift;
    }
    return result;
}

uint32_t alphaByte(Pixel colour)
{
    return colour >> 24;
}

Pixel withAlpha(Pixel colour, uint32_t alpha)
{
    return (colour & 0x00FFFFFF) | alpha << 24;
}

} // namespace

// A linear segment's weights are extrapolated from its first three pixels: if the weight were
// raised just between these, every further pixel would be one too high.
uint32_t leastRaisedAlpha(uint32_t opacity)
{
    return opacity > 128 ? 0x8000 / opacity + 1 : kNoAlpha;
}

RampWriter::RampWriter(MMPaint& paint, const GradientRamp& ramp) : paint_(paint), ramp_(ramp)
{
    paint_.gradientStopCount = 0;
    paint_.gradientStopColors = ramp.colours;
    paint_.gradientStopOffsets = ramp.offsets;
    paint_.paintHasAlpha = 0;
}

void RampWriter::add(Pixel colour, int64_t offset)
{
    ramp_.colours[paint_.gradientStopCount] = colour;
    ramp_.offsets[paint_.gradientStopCount] =
        static_cast<Fixed>(std::clamp(offset, -kGreatestOffset, kGreatestOffset));
    ++paint_.gradientStopCount;
    if (alphaByte(colour) != 0xFF) paint_.paintHasAlpha = 1;
}

void RampWriter::addAll(const GradientStops& stops, int64_t start, int64_t length, int64_t piece,
                        uint32_t raisedAlpha)
{
    Stop previous = {};
    int64_t least = 0;
    for (uint32_t i = 0; i < stops.count; ++i) {
        least = std::clamp<int64_t>(stops.offsets[i], least, kFixedOne);
        const Stop stop = {stops.colours[i], start + shiftDown(length * least, 16)};
        if (i > 0) {
            const int64_t shortest = (stop.offset - previous.offset) / kMostPieces + 1;
            addBetween(previous, stop, std::max(piece, shortest), raisedAlpha);
        }
        add(stop.colour, stop.offset);
        previous = stop;
    }
}

void RampWriter::addBetween(Stop from, Stop to, int64_t piece, uint32_t raisedAlpha)
{
    const int64_t first = alphaByte(from.colour);
    const int64_t last = alphaByte(to.colour);
    const bool rises = first < raisedAlpha;
    if (rises == (last < raisedAlpha)) return cut(from, to, piece);

    // Halfway between the two alphas that are neighbours there.
    const int64_t part = absolute(2 * int64_t{raisedAlpha} - 1 - 2 * first);
    const int64_t whole = absolute(2 * (last - first));
    const Pixel colour = mixed(from.colour, to.colour, part, whole);
    const int64_t offset = from.offset + (to.offset - from.offset) * part / whole;
    const Stop before = {withAlpha(colour, rises ? raisedAlpha - 1 : raisedAlpha), offset};
    const Stop after = {withAlpha(colour, rises ? raisedAlpha : raisedAlpha - 1), offset};
    cut(from, before, piece);
    add(before.colour, offset);
    add(after.colour, offset);
    cut(after, to, piece);
}

void RampWriter::cut(Stop from, Stop to, int64_t piece)
{
    const int64_t distance = to.offset - from.offset;
    const int64_t pieces = distance / piece + 1;
    for (int64_t i = 1; i < pieces; ++i)
        add(mixed(from.colour, to.colour, i, pieces), from.offset + distance * i / pieces);
}

} // namespace Graphics2D
} // namespace KAVO
