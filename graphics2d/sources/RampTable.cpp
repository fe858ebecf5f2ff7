// SPDX-License-Identifier: MIT
// The table of a gradient's colours.
//
// Each entry has the colour at its middle, so no place is further than half an entry from the one
// whose colour it gets. Where stops lie closer together than entries can show, their places are
// cuts: borders between entries of their own, in addition to those at even distances.
#include "graphics2d/sources/RampTable.h"

#include "graphics2d/strips/Channels.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr int32_t kRampEnd = 1 << kPlaceBits;
constexpr int32_t kClose = 2 << kEntryBits; // a distance of stops

// From 8.16 channels, rounded once.
Pixel premultipliedColour(Channels channels)
{
    constexpr uint32_t kWhole = 255u << 16;
    const U32x4 rounded = (channels + kChannelHalf) >> 16;
    Pixel pixel = rounded[kAlpha] << 24;
    if (channels[kAlpha] == kWhole)
        return pixel | rounded[kRed] << 16 | rounded[kGreen] << 8 | rounded[kBlue];
    const uint32_t alpha = channels[kAlpha] >> 8;
    for (int k = kBlue; k <= kRed; ++k)
        pixel |= ((channels[k] >> 8) * alpha + kWhole / 2) / kWhole << (8 * k);
    return pixel;
}

// The stops as places in ascending order.
class StopWalk {
public:
    explicit StopWalk(const GradientStops& stops) : stops_(stops), to_(placeOf(0)) {}

    // The next stop, if there is one.
    bool advance()
    {
        if (index_ + 1 == stops_.count) return false;
        ++index_;
        from_ = to_;
        to_ = std::max(placeOf(index_), from_);
        return true;
    }
    int32_t from() const { return from_; }
    int32_t to() const { return to_; }
    Pixel colour() const { return stops_.colours[index_]; }
    bool isClose() const
    {
        return to_ - from_ < kClose && stops_.colours[index_ - 1] != stops_.colours[index_];
    }

    // The colour at a place, which is not before the stop that the walk has passed.
    Pixel colourAt(int32_t place)
    {
        while (place >= to_ && advance())
            prepareColours();
        if (index_ == 0 || place >= to_) return premultipliedColour(channelsOf(colour()));
        const uint64_t within = static_cast<uint64_t>(place - from_);
        return premultipliedColour(start_ + change_ * static_cast<uint32_t>(within * share_ >> 32));
    }

private:
    int32_t placeOf(uint32_t i) const
    {
        return std::clamp(stops_.offsets[i], 0, kFixedOne) << (kPlaceBits - 16);
    }
    void prepareColours()
    {
        start_ = channelsOf(stops_.colours[index_ - 1]);
        change_ = (Channels)((I32x4)(channelsOf(colour()) - start_) >> 16);
        if (to_ > from_) share_ = (uint64_t{1} << 48) / static_cast<uint32_t>(to_ - from_);
    }

    GradientStops stops_;
    uint32_t index_ = 0; // of the stop at to_
    int32_t from_ = 0;
    int32_t to_;
    Channels start_ = {};
    Channels change_ = {}; // to the next stop, whole levels
    uint64_t share_ = 0;   // 2^48 by the distance
};

void addCut(MMGradientSource& source, int32_t place)
{
    if (place <= 0 || place >= kRampEnd || source.cutCount == kMostSourceCuts) return;
    if (source.cutCount > 0 && source.cuts[source.cutCount - 1] == place) return;
    source.cuts[source.cutCount++] = place;
}

} // namespace

void layOutRamp(MMGradientSource& source, const GradientStops& stops)
{
    source.cutCount = 0;
    StopWalk cutting(stops);
    while (cutting.advance()) {
        if (!cutting.isClose()) continue;
        addCut(source, cutting.from());
        addCut(source, cutting.to());
    }

    StopWalk colours(stops);
    Pixel* entry = source.ramp;
    *entry++ = premultipliedColour(channelsOf(colours.colour()));
    int32_t place = 0;
    uint32_t cut = 0;
    for (int32_t end = 1 << kEntryBits; place < kRampEnd;) {
        const bool isCut = cut < source.cutCount && source.cuts[cut] <= end;
        const int32_t border = isCut ? source.cuts[cut++] : end;
        *entry++ = colours.colourAt((place + border) / 2);
        place = border;
        if (!isCut) end += 1 << kEntryBits;
    }
    *entry = premultipliedColour(channelsOf(stops.colours[stops.count - 1]));
}

} // namespace Graphics2D
} // namespace KAVO
