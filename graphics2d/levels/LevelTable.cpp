// SPDX-License-Identifier: MIT
// The table of the level that this file is compiled for.
#include "graphics2d/LevelTable.h"

#include "graphics2d/strips/ColourRamp.h"
#include "graphics2d/strips/RunBlending.h"
#include "graphics2d/strips/SolidStrip.h"
#include "graphics2d/strips/StripFillers.h"
#include "graphics2d/strips/TexelCopy.h"
#include "graphics2d/text/GlyphBlending.h"

#if !defined(MM2D_WITHOUT_LAYERS)
#include "graphics2d/layers/NormalRow.h"
#include "graphics2d/masks/LevelBlending.h"
#include "graphics2d/masks/LevelRuns.h"
#include "graphics2d/sources/TileRows.h"
#endif

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

#define MM2D_NAME_OF(level) #level
#define MM2D_NAME(level) MM2D_NAME_OF(level)

extern const LevelTable kLevelTable; // LevelChoice.cpp declares them too
const LevelTable kLevelTable = {
    MM2D_NAME(MM2D_LEVEL),
    {{drawClassicColour, drawTranslucentClassicColour}, blendClassicRun},
    {{drawRefinedColour, drawTranslucentRefinedColour}, blendRefinedRun},
    {blendColour<ClassicBlend>, blendByWeights<ClassicBlend>, blendByAlpha<ClassicBlend>},
    {blendColour<RefinedBlend>, blendByWeights<RefinedBlend>, blendByAlpha<RefinedBlend>},
    blendPremultipliedRun,
    weighAlphaRun,
    haveAlpha,
    writeRamp,
    {drawLinearGradient, drawTranslucentLinearGradient},
    drawLinearGradientRows,
    {drawRadialGradient, drawTranslucentRadialGradient},
    {{drawNearestPattern, drawTranslucentNearestPattern},
     {drawBilinearPattern, drawTranslucentBilinearPattern},
     {drawBicubicPattern, drawTranslucentBicubicPattern}},
    copyTexels,
    {drawSource, drawTranslucentSource},
    {blendClassicColour, blendClassicPixels},
    {blendRefinedColour, blendRefinedPixels},
#if !defined(MM2D_WITHOUT_LAYERS)
    tintByLevels,
    moveByLevels,
    endOfLevel,
    blendNormal,
    writeUprightTiles,
#endif
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
