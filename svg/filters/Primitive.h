// SPDX-License-Identifier: MIT
// A filter primitive as an element says it.
#pragma once

#include "svg/filters/FilterTarget.h"

#include <string>

namespace KAVO {
namespace Svg {

struct Primitive {
    pugi::xml_node node;
    const Style& style;
    const FilterTarget& target;
    bool inBox;          // lengths are shares of the bounding box
    Box region;          // its subregion, user space
    Box wholeRegion;     // also what lies outside of the filter's region
    Box inputRegion;     // what the subregions of its inputs span
    std::string problem; // what of it is not drawn

    // How many it takes; -1: as its children say.
    int inputs() const;
    // Where nothing else is said it fills the filter's region, not that of its inputs.
    bool needsRegion() const;

    // The value of an attribute, "" when there is none.
    std::string_view operator[](const char* name) const { return node.attribute(name).value(); }
    double number(const char* attribute, double fallback) const;
    // One number for both axes or two, none below 0.
    Point pair(const char* attribute, double fallback) const;

    // Of a distance.
    Point toUserUnits(Point p) const;

    // A pair along the axes of the device, in pixels, within the limit.
    Point radii(const char* attribute, double fallback);

    EffectPointer blur(double deviation);
    EffectPointer offset(double distance) const;
    uint32_t flood() const;
};

// Null for what is not drawn.
EffectPointer makeEffect(Primitive& primitive);

} // namespace Svg
} // namespace KAVO
