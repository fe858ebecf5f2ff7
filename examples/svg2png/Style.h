// SPDX-License-Identifier: MIT
// Properties of an element and the style they make.
#pragma once

#include "svg2png/TextScanner.h"

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Name of an element or attribute without the svg: prefix that some files carry. Names with another
// prefix come back whole.
std::string_view localName(const char* name);

// The element's properties: the style attribute's declarations before the attributes.
class Properties {
public:
    explicit Properties(pugi::xml_node node);

    // The value without white space around it; empty when it is absent or "inherit".
    std::string_view operator[](std::string_view name) const;

private:
    pugi::xml_node node_;
    std::vector<std::pair<std::string_view, std::string_view>> declarations_;
};

// What to fill or stroke with.
struct PaintValue {
    enum Kind { None, Colour, Server };
    Kind kind = None;
    uint32_t colour = 0xFF000000; // of a Server: to be used when there is no such server
    bool isCurrentColour = false; // colour follows the color property, also when inherited
    bool hasFallback = false;
    std::string server; // id of a gradient
};

enum class ImageFilter { Nearest, Bilinear, Bicubic };

struct Style {
    PaintValue fill{PaintValue::Colour, 0xFF000000, false, false, {}};
    PaintValue stroke;
    double fillOpacity = 1;
    double strokeOpacity = 1;
    double opacity = 1; // of the element and of all around it, multiplied
    bool evenOdd = false;
    uint32_t colour = 0xFF000000; // currentColor
    bool visible = true;

    double strokeWidth = 1;
    double miterLimit = 4;
    uint8_t join = 0; // MMJoinStyle
    uint8_t cap = 0;  // MMCapStyle
    std::vector<double> dashes;
    double dashOffset = 0;

    double fontSize = 16;
    int fontWeight = 400;
    bool slanted = false;
    int textAnchor = 0; // 0 start, 1 middle, 2 end
    double letterSpacing = 0;
    bool preserveSpace = false;
    bool underline = false;
    ImageFilter imageFilter = ImageFilter::Bilinear;

    // Takes over what the element sets. percentBase is the length of 100 %.
    void apply(const Properties& properties, double percentBase);
};

// A number from 0 to 1 or a percentage; fallback when the text is neither.
double parseOpacity(std::string_view text, double fallback);
