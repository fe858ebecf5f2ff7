// SPDX-License-Identifier: MIT
// The colours of gradients.
#include "graphics2d/strips/StopList.h"

#include "math/FixedMath.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void Segment::set(const StopList& stops, uint32_t i)
{
    start = channelsOf(stops.colours[i]);
    difference = channelsOf(stops.colours[i + 1]) - start;
    offset = stops.offsets[i];
    length = wrapSub(stops.offsets[i + 1], offset);
}

Channels Segment::at(Fixed position) const
{
    return start + part(fixDiv(wrapSub(position, offset), length));
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
