// SPDX-License-Identifier: MIT
// The pixels of a view.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "svg/MMSvgDocument.h"
#include "svgview/View.h"

#include <vector>

class Canvas {
public:
    explicit Canvas(KAVO::Pixel background); // opaque

    // Brings pixels that showed the view before the change up to date: what stays in sight is
    // scrolled, the rest is drawn. False when memory ran out and something is missing.
    bool update(KAVO::Svg::MMSvgDocument& drawing, const View& view, const Change& change);

    const MMPixmap& pixmap() const { return context_.target; } // as large as the view

    // Words of scratch memory that drawing has needed at most, so far.
    uint32_t scratchWords() const { return context_.scratchStack.peakWords; }

private:
    KAVO::Pixel background_;
    std::vector<KAVO::Pixel> pixels_;
    KAVO::Graphics2D::MMContext2D context_; // with the glyphs of earlier frames
};
