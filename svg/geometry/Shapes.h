// SPDX-License-Identifier: MIT
// Geometry of the shape elements.
#pragma once

#include "svg/geometry/Outline.h"
#include "svg/style/Properties.h"
#include "svg/values/Length.h"

#include <pugixml.hpp>
#include <string_view>

namespace KAVO {
namespace Svg {

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
    double pathLength = 0;         // of the outline as the author has it; 0: not given
    bool malformed = false;        // its data broke off; what stands before is in the outline
};

// path, rect, circle, ellipse, line, polyline or polygon.
bool isShape(std::string_view elementName);

// An empty outline when the element draws nothing.
Shape makeShape(pugi::xml_node node, const Properties& properties, const LengthContext& lengths);

} // namespace Svg
} // namespace KAVO
