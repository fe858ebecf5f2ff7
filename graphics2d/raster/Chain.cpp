// SPDX-License-Identifier: MIT
#include "graphics2d/raster/Chain.h"

namespace KAVO {
namespace Graphics2D {

bool Chain::step(const VertexRings& rings)
{
    const MMPoint2D& from = rings[vertex];
    if (!rings.stepDown(vertex, winding)) return false;
    line = EdgeLine::between(from, rings[vertex]);
    return true;
}

bool Chain::descend(const VertexRings& rings, Fixed level)
{
    if (!stepPast(rings, level)) return false;
    if (line.y < level) line.moveTo(level, line.xAt(level));
    return true;
}

} // namespace Graphics2D
} // namespace KAVO
