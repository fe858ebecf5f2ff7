// SPDX-License-Identifier: MIT
#include "graphics2d/Redirection.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

void LayerSurface::prepare(const PixelBox& part)
{
    const PixelBox common = commonBox(part, box);
    if (common.empty()) return;
    const int16_t first = static_cast<int16_t>(common.left);
    const int16_t end = static_cast<int16_t>(common.right);
    for (int32_t row = common.top; row < common.bottom; ++row) {
        ColumnRange& range = prepared[row - box.top];
        Pixel* const columns = rowAt(row);
        const auto clear = [&](int32_t from, int32_t to) {
            std::fill(columns + (from - box.left), columns + (to - box.left), 0u);
        };
        if (range.first >= range.end) {
            clear(first, end);
            range = {first, end};
            continue;
        }
        if (first < range.first) {
            clear(first, range.first);
            range.first = first;
        }
        if (end > range.end) {
            clear(range.end, end);
            range.end = end;
        }
    }
}

namespace {

PixelBox whole(const MMPixmap& target)
{
    return {0, 0, target.width, target.height};
}

} // namespace

PixelBox boxOf(const MMMask& mask)
{
    if (mask.levels == nullptr) return {0, 0, 0, 0};
    return {mask.left, mask.top, mask.right, mask.bottom};
}

PixelBox commonBox(const PixelBox& a, const PixelBox& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

PixelBox redirectedBox(const MMContext2D& context)
{
    const MMPixmap& target = context.target;
    PixelBox box = {std::max<int32_t>(context.clipLeft, 0), std::max<int32_t>(context.clipTop, 0),
                    context.clipRight, context.clipBottom};
    if (context.maskTarget != nullptr)
        box = commonBox(box, boxOf(*context.maskTarget));
    else if (target.pixels != nullptr)
        box = commonBox(box, context.layer != nullptr ? commonBox(context.layer->box, whole(target))
                                                      : whole(target));
    else
        return {0, 0, 0, 0};
    if (context.clipMask != nullptr) box = commonBox(box, boxOf(*context.clipMask));
    return box;
}

} // namespace Graphics2D
} // namespace KAVO
