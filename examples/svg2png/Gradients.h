// SPDX-License-Identifier: MIT
// Linear and radial gradients.
#pragma once

#include "graphics2d/PaintSetup.h"
#include "svg2png/Shapes.h"
#include "svg2png/SvgDocument.h"

#include <set>
#include <vector>

// A gradient element with everything that it takes from those it refers to.
struct Gradient {
    bool radial = false;
    bool inBox = true; // coordinates are fractions of the shape's bounding box
    Affine transform;
    Point start; // of a radial gradient the centre
    Point end;
    double radius = 0;
    std::vector<KAVO::Pixel> colours;
    std::vector<KAVO::Fixed> offsets; // 0 to 1.0

    // Lets it look the same through glyphs as in a shape: before its first stop and after its last
    // one, where the library treats the alpha as forGlyphs says.
    void adaptToGlyphs();
};

// Nothing when the node is no gradient. Adds to shortcomings what the library's gradients lack.
std::optional<Gradient> readGradient(const SvgDocument& document, pugi::xml_node node,
                                     const ViewportSize& viewport, uint32_t currentColour,
                                     std::set<std::string>& shortcomings);

// A gradient made ready for the library; the paint points into it.
class GradientPaint {
public:
    // toDevice maps the shape's user space to the pixels that the library draws, with the shift of
    // anti-aliasing. False when nothing is to be painted.
    bool set(MMPaint& paint, Gradient gradient, const Affine& toDevice, const Box& shapeBounds);

private:
    Gradient gradient_;
    std::vector<KAVO::Pixel> rampColours_;
    std::vector<KAVO::Fixed> rampOffsets_;
};
