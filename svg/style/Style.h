// SPDX-License-Identifier: MIT
// The computed style of an element.
#pragma once

#include "svg/style/PaintValue.h"
#include "svg/style/Properties.h"
#include "svg/values/Colour.h"
#include "svg/values/Length.h"

#include <algorithm>
#include <memory>
#include <string>

namespace KAVO {
namespace Svg {

enum class ImageFilter { Nearest, Bilinear };
enum class Marker { Start, Mid, End };
enum class PaintStep : uint8_t { Fill, Stroke, Markers };

struct Style {
    // Inherited.
    uint32_t colour = 0xFF000000; // currentColor
    PaintValue fill{PaintValue::Colour, 0xFF000000, false, false, {}};
    PaintValue stroke;
    double fillOpacity = 1;
    double strokeOpacity = 1;
    bool evenOdd = false;
    bool clipEvenOdd = false; // inside a clip path
    bool visible = true;
    bool crisp = false; // no anti-aliasing for shapes
    PaintStep paintOrder[3] = {PaintStep::Fill, PaintStep::Stroke, PaintStep::Markers};

    double strokeWidth = 1;
    double miterLimit = 4;
    uint8_t join = 0;                                  // MMJoinStyle
    bool curvesMiters = false;                         // arcs joins, which are not drawn
    bool clipsMiters = false;                          // those beyond the limit, instead of bevels
    uint8_t cap = 0;                                   // MMCapStyle
    std::shared_ptr<const std::vector<double>> dashes; // null: none
    double dashOffset = 0;
    std::string_view markers[3]; // ids, by Marker

    double fontSize = 16;
    int fontWeight = 400;
    bool slanted = false;
    int textAnchor = 0; // 0 start, 1 middle, 2 end
    double letterSpacing = 0;
    double wordSpacing = 0;
    bool preserveSpace = false;
    // Lines at a text: the style of the element that asked for them, which paints them; null: none.
    std::shared_ptr<const Style> underline;
    std::shared_ptr<const Style> overline;
    std::shared_ptr<const Style> lineThrough;
    double dominantBaseline = 0; // above the alphabetic one, as part of the font size
    ImageFilter imageFilter = ImageFilter::Bilinear;
    bool linearFilters = true; // filter primitives work in linear light

    // Not inherited.
    double opacity = 1; // of the element and of all around it, multiplied
    double ownOpacity = 1;
    bool linearMasks = false; // color-interpolation: masks weigh linear light
    bool displayed = true;
    double baseline = 0;      // the dominant one, or the one to align: part of the font size
    double baselineShift = 0; // upwards from the parent's, user units
    bool fixedStroke = false; // vector-effect: non-scaling-stroke
    uint32_t stopColour = 0xFF000000;
    double stopOpacity = 1;
    uint32_t floodColour = 0xFF000000;
    double floodOpacity = 1;
    uint32_t lightingColour = 0xFFFFFFFF;
    std::string_view transform;
    std::string_view translate; // these three go before the transform, in this order
    std::string_view rotate;
    std::string_view scale;
    std::string_view transformOrigin;
    std::string_view transformBox;
    std::string_view overflow;
    std::string_view clip;

    // The style of a child with these properties; viewport is what percentages refer to.
    Style child(const Properties& properties, const Viewport& viewport) const;

    // How far a stroke reaches from its line at most, user units.
    double strokeReach() const { return strokeWidth * std::max(miterLimit, 1.5); }

    // Whether what leaves a viewport is shown.
    bool overflows() const { return overflow == "visible" || overflow == "auto"; }

    bool isTransformed() const
    {
        return !(transform.empty() && transformOrigin.empty() && translate.empty() &&
                 rotate.empty() && scale.empty());
    }

    LengthContext lengths(const Viewport& viewport) const { return {viewport, fontSize}; }
};

// A number from 0 to 1 or a percentage; fallback when the text is neither.
double parseOpacity(std::string_view text, double fallback);

} // namespace Svg
} // namespace KAVO
