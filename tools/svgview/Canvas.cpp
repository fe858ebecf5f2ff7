// SPDX-License-Identifier: MIT
#include "svgview/Canvas.h"

#include "graphics2d/RegionFlush.h"
#include "graphics2d/convenience/MMContextState.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

int16_t pixel(int value)
{
    return static_cast<int16_t>(value);
}

} // namespace

Canvas::Canvas(Pixel background) : background_(background)
{
    context_.antiAlias = 1;
}

bool Canvas::update(Svg::MMSvgDocument& drawing, const View& view, const Change& change)
{
    context_.outOfMemory = 0;
    const int width = view.width();
    const int height = view.height();
    const std::vector<PixelRect> strips = uncovered(change, width, height);
    if (change.whole) {
        pixels_.assign(static_cast<size_t>(width) * static_cast<size_t>(height), background_);
        setTarget(context_, pixels_.data(), width, height);
        context_.target.backgroundColour = background_;
    } else {
        panPixmap(&context_.target, pixel(change.dx), pixel(change.dy));
    }
    for (const PixelRect& strip : strips) {
        const MMContextState state(context_);
        context_.clipLeft = pixel(strip.left);
        context_.clipTop = pixel(strip.top);
        context_.clipRight = pixel(strip.right);
        context_.clipBottom = pixel(strip.bottom);
        drawing.render(context_, view.placement());
    }
    return context_.outOfMemory == 0;
}
