// SPDX-License-Identifier: MIT
// From an image and a transform to the fields that rows of tiles read.
#include "graphics2d/LevelTable.h"
#include "graphics2d/sources/AffineForm.h"
#include "graphics2d/sources/TileRows.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// The least number that differs from v by whole periods.
int64_t least(int64_t v, int64_t period)
{
    const int64_t rest = v % period;
    if (rest > period / 2) return rest - period;
    return rest <= -period / 2 ? rest + period : rest;
}

MMTileAxis tileAxis(const AffineForm& form, uint16_t size, MMTileMode mode)
{
    const uint32_t texels = mode == kTileMirror ? 2u * size : size;
    const int64_t period = int64_t{texels} << kTexelBits;
    const MMSourceAxis axis = form.fixed(kTexelBits);
    MMTileAxis result;
    result.texels = {least(axis.atOrigin, period), least(axis.perColumn, period),
                     least(axis.perRow, period)};
    result.period = period;
    result.reciprocal = (int64_t{1} << 32) / texels;
    result.size = size;
    return result;
}

struct Filter {
    MMPaintFunction function;
    ScaledNumber offset; // of the coordinate, in texels
};

// Between texels whose colours lie at their centres, and by weights that are rounded.
Filter filterOf(MMPatternFilter filter)
{
    const ScaledNumber toCentre(-1, -1);
    switch (filter) {
    case kFilterBilinear:
        return {writeBilinearTiles, toCentre + ScaledNumber(1, -9)};
    case kFilterBicubic:
        return {writeBicubicTiles, toCentre + ScaledNumber(1, -17)};
    default:
        return {writeNearestTiles, {}};
    }
}

} // namespace

[[gnu::cold]] void setTileSource(MMPaint& paint, MMTileSource& source, const MMPixmap& image,
                                 const Matrix2D& transform, MMPatternFilter filter,
                                 MMTileMode across, MMTileMode down)
{
    OwnCoordinates own;
    const bool drawable = image.pixels != nullptr && image.width != 0 && image.height != 0 &&
                          own.invert(transform, {0, 0});
    paint.paintType = drawable ? kPaintSource : kPaintNone;
    if (!drawable) return;
    const Filter chosen = filterOf(filter);
    const bool hasAlpha = (image.pixmapExtra & 0xFF) != 0;
    source.across = tileAxis(own.x + chosen.offset, image.width, across);
    source.down = tileAxis(own.y + chosen.offset, image.height, down);
    source.pixels = image.pixels;
    source.rowLength = std::max<uint32_t>(image.rowBytes / sizeof(Pixel), image.width);
    source.alphaBits = hasAlpha ? 0 : 0xFF000000;
    paint.sourceFunction = chosen.function;
    if (chosen.function == writeNearestTiles && source.down.texels.perColumn == 0)
        paint.sourceFunction = chooseLevel()->uprightTiles;
    paint.sourceState = &source;
    paint.sourceIsOpaque = hasAlpha ? 0 : 1;
}

} // namespace Graphics2D
} // namespace KAVO
