// SPDX-License-Identifier: MIT
#include "svgview/View.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using KAVO::Svg::Placement;
using KAVO::Svg::Size;

namespace {

constexpr double kStep = 1.25;
constexpr double kSmallestDrawing = 16;     // pixels of the longer side
constexpr double kLargestDrawing = 1 << 20; // beyond, the engine's coordinates lose their precision
constexpr double kKept = 32;                // pixels of the drawing that panning leaves in sight

int heldSide(int side)
{
    return std::clamp(side, 1, View::kLargestSide);
}

double snapped(double position)
{
    return std::round(position * 65536) / 65536;
}

// Of a motion by distance, what keeps a drawing from position on, of that size, in sight. What is
// out of sight already may come back and go no further.
int heldMotion(int distance, double position, double size, int window)
{
    const double kept = std::min({kKept, size, static_cast<double>(window)});
    const double least = std::min(0.0, std::ceil(kept - size - position));
    const double most = std::max(0.0, std::floor(window - kept - position));
    return static_cast<int>(std::clamp<double>(distance, least, most));
}

} // namespace

std::vector<PixelRect> uncovered(const Change& change, int width, int height)
{
    const int dx = change.dx;
    const int dy = change.dy;
    if (change.whole || std::abs(dx) >= width || std::abs(dy) >= height)
        return {{0, 0, width, height}};
    std::vector<PixelRect> strips;
    const int top = std::max(dy, 0);
    const int bottom = height + std::min(dy, 0);
    if (dy != 0)
        strips.push_back(dy > 0 ? PixelRect{0, 0, width, top}
                                : PixelRect{0, bottom, width, height});
    if (dx > 0) strips.push_back({0, top, dx, bottom});
    if (dx < 0) strips.push_back({width + dx, top, width, bottom});
    return strips;
}

View::View(const Size& drawing, int width, int height)
    : drawing_(drawing), width_(heldSide(width)), height_(heldSide(height))
{
    fit();
}

void View::setDrawing(const Size& drawing)
{
    change_.whole = true;
    if (drawing.width == drawing_.width && drawing.height == drawing_.height) return;
    drawing_ = drawing;
    fit();
}

void View::resize(int width, int height)
{
    if (heldSide(width) == width_ && heldSide(height) == height_) return;
    width_ = heldSide(width);
    height_ = heldSide(height);
    fit();
}

void View::fit()
{
    scale_ = std::min(width_ / drawing_.width, height_ / drawing_.height);
    left_ = std::round((width_ - drawing_.width * scale_) / 2);
    top_ = std::round((height_ - drawing_.height * scale_) / 2);
    change_.whole = true;
}

void View::zoom(double steps, int x, int y)
{
    const double longer = std::max(drawing_.width, drawing_.height);
    const double scale =
        std::clamp(scale_ * std::pow(kStep, steps), std::min(scale_, kSmallestDrawing / longer),
                   std::max(scale_, kLargestDrawing / longer));
    if (scale == scale_) return;
    const double factor = scale / scale_;
    left_ = snapped(x + 0.5 - (x + 0.5 - left_) * factor);
    top_ = snapped(y + 0.5 - (y + 0.5 - top_) * factor);
    scale_ = scale;
    change_.whole = true;
}

void View::pan(int dx, int dy)
{
    dx = heldMotion(dx, left_, drawing_.width * scale_, width_);
    dy = heldMotion(dy, top_, drawing_.height * scale_, height_);
    left_ += dx;
    top_ += dy;
    change_.dx += dx;
    change_.dy += dy;
}

Placement View::placement() const
{
    return {left_, top_, drawing_.width * scale_, drawing_.height * scale_};
}

Change View::takeChange()
{
    const Change change = change_;
    change_ = {};
    return change;
}
