// SPDX-License-Identifier: MIT
// Gradients and images through this library.
#include "OursGradient.h"
#include "Paints.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "svg/geometry/PathEncoder.h"

#include <memory>

using namespace KAVO;
using namespace KAVO::Graphics2D;

using KAVO::Svg::toFixed;

namespace {

struct Drawing {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    std::vector<Pixel> texels;
    MMGradient<3> gradient = oursGradient();
    MMContext2D context;
    MMPathBuilder path;

    Drawing(const PaintedSquare& square, bool refined) : texels(paintImage(square.hasAlpha, false))
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.refined = refined;
        setPaint(square);
        context.fillPaint.paintOpacity = square.opacity;
        const Fixed end = toFixed(square.size);
        path.rect(0, 0, end, end);
    }

    void setPaint(const PaintedSquare& square)
    {
        const Fixed middle = toFixed(kMiddle);
        MMPaint& paint = context.fillPaint;
        if (square.kind == PaintedSquare::Linear)
            gradient.setLinear(context, paint, {0, 0},
                               {toFixed(kLinearEnd.x), toFixed(kLinearEnd.y)});
        if (square.kind == PaintedSquare::Radial)
            gradient.setRadial(context, paint, {middle, middle}, middle);
        if (square.kind != PaintedSquare::Image) return;
        constexpr MMPatternFilter kFilters[] = {kFilterNearest, kFilterBilinear, kFilterBicubic};
        const MMPatternFilter filter = kFilters[static_cast<int>(square.filter)];
        context.patternFilter = filter;
        Matrix2D transform = kIdentityMatrix;
        if (square.scale != 1) transform.scale(toFixed(square.scale), toFixed(square.scale));
        transform.rotate(toFixed(square.degrees));
        const MMPixmap pixmap = {kImageSize, kImageSize,    kImageSize * 4,
                                 0,          texels.data(), square.hasAlpha};
        setPattern(paint, pixmap, transform, filter, context.refined != 0);
    }
};

} // namespace

Draw drawWithOurs(const PaintedSquare& square, bool refined)
{
    auto drawing = std::make_shared<Drawing>(square, refined);
    return [drawing] { drawing->context.drawPath(drawing->path.words()); };
}
