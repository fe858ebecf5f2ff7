// SPDX-License-Identifier: MIT
// The path grammar of the d attribute.
#pragma once

#include "svg2png/Outline.h"

#include <string_view>

// Appends what the text describes. After an error the segments before it stand and the result is
// false.
bool parsePath(std::string_view text, Outline& outline);
