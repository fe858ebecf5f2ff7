// SPDX-License-Identifier: MIT
#include "gallery/Canvas.h"

#include <cmath>

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

constexpr double kTurn = 2 * 3.14159265358979323846;

} // namespace

void addStar(MMPathBuilder& path, double cx, double cy, double r, int points, int step)
{
    for (int i = 0; i < points; ++i) {
        const double angle = kTurn * i * step / points;
        const Fixed x = fixed(cx + r * std::sin(angle));
        const Fixed y = fixed(cy - r * std::cos(angle));
        if (i == 0)
            path.moveTo(x, y);
        else
            path.lineTo(x, y);
    }
    path.close();
}

MMPathBuilder star(double cx, double cy, double r, int points, int step)
{
    MMPathBuilder path;
    addStar(path, cx, cy, r, points, step);
    return path;
}

Canvas::Canvas(int width, int height, Pixel paper) : picture(width, height, paper)
{
    makeContext();
}

void Canvas::makeContext()
{
    context_ = std::make_unique<MMContext2D>();
    setTarget(*context_, picture.pixels.data(), picture.width, picture.height);
    context_->antiAlias = 1;
    place();
}

void Canvas::useFont(const std::string& fontFile)
{
    outOfMemory_ = outOfMemory();
    context_.reset(); // the font is looked for when the first context is made
    if (!setFontFile(fontFile.c_str()) && problem.empty()) problem = "out of memory";
    makeContext();
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

void Canvas::place(double x, double y, double scale, double turn)
{
    context_->transform = kIdentityMatrix;
    context_->transform.scale(fixed(scale), fixed(scale));
    context_->transform.rotate(degrees(turn));
    context_->transform.translate(fixed(panelX_ + x), fixed(panelY_ + y));
}

void Canvas::draw(const MMPathBuilder& path)
{
    outOfMemory_ = outOfMemory_ || path.outOfMemory();
    context_->drawPath(path.words());
}

void Canvas::rectangle(double x, double y, double width, double height)
{
    MMPathBuilder path;
    draw(path.rect(fixed(x), fixed(y), fixed(width), fixed(height)));
}
