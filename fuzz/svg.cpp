// SPDX-License-Identifier: MIT
// Drawings, through the parts of the example program, into a picture in memory.
#include "common/FontFolder.h"
#include "svg2png/Renderer.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const FontFolder font(FUZZ_FONT);
    constexpr int kSide = 48;
    SvgDocument document;
    if (!document.parse({reinterpret_cast<const char*>(data), size}).empty()) return 0;
    Picture picture(kSide, kSide, 0xFFFFFFFF);
    Renderer(document, picture, RenderOptions{}).draw({kSide, kSide});
    return 0;
}
