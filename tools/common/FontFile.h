// SPDX-License-Identifier: MIT
// The font that a program draws all text with.
#pragma once

#include <string>

// Takes the file as the font of all contexts from now on; there must be none yet. False when it is
// not a font that has a glyph for any character.
bool useFont(const std::string& file);
