// SPDX-License-Identifier: MIT
// Transform lists.
#pragma once

#include "svg2png/Affine.h"

#include <string_view>

// The transform that the list describes, or nothing when the list is malformed. Its items are built
// by Matrix2D::compose.
std::optional<Affine> parseTransform(std::string_view text);
