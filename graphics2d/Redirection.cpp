// SPDX-License-Identifier: MIT
#include "graphics2d/Redirection.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

void prepareColumns(const MMLayerSurface& layer, int32_t row, int32_t first, int32_t end,
                    bool isOverwritten)
{
    MMLayerSurface::Columns& columns = layer.prepared[row - layer.top];
    const auto clear = [&](int32_t from, int32_t to) {
        if (from < to) std::fill_n(layerRow(layer, row) + (from - layer.left), to - from, 0u);
    };
    if (columns.first >= columns.end) {
        if (!isOverwritten) clear(first, end);
        columns = {static_cast<int16_t>(first), static_cast<int16_t>(end)};
        return;
    }
    if (first < columns.first) {
        clear(isOverwritten ? end : first, columns.first);
        columns.first = static_cast<int16_t>(first);
    }
    if (end > columns.end) {
        clear(columns.end, isOverwritten ? first : end);
        columns.end = static_cast<int16_t>(end);
    }
}

void prepareLayer(const MMLayerSurface& layer, const PixelBox& part)
{
    const PixelBox common = commonBox(part, boxOf(layer));
    if (common.empty()) return;
    for (int32_t row = common.top; row < common.bottom; ++row)
        prepareColumns(layer, row, common.left, common.right, false);
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
        box = commonBox(box, context.layer != nullptr ? boxOf(*context.layer) : whole(target));
    else
        return {0, 0, 0, 0};
    if (context.clipMask != nullptr) box = commonBox(box, boxOf(*context.clipMask));
    return box;
}

} // namespace Graphics2D
} // namespace KAVO
