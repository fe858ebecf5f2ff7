// SPDX-License-Identifier: MIT
#include "gallery/Canvas.h"

#include <cmath>

using namespace KAVO;

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
    makeContext();
}

void Canvas::makeContext()
{
    context_ = std::make_unique<MMContext2D>();
    const auto width = static_cast<uint16_t>(picture.width);
    const auto height = static_cast<uint16_t>(picture.height);
    context_->target = {width, height, width * 4u, 0, picture.pixels.data(), 0};
    context_->clipRight = static_cast<int16_t>(width);
    context_->clipBottom = static_cast<int16_t>(height);
    context_->antiAlias = 1;
    place();
}

void Canvas::useFont(const std::string& fontFile)
{
    outOfMemory_ = outOfMemory();
    context_.reset(); // the font is looked for when the first context is made
    font_ = std::make_unique<FontFolder>(fontFile);
    makeContext();
    if (problem.empty()) problem = font_->problem();
}

void Canvas::fill(Pixel colour, uint8_t opacity)
{
    context_->fillPaint.paintType = kPaintSolid;
    context_->fillPaint.paintColour = colour;
    context_->fillPaint.paintOpacity = opacity;
    context_->strokePaint.paintType = kPaintNone;
}

void Canvas::stroke(Pixel colour, double width, uint8_t opacity)
{
    context_->strokePaint.paintType = kPaintSolid;
    context_->strokePaint.paintColour = colour;
    context_->strokePaint.paintOpacity = opacity;
    context_->strokeHalfWidth = fixed(width / 2);
    context_->fillPaint.paintType = kPaintNone;
}

void Canvas::beginPanel(int x, int y)
{
    panelX_ = x;
    panelY_ = y;
    place();
}

void Canvas::placeUnshifted(double x, double y, double scale, double turn)
{
    context_->transform = kIdentityMatrix;
    context_->transform.scale(fixed(scale), fixed(scale));
    context_->transform.rotate(degrees(turn));
    context_->transform.translate(fixed(panelX_ + x), fixed(panelY_ + y));
}

void Canvas::place(double x, double y, double scale, double turn)
{
    placeUnshifted(x, y, scale, turn);
    if (context_->antiAlias) context_->transform.translate(-kFixedHalf, -kFixedHalf);
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
