// SPDX-License-Identifier: MIT
// An option of the FreeType engine alone, for comparing pictures.
#pragma once

#include <stdint.h>

// Fits the glyphs of unrotated, unskewed text to the rows of pixels: horizontal strokes become
// crisper, and shapes change with the size. Widths stay as they are. Off at first; concerns glyphs
// that no context has cached yet.
extern "C" __attribute__((visibility("default"))) void FS_set_light_hinting(int32_t on);
