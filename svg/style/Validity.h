// SPDX-License-Identifier: MIT
// Values that a property can have.
#pragma once

#include "svg/style/Property.h"

#include <string_view>

namespace KAVO {
namespace Svg {

// False for what is no colour, paint, length, number or keyword where one is wanted: such a
// declaration leaves the one before it in place. Some properties take everything here.
bool isValid(Property property, std::string_view value);

// The value that an inherited property has at the root; empty for all others.
std::string_view initialValue(Property property);

} // namespace Svg
} // namespace KAVO
