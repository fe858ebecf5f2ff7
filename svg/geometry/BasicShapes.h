// SPDX-License-Identifier: MIT
// The basic shapes of CSS, as clip-path takes them.
#pragma once

#include "svg/geometry/Outline.h"
#include "svg/values/Length.h"

#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

// What a shape's percentages and places refer to.
enum class ShapeBox { Fill, Stroke, View };

// A value of clip-path that is not the name of an element.
struct BasicShape {
    std::string_view function;  // in lower case or not; empty for the whole box
    std::string_view arguments; // between its parentheses
    ShapeBox box = ShapeBox::Stroke;
};

// Takes a value apart; nothing when it is not one function and one box at most.
std::optional<BasicShape> parseBasicShape(std::string_view text);

struct ShapeOutline {
    Outline outline;
    bool evenOdd = false;
};

// The shape in the space of its box; nothing when its arguments are wrong or its function unknown.
std::optional<ShapeOutline> outlineOf(const BasicShape& shape, const Box& box,
                                      const LengthContext& lengths);

} // namespace Svg
} // namespace KAVO
