// SPDX-License-Identifier: MIT
// Text as programs have it: UTF-8 in, a font by its file, and which characters it can draw.
#pragma once

#include "../MMContext2D.h"

#include <cstddef>

namespace KAVO {
namespace Graphics2D {

#pragma GCC visibility push(default)

// A text for the context's operations, made from UTF-8 and given back with its scope:
//
//     context.drawText(MMText("Grüße").units(), 10_fx, 30_fx);
//
// What is not UTF-8 becomes U+FFFD. Characters above U+FFFF become two surrogates, which have no
// glyphs.
class MMText {
public:
    explicit MMText(const char* utf8); // ends with a 0; null is the empty text
    MMText(const char* utf8, size_t bytes);
    ~MMText();
    MMText(const MMText&) = delete;
    MMText& operator=(const MMText&) = delete;

    // UTF-16 that ends with a 0; drawing may normalise it in place. Null when memory ran out, which
    // all operations take for an empty text.
    uint16_t* units() { return units_; }

    // Code units before the 0 as the text was made.
    size_t length() const { return length_; }

private:
    uint16_t* units_;
    size_t length_ = 0;
};

// Whether the font has a glyph for a UTF-16 code unit, blank ones included. The context must live,
// as the engine does while there is one; it is not changed.
bool hasGlyph(const MMContext2D& context, uint16_t character);

// Names the font file for all contexts of the process, in place of the environment; null goes back
// to that. To be called while there is no context: false when there is one, or without memory, and
// nothing changes then. Whether the file is a font shows when a context has been made, with
// hasGlyph.
bool setFontFile(const char* file);

// The path of the font file of all contexts, the one that was named or the environment's; whether
// it is there and a font is not asked. Writes what fits into so many bytes, with a 0 behind it, and
// returns the length of the whole without the 0. path may be null for 0 bytes.
size_t getFontFile(char* path, size_t bytes);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
