// SPDX-License-Identifier: MIT
#include "svgview/Readout.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMText.h"
#include "math/FixedLiteral.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr int32_t kHeight = 18; // pixels, for text of 12
constexpr int32_t kMargin = 6;  // left and right of the text
constexpr Pixel kGround = 0xFF202428;
constexpr Pixel kInk = 0xFFE8E8E8;

} // namespace

Readout::Readout()
{
    context_.antiAlias = 1;
    context_.fontSize = 12_fx;
    context_.fillPaint.paintColour = kInk;
}

void Readout::write(const std::string& text)
{
    MMText line(text.c_str());
    const Fixed advance = context_.getTextWidth(line.units(), static_cast<uint16_t>(line.length()));
    const int32_t width = advance > 0 ? fixFloor(advance) + 1 + 2 * kMargin : 0;
    pixels_.assign(static_cast<size_t>(width) * kHeight, kGround);
    setTarget(context_, pixels_.data(), width, kHeight);
    context_.drawText(line.units(), fixFromInt(kMargin), 13_fx);
}
