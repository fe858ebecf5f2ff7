// SPDX-License-Identifier: MIT
// Linear and radial gradients.
#pragma once

#include "graphics2d/sources/MMGradientSource.h"
#include "svg/document/SvgDocument.h"

#include <vector>

namespace KAVO {
namespace Svg {

// A gradient element with everything that it takes from those it refers to.
struct Gradient {
    struct Stop {
        double offset; // 0 to 1, ascending
        Pixel colour;  // not premultiplied
    };

    bool radial = false;
    bool inBox = true; // coordinates are fractions of the shape's bounding box
    Affine transform;
    Point start; // of a radial gradient the centre of the inner circle
    Point end;   // of a radial gradient the centre of the outer circle
    double innerRadius = 0;
    double radius = 0;
    Graphics2D::MMSpread spread = Graphics2D::kSpreadPad;
    std::vector<Stop> stops; // none: nothing is painted
};

Gradient readGradient(const SvgDocument& document, pugi::xml_node node, const Viewport& viewport);

// A gradient made ready for the library; the paint points into it.
class GradientPaint {
public:
    // toDevice maps the shape's user space to device pixels; visible is the part of the device that
    // matters. False when nothing is to be painted.
    bool set(MMPaint& paint, Gradient gradient, const Affine& toDevice, const Box& shapeBounds,
             const Box& visible);

private:
    void setRamp(MMPaint& paint, const Gradient& gradient, const Affine& toDevice);
    bool setSource(MMPaint& paint, const Gradient& gradient, const Affine& toDevice,
                   const Box& visible);
    Graphics2D::GradientStops layOutStops(const Gradient& gradient);

    std::vector<Pixel> colours_;
    std::vector<Fixed> offsets_;
    std::vector<Pixel> rampColours_;
    std::vector<Fixed> rampOffsets_;
    Graphics2D::MMGradientSource source_;
};

} // namespace Svg
} // namespace KAVO
