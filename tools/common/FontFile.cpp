// SPDX-License-Identifier: MIT
#include "common/FontFile.h"

#include "graphics2d/convenience/MMText.h"

using namespace KAVO::Graphics2D;

bool useFont(const std::string& file)
{
    if (!setFontFile(file.c_str())) return false;
    const MMContext2D context;
    for (uint32_t character = 1; character <= 0xFFFF; ++character)
        if (hasGlyph(context, static_cast<uint16_t>(character))) return true;
    return false;
}
