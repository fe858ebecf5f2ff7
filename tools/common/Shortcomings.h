// SPDX-License-Identifier: MIT
// What a drawing asked for and did not get, in words.
#pragma once

#include "svg/MMSvgDocument.h"

#include <string>

// Like "map.svg:12: not drawn: filter (<g>)".
inline std::string describe(const std::string& file, const KAVO::Svg::Shortcoming& shortcoming)
{
    return file + ":" + std::to_string(shortcoming.line) + ": not drawn: " + shortcoming.what +
           " (<" + shortcoming.element + ">)";
}
