#include "gallery/Canvas.h"

#include <cmath>

using namespace KAVO::Graphics2D;

namespace {

constexpr uint32_t kCurveKind = 1u << 28;
constexpr uint32_t kEndOfSubpath = 1u << 30;
constexpr uint32_t kClosed = 1u << 31;
constexpr double kTurn = 2 * 3.14159265358979323846;

} // namespace

void PathBuilder::begin(uint32_t kind)
{
    command_ = words_.size();
    words_.push_back(kind | 1);
    words_[1] += 1u << 16;
}

void PathBuilder::put(double x, double y)
{
    words_.push_back(static_cast<uint32_t>(fixed(x)));
    words_.push_back(static_cast<uint32_t>(fixed(y)));
}

void PathBuilder::endSubpath(uint32_t flags)
{
    if (command_ == 0) return;
    words_[command_] |= kEndOfSubpath | flags;
    words_[1] += 1;
    command_ = 0;
}

PathBuilder& PathBuilder::moveTo(double x, double y)
{
    endSubpath(0);
    return lineTo(x, y);
}

PathBuilder& PathBuilder::lineTo(double x, double y)
{
    begin(0);
    put(x, y);
    return *this;
}

PathBuilder& PathBuilder::curveTo(double x1, double y1, double x2, double y2, double x3, double y3)
{
    begin(kCurveKind);
    put(x1, y1);
    put(x2, y2);
    put(x3, y3);
    return *this;
}

PathBuilder& PathBuilder::close()
{
    endSubpath(kClosed);
    return *this;
}

PathBuilder& PathBuilder::circle(double cx, double cy, double r)
{
    const double h = r * 0.5522847; // handles of a quarter circle
    moveTo(cx + r, cy);
    curveTo(cx + r, cy + h, cx + h, cy + r, cx, cy + r);
    curveTo(cx - h, cy + r, cx - r, cy + h, cx - r, cy);
    curveTo(cx - r, cy - h, cx - h, cy - r, cx, cy - r);
    curveTo(cx + h, cy - r, cx + r, cy - h, cx + r, cy);
    return close();
}

// Every step-th of so many points on a circle, the first at the top.
PathBuilder& PathBuilder::star(double cx, double cy, double r, int points, int step)
{
    for (int i = 0; i < points; ++i) {
        const double angle = kTurn * i * step / points;
        const double x = cx + r * std::sin(angle);
        const double y = cy - r * std::cos(angle);
        if (i == 0)
            moveTo(x, y);
        else
            lineTo(x, y);
    }
    return close();
}

const uint32_t* PathBuilder::words()
{
    return storedPath() + 1;
}

const uint32_t* PathBuilder::storedPath()
{
    endSubpath(0);
    return words_.data();
}

Canvas::Canvas(int width, int height, Pixel paper) : picture(width, height, paper)
{
    const auto w = static_cast<uint16_t>(width);
    const auto h = static_cast<uint16_t>(height);
    context.target = {w, h, w * 4u, paper, picture.pixels.data(), 0};
    context.clipRight = static_cast<int16_t>(width);
    context.clipBottom = static_cast<int16_t>(height);
    context.antiAlias = 1;
}

void Canvas::fill(Pixel colour, uint8_t opacity)
{
    context.fillPaint.paintType = kPaintSolid;
    context.fillPaint.paintColour = colour;
    context.fillPaint.paintOpacity = opacity;
    context.strokePaint.paintType = kPaintNone;
}

void Canvas::stroke(Pixel colour, double width, uint8_t opacity)
{
    context.strokePaint.paintType = kPaintSolid;
    context.strokePaint.paintColour = colour;
    context.strokePaint.paintOpacity = opacity;
    context.strokeHalfWidth = fixed(width / 2);
    context.fillPaint.paintType = kPaintNone;
}

void Canvas::beginPanel(int x, int y)
{
    panelX_ = x;
    panelY_ = y;
    place();
}

void Canvas::placeUnshifted(double x, double y, double scale, double turn)
{
    context.transform = kIdentityMatrix;
    context.transform.scale(fixed(scale), fixed(scale));
    context.transform.rotate(degrees(turn));
    context.transform.translate(fixed(panelX_ + x), fixed(panelY_ + y));
}

void Canvas::place(double x, double y, double scale, double turn)
{
    placeUnshifted(x, y, scale, turn);
    if (context.antiAlias) context.transform.translate(-kFixedHalf, -kFixedHalf);
}

void Canvas::rectangle(double x, double y, double width, double height)
{
    draw(PathBuilder()
             .moveTo(x, y)
             .lineTo(x + width, y)
             .lineTo(x + width, y + height)
             .lineTo(x, y + height)
             .close());
}
