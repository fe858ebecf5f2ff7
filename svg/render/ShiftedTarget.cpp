// SPDX-License-Identifier: MIT
#include "svg/render/ShiftedTarget.h"

#include "svg/images/Picture.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr double kMargin = 3; // pixels, for anti-aliased edges
constexpr uint32_t kColour = 0x00FFFFFF;
constexpr uint32_t kAlpha = 0xFF000000;

int16_t column(double value)
{
    return static_cast<int16_t>(std::max(0.0, std::min<double>(value, kLargestSide)));
}

Pixel* rowOf(const MMPixmap& pixmap, int y)
{
    return pixmap.pixels + static_cast<size_t>(y) * (pixmap.rowBytes / sizeof(Pixel));
}

} // namespace

ShiftedTarget::ShiftedTarget(Graphics2D::MMContext2D& context, std::vector<Pixel>& memory,
                             const Box& box)
    : clip_(context), context_(context), target_(context.target)
{
    context.clipLeft = std::max(context.clipLeft, column(box.left - kMargin));
    context.clipTop = std::max(context.clipTop, column(box.top - kMargin));
    context.clipRight = std::min(context.clipRight, column(box.right + kMargin));
    context.clipBottom = std::min(context.clipBottom, column(box.bottom + kMargin));
    left_ = context.clipLeft;
    top_ = context.clipTop;
    right_ = context.clipRight;
    bottom_ = left_ < right_ ? context.clipBottom : top_;

    const size_t width = target_.width + size_t{1};
    memory.resize(width * target_.height);
    context.target.pixels = memory.data();
    context.target.width = static_cast<uint16_t>(width);
    context.target.rowBytes = static_cast<uint32_t>(width * sizeof(Pixel));
    for (int y = top_; y < bottom_; ++y) {
        const Pixel* from = rowOf(target_, y);
        Pixel* to = rowOf(context.target, y);
        to[left_] = from[std::max(left_ - 1, 0)] & kColour;
        for (int x = left_; x < right_; ++x)
            to[x + 1] = from[x] & kColour;
    }
}

ShiftedTarget::~ShiftedTarget()
{
    for (int y = top_; y < bottom_; ++y) {
        const Pixel* from = rowOf(context_.target, y);
        Pixel* to = rowOf(target_, y);
        for (int x = left_; x < right_; ++x) {
            if (from[x] & kAlpha) to[x] = from[x] | kAlpha;
        }
    }
    context_.target = target_;
}

} // namespace Svg
} // namespace KAVO
