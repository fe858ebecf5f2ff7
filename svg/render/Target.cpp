// SPDX-License-Identifier: MIT
// The part of the target that is drawn into, and what has been drawn there.
#include "svg/render/Renderer.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

// Also to the pixels that the box touches.
void Renderer::clipTo(const Box& box)
{
    const auto pixel = [](double v) {
        return static_cast<int16_t>(std::max(0.0, std::min<double>(v, kLargestSide)));
    };
    context_.clipLeft = std::max(context_.clipLeft, pixel(std::floor(box.left + 0.01)));
    context_.clipTop = std::max(context_.clipTop, pixel(std::floor(box.top + 0.01)));
    context_.clipRight = std::min(context_.clipRight, pixel(std::ceil(box.right - 0.01)));
    context_.clipBottom = std::min(context_.clipBottom, pixel(std::ceil(box.bottom - 0.01)));
}

void Renderer::clearBounds()
{
    context_.boundsMinX = context_.boundsMinY = kEmptyBoundsMin;
    context_.boundsMaxX = context_.boundsMaxY = kEmptyBoundsMax;
    context_.pickHit = 0;
}

void Renderer::uniteBounds()
{
    if (session_.pick && context_.pickHit) session_.picked = current_;
    context_.pickHit = 0;
    if (context_.boundsMinX > context_.boundsMaxX) return;
    session_.bounds.include(Point{toDouble(context_.boundsMinX), toDouble(context_.boundsMinY)});
    session_.bounds.include(Point{toDouble(context_.boundsMaxX), toDouble(context_.boundsMaxY)});
}

Point Renderer::targetCentre() const
{
    return {context_.target.width / 2.0, context_.target.height / 2.0};
}

bool Renderer::isOutside(const Box& box) const
{
    return !(box.right >= context_.clipLeft - 1 && box.bottom >= context_.clipTop - 1 &&
             box.left <= context_.clipRight + 1 && box.top <= context_.clipBottom + 1);
}

} // namespace Svg
} // namespace KAVO
