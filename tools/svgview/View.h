// SPDX-License-Identifier: MIT
// Where a drawing lies in a window, and what has to be drawn when that changes.
#pragma once

#include "svg/MMSvgDocument.h"

#include <vector>

// What has to be done to pixels that show the view as it was.
struct Change {
    bool whole = false; // everything is drawn anew; otherwise
    int dx = 0;         // pixels move right
    int dy = 0;         // and down by this

    bool any() const { return whole || dx != 0 || dy != 0; }
};

// Pixels: left and top inclusive, right and bottom exclusive.
struct PixelRect {
    int left;
    int top;
    int right;
    int bottom;
};

// The parts of a window of width by height that hold no picture after the change: none, the whole
// window, or the strips that come into sight, which do not overlap.
std::vector<PixelRect> uncovered(const Change& change, int width, int height);

// Lengths of the drawing are in its user units, all others in pixels of the window.
class View {
public:
    // Sides of the window are held between 1 and this.
    static constexpr int kLargestSide = 8192;

    // Fitted into the window. The drawing has a size, as documents do that could be loaded.
    View(const KAVO::Svg::Size& drawing, int width, int height);

    // Another drawing in place of the first, or the same in a new state: it keeps its place when it
    // has the same size, and is fitted into the window otherwise.
    void setDrawing(const KAVO::Svg::Size& drawing);

    void resize(int width, int height); // fits the drawing when the size is another

    // The whole drawing, as large as it can be, in the middle, on whole pixels.
    void fit();

    // Larger by a quarter for each step, smaller for negative ones, about the middle of the pixel
    // (x, y), which keeps showing the same point of the drawing. The longer side of the drawing
    // stays between 16 pixels and 2^20, or where fitting has brought it.
    void zoom(double steps, int x, int y);

    // Moves the drawing, no further than that a part of it stays in sight.
    void pan(int dx, int dy);

    int width() const { return width_; }
    int height() const { return height_; }
    double scale() const { return scale_; } // pixels for each user unit
    KAVO::Svg::Placement placement() const;

    // What has changed since the last call; everything on the first.
    Change takeChange();

private:
    KAVO::Svg::Size drawing_;
    int width_;
    int height_;
    double scale_ = 1;
    double left_ = 0; // multiples of 1/65536: moving by whole pixels is exact
    double top_ = 0;
    Change change_;
};
