// SPDX-License-Identifier: MIT
// The shapes of a scene through this library.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "svg/geometry/PathEncoder.h"

#include <memory>

using namespace KAVO;

using KAVO::Svg::toFixed;

namespace {

using namespace KAVO::Graphics2D;

// Curves stay whole: the library cuts them itself, by the rule of the mode.
MMPathBuilder encoded(const Outline& outline)
{
    MMPathBuilder path;
    for (const Outline::Segment& segment : outline.segments()) {
        Fixed x[3];
        Fixed y[3];
        for (int i = 0; i < 3; ++i) {
            x[i] = toFixed(segment.points[i].x);
            y[i] = toFixed(segment.points[i].y);
        }
        switch (segment.verb) {
        case Outline::Move:
            path.moveTo(x[0], y[0]);
            break;
        case Outline::Line:
            path.lineTo(x[0], y[0]);
            break;
        case Outline::Curve:
            path.cubicTo(x[0], y[0], x[1], y[1], x[2], y[2]);
            break;
        case Outline::Close:
            path.close();
            break;
        }
    }
    return path;
}

struct EncodedShape {
    MMPathBuilder path;
    std::vector<Fixed> dashes;
    Shape style;
};

struct Drawing {
    std::vector<Pixel> pixels = std::vector<Pixel>(kSceneSize * kSceneSize, 0xFFFFFFFF);
    MMContext2D context;
    std::vector<EncodedShape> shapes;

    explicit Drawing(bool refined)
    {
        setTarget(context, pixels.data(), kSceneSize, kSceneSize);
        context.antiAlias = 1;
        context.refined = refined;
        if (!refined) context.transform.translate(-kFixedHalf, -kFixedHalf);
    }

    void draw(const EncodedShape& shape)
    {
        const bool filled = shape.style.strokeWidth == 0;
        MMPaint& paint = filled ? context.fillPaint : context.strokePaint;
        (filled ? context.strokePaint : context.fillPaint).paintType = kPaintNone;
        paint.paintType = kPaintSolid;
        paint.paintColour = shape.style.colour | 0xFF000000;
        paint.paintOpacity = static_cast<uint8_t>(shape.style.colour >> 24);
        context.strokeHalfWidth = toFixed(shape.style.strokeWidth / 2);
        context.joinStyle = shape.style.roundJoinsAndCaps ? kJoinRound : kJoinMiter;
        context.capStyle = shape.style.roundJoinsAndCaps ? kCapRound : kCapButt;
        context.dashArray = shape.dashes.empty() ? nullptr : shape.dashes.data();
        context.dashCount = static_cast<uint16_t>(shape.dashes.size());
        context.drawPath(shape.path.words());
    }
};

} // namespace

Draw drawWithOurs(const std::vector<Shape>& shapes, bool refined)
{
    auto drawing = std::make_shared<Drawing>(refined);
    for (const Shape& shape : shapes) {
        EncodedShape ready;
        ready.path = encoded(shape.outline);
        for (double dash : shape.dashes)
            ready.dashes.push_back(toFixed(dash));
        ready.style = shape;
        drawing->shapes.push_back(std::move(ready));
    }
    return [drawing] {
        for (const EncodedShape& shape : drawing->shapes)
            drawing->draw(shape);
    };
}
