// SPDX-License-Identifier: MIT
// Construction and destruction of the drawing context.
#include "graphics2d/MMContext2D.h"

#include "graphics2d/LevelTable.h"

#include <cstdlib>
#include <cstring>

namespace KAVO {
namespace Graphics2D {

namespace {

constexpr uint32_t kFirstScratchWords = 1024;

constexpr char kFontCacheVariable[] = "SVG_FONT_CACHE_KB";
constexpr uint32_t kDefaultFontCacheBytes = 40 * 1024;
constexpr uint32_t kMaxCachedGlyphBytes = 2048;

// The budget of the glyph cache in bytes: as many kilobytes as the environment says, from 10 to
// 200.
uint32_t fontCacheBytes()
{
    const char* variable = std::getenv(kFontCacheVariable);
    if (variable == nullptr) return kDefaultFontCacheBytes;
    const long kilobytes = std::strtol(variable, nullptr, 10);
    if (kilobytes < 10 || kilobytes > 200) return kDefaultFontCacheBytes;
    return static_cast<uint32_t>(kilobytes) * 1024;
}

} // namespace

MMContext2D::MMContext2D()
{
    // In the body rather than by the members' own initialisers: those would leave the padding as it
    // was, and an object is to be the same bytes wherever it is made.
    std::memset(static_cast<void*>(this), 0, sizeof *this);
    scratchStack.Create(kFirstScratchWords);
    strokePaint.paintType = kPaintNone;
    strokePaint.paintOpacity = 255;
    fillPaint.paintColour = 0xFF000000;
    fillPaint.paintOpacity = 255;
    fontSize = 12 * kFixedOne;
    fontWeight = 4;
    savedTransforms[0] = savedTransforms[1] = kIdentityMatrix;
    transform = kIdentityMatrix;
    strokeHalfWidth = kFixedHalf;
    miterLimit = 4 * kFixedOne;
    patternFilter = kFilterBilinear;
    imageOpacity = 255;
    reservedFlag = 1;
    target.backgroundColour = 0xFFFFFFFF;
    pointStep = 1;
    spanRows = 1;
    level = chooseLevel();
    initFontLib();
    updateFont();
    createLayoutManager();
    fontCache.Create(fontCacheBytes(), kMaxCachedGlyphBytes);
}

MMContext2D::~MMContext2D()
{
    fontCache.Destroy();
    destroyLayoutManager();
    releaseFont();
    releaseFontLib();
    scratchStack.Destroy();
}

} // namespace Graphics2D
} // namespace KAVO
