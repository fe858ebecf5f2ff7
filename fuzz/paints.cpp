// SPDX-License-Identifier: MIT
// Strip fillers on single spans, rectangles in any paint, the making of paints, images.
#include "fuzz/HostileScene.h"
#include "graphics2d/PaintSetup.h"
#include "graphics2d/RegionFlush.h"
#include "graphics2d/strips/StripDispatch.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// A span as the rasterisers make them: within the clip, the tail too.
void fillSpan(ByteReader& in, MMContext2D& context)
{
    const MMPixmap& target = context.target;
    context.clipLeft = context.clipTop = 0;
    context.clipRight = static_cast<int16_t>(target.width);
    context.clipBottom = static_cast<int16_t>(target.height);
    if (target.width == 0 || target.height == 0) return;
    const uint32_t kind = in.below(8);
    const int32_t start = static_cast<int32_t>(in.below(target.width));
    const int32_t end = start + static_cast<int32_t>(in.below(target.width - start + 1u));
    context.spanRow = static_cast<int32_t>(in.below(target.height));
    context.spanPixels = target.pixels + context.spanRow * (target.rowBytes / 4);
    context.spanStart = start * kFixedOne + in.half();
    context.spanEnd = end * kFixedOne + in.half();
    context.spanCoverage = in.fixed();
    context.spanCoverageNext = in.fixed();
    context.spanCoverageStep = in.fixed();
    context.spanTailCoverage = end < target.width ? in.fixed() : 0;
    const StripFiller edge =
        kind == 0 ? [](MMContext2D& c) { c.drawTransStrip(); } : chooseEdgeFiller(context);
    if (kind >= 4)
        drawSpan(context, chooseSpanFiller(context));
    else if (edge != nullptr)
        edge(context);
}

// Every kind of paint that the set-up makes, over the whole picture.
void makePaint(ByteReader& in, HostileScene& scene)
{
    MMContext2D& context = scene.context;
    const uint32_t count = in.below(6);
    const std::vector<Pixel> colours = in.array<Pixel>(count);
    const std::vector<Fixed> offsets = in.array<Fixed>(count);
    std::vector<Pixel> rampColours(gradientRampRoom(count));
    std::vector<Fixed> rampOffsets(gradientRampRoom(count));
    const GradientStops stops = {colours.data(), offsets.data(), count};
    const GradientRamp ramp = {rampColours.data(), rampOffsets.data()};
    const Matrix2D matrix = scene.readMatrix();
    const MMPoint2D from = {in.fixed(), in.fixed()};
    const MMPoint2D to = {in.fixed(), in.fixed()};
    MMPaint& paint = context.currentPaint;
    setLinearGradient(paint, from, to, matrix, stops, ramp);
    MMPoint2D square[4] = {
        {0, 0}, {64 * kFixedOne, 0}, {64 * kFixedOne, 64 * kFixedOne}, {0, 64 * kFixedOne}};
    context.rasterPolygon(square, 4);
    setRadialGradient(paint, from, to.x, matrix, stops, ramp);
    context.rasterPolygon(square, 4);
    const MMPatternFilter filter = static_cast<MMPatternFilter>(in.below(3));
    context.patternFilter = filter;
    setPattern(paint, scene.readImage(), matrix, filter);
    context.rasterPolygon(square, 4);
}

void scroll(ByteReader& in, MMPixmap target)
{
    MMG_flushRegion(&target, in.word(), in.word(), in.word(), in.half(), in.word());
    panPixmap(&target, static_cast<int16_t>(in.half()), static_cast<int16_t>(in.half()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ByteReader in(data, size);
    const uint32_t operation = in.below(6);
    HostileScene scene(in, true);
    MMContext2D& context = scene.context;
    const Fixed x = in.fixed(), y = in.fixed(), w = in.fixed(), h = in.fixed();
    switch (operation) {
    case 0:
    case 1:
        fillSpan(in, context);
        break;
    case 2: {
        const MMPixmap image = scene.readImage();
        context.drawImage(&image, x, y, w, h, in.byte());
        break;
    }
    case 3: {
        const MMPixmap image = scene.readImage();
        const MMFixedRegion source = {in.fixed(), in.fixed(), in.fixed(), in.fixed()};
        const MMFixedRegion destination = {x, y, w, h};
        const MMPixmap target = context.target;
        context.drawImage(&image, &source, &target, &destination, in.fixed());
        break;
    }
    case 4:
        makePaint(in, scene);
        break;
    default:
        context.clipLeft = context.clipTop = 0;
        context.clipRight = context.clipBottom = INT16_MAX;
        scroll(in, context.target);
    }
    scene.check(false);
    return 0;
}
