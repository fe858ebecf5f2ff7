// SPDX-License-Identifier: MIT
// A line of text on a ground of its own, for a corner of the window.
#pragma once

#include "graphics2d/MMContext2D.h"

#include <string>
#include <vector>

class Readout {
public:
    Readout();

    void write(const std::string& text);

    const MMPixmap& pixmap() const { return context_.target; } // without a font, of no width

private:
    std::vector<KAVO::Pixel> pixels_;
    KAVO::Graphics2D::MMContext2D context_;
};
