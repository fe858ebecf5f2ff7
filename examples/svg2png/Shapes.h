// SPDX-License-Identifier: MIT
// Geometry of the shape elements.
#pragma once

#include "svg2png/Outline.h"

#include <pugixml.hpp>
#include <string_view>

// A rectangle with elliptical corners, or a whole ellipse.
struct RoundedBox {
    Point centre;
    double halfWidth = 0;
    double halfHeight = 0;
    double rx = 0;
    double ry = 0;
};

struct Shape {
    Outline outline;               // always there
    std::optional<RoundedBox> box; // the same, when it is one with round corners
    bool malformed = false;        // its data broke off; what stands before is in the outline
};

// Lengths that percentages refer to.
struct ViewportSize {
    double width = 0;
    double height = 0;
    double diagonal() const { return std::hypot(width, height) / std::sqrt(2.0); }
};

// path, rect, circle, ellipse, line, polyline or polygon.
bool isShape(std::string_view elementName);

// An empty outline when the element draws nothing.
Shape makeShape(pugi::xml_node node, const ViewportSize& viewport, double fontSize);
