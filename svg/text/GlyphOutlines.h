// SPDX-License-Identifier: MIT
// The outlines of glyphs, from the font file that the library draws text with.
#pragma once

#include "svg/geometry/Outline.h"

#include <cstdint>
#include <map>
#include <memory>

namespace KAVO {
namespace Svg {

// In ems, y down, from the pen on. Bold glyphs are those of the font made bolder, as the library
// does it.
struct GlyphOutline {
    Outline outline;
    Box bounds; // of the outline
    double advance = 0;
};

// Opens the file when the first glyph is asked for. Without FreeType in the build no file is a
// font.
class GlyphOutlines {
public:
    GlyphOutlines();
    ~GlyphOutlines();
    GlyphOutlines(const GlyphOutlines&) = delete;
    GlyphOutlines& operator=(const GlyphOutlines&) = delete;

    // Whether there is a font with outlines. The file is that of the contexts, of which one lives.
    bool usable();

    // Null when the font has no such glyph. Valid until the next call.
    const GlyphOutline* find(uint16_t character, bool bold);

private:
    struct Font;
    Font& font();

    std::unique_ptr<Font> font_;                               // null: not opened yet
    std::map<uint32_t, std::unique_ptr<GlyphOutline>> glyphs_; // null: there is none
    size_t segments_ = 0;                                      // of all that are kept
};

} // namespace Svg
} // namespace KAVO
