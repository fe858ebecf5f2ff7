// SPDX-License-Identifier: MIT
// Documents, through the engine, into a picture in memory; then an element is looked for.
#include "graphics2d/convenience/MMText.h"
#include "svg/MMSvgDocument.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool fontNamed = KAVO::Graphics2D::setFontFile(FUZZ_FONT);
    if (!fontNamed) return 0;
    constexpr int kSide = 48;
    static KAVO::Pixel pixels[kSide * kSide];
    KAVO::Svg::LoadOptions options;
    options.files = false;
    KAVO::Svg::MMSvgDocument document(options);
    if (!document.loadBytes({reinterpret_cast<const char*>(data), size})) return 0;
    document.render({kSide, kSide, kSide * 4, 0, pixels, 0}, {0, 0, kSide, kSide});
    document.elementAt({0, 0, kSide, kSide}, kSide / 2, kSide / 2);
    return 0;
}
