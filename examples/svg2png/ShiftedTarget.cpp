// SPDX-License-Identifier: MIT
#include "svg2png/ShiftedTarget.h"

using namespace KAVO::Graphics2D;

namespace {

constexpr double kMargin = 3; // pixels, for anti-aliased edges
constexpr uint32_t kColour = 0x00FFFFFF;
constexpr uint32_t kAlpha = 0xFF000000;

int16_t column(double value)
{
    return static_cast<int16_t>(std::max(0.0, std::min<double>(value, kLargestSide)));
}

} // namespace

ShiftedTarget::ShiftedTarget(MMContext2D& context, Picture& picture, Picture& shadow,
                             const Box& box)
    : clip_(context), context_(context), picture_(picture), shadow_(shadow)
{
    context.clipLeft = std::max(context.clipLeft, column(box.left - kMargin));
    context.clipTop = std::max(context.clipTop, column(box.top - kMargin));
    context.clipRight = std::min(context.clipRight, column(box.right + kMargin));
    context.clipBottom = std::min(context.clipBottom, column(box.bottom + kMargin));
    left_ = context.clipLeft;
    top_ = context.clipTop;
    right_ = context.clipRight;
    bottom_ = left_ < right_ ? context.clipBottom : top_;

    if (shadow.pixels.empty()) shadow = Picture(picture.width + 1, picture.height, 0);
    for (int y = top_; y < bottom_; ++y) {
        shadow.at(left_, y) = picture.at(std::max(left_ - 1, 0), y) & kColour;
        for (int x = left_; x < right_; ++x)
            shadow.at(x + 1, y) = picture.at(x, y) & kColour;
    }
    context.target.pixels = shadow.pixels.data();
    context.target.width = static_cast<uint16_t>(shadow.width);
    context.target.rowBytes = static_cast<uint32_t>(shadow.width) * 4;
}

ShiftedTarget::~ShiftedTarget()
{
    context_.target.pixels = picture_.pixels.data();
    context_.target.width = static_cast<uint16_t>(picture_.width);
    context_.target.rowBytes = static_cast<uint32_t>(picture_.width) * 4;
    for (int y = top_; y < bottom_; ++y) {
        for (int x = left_; x < right_; ++x) {
            const uint32_t drawn = shadow_.at(x, y);
            if (drawn & kAlpha) picture_.at(x, y) = drawn | kAlpha;
        }
    }
}
