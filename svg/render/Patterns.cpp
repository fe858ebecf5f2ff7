// SPDX-License-Identifier: MIT
// Patterns: the tiles are drawn into a picture of their own, which then paints like an image that
// lies pixel on pixel.
#include "graphics2d/PaintSetup.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/ClipGuard.h"
#include "svg/render/Renderer.h"
#include "svg/values/TransformParser.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

constexpr double kFarthestTile = 1e9; // columns or rows from the first

} // namespace

// What is repeated, and where.
struct Renderer::Tiling {
    Box tile;          // the first tile, in the pattern's space
    Affine toDevice;   // of the pattern's space
    Affine content;    // maps the content into the pattern's space, its origin at the tile's corner
    Viewport viewport; // that percentages in the content refer to
    pugi::xml_node source; // the pattern whose children are drawn
};

struct Renderer::TileRange {
    int firstColumn;
    int lastColumn;
    int firstRow;
    int lastRow;
};

Renderer::Tiling Renderer::readTiling(pugi::xml_node pattern, const State& state,
                                      const Box& userBounds) const
{
    const ReferenceChain chain(document_, pattern);
    const bool inBox = chain["patternUnits"] != std::string_view("userSpaceOnUse");
    const bool contentInBox = chain["patternContentUnits"] == std::string_view("objectBoundingBox");
    Viewport units = state.viewport;
    if (inBox) units.width = units.height = 1;
    const LengthContext lengths{units, document_.styleOf(pattern, state.viewport).fontSize};
    double x = chain.length("x", lengths, Axis::X, 0);
    double y = chain.length("y", lengths, Axis::Y, 0);
    double width = chain.length("width", lengths, Axis::X, 0);
    double height = chain.length("height", lengths, Axis::Y, 0);
    if (inBox) {
        x = userBounds.left + x * userBounds.width();
        y = userBounds.top + y * userBounds.height();
        width *= userBounds.width();
        height *= userBounds.height();
    }

    Tiling tiling;
    tiling.tile = {x, y, x + width, y + height};
    const std::optional<Affine> transform = parseTransform(chain["patternTransform"], lengths);
    tiling.toDevice = state.toDevice * transform.value_or(Affine());
    // The content's origin is the corner of each tile.
    tiling.viewport = state.viewport;
    if (const std::optional<Box> box = parseViewBox(chain["viewBox"])) {
        tiling.viewport.width = box->width();
        tiling.viewport.height = box->height();
        tiling.content = fitViewBox(chain["preserveAspectRatio"], *box, width, height);
    } else if (contentInBox) {
        tiling.content = {userBounds.width(), 0, 0, userBounds.height(), 0, 0};
    }
    for (const pugi::xml_node link : chain.elements()) {
        const auto isElement = [](pugi::xml_node n) { return n.type() == pugi::node_element; };
        const bool filled = static_cast<bool>(link.find_child(isElement));
        if (!tiling.source && filled) tiling.source = link;
    }
    return tiling;
}

Picture Renderer::drawTiles(const Tiling& tiling, const TileRange& range, State state)
{
    Picture tiles(context_.target.width, context_.target.height, 0);
    const auto width = static_cast<uint16_t>(tiles.width);
    const auto height = static_cast<uint16_t>(tiles.height);
    MMContext2D context;
    context.target = {width, height, width * 4u, 0, tiles.pixels.data(), 0};
    context.antiAlias = context_.antiAlias;
    context.accumulateBounds = 1;
    context.refined = 1;
    Renderer renderer(document_, context, session_, report_);
    renderer.active_ = active_;
    const Box drawn = session_.bounds;
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
        for (int column = range.firstColumn; column <= range.lastColumn; ++column) {
            const Affine place =
                tiling.toDevice * translation(tiling.tile.left + column * tiling.tile.width(),
                                              tiling.tile.top + row * tiling.tile.height());
            state.toDevice = place * tiling.content;
            context.clipLeft = context_.clipLeft;
            context.clipTop = context_.clipTop;
            context.clipRight = context_.clipRight;
            context.clipBottom = context_.clipBottom;
            renderer.drawInside({0, 0, tiling.tile.width(), tiling.tile.height()}, place,
                                [&] { renderer.drawChildren(tiling.source, state); });
        }
    }
    session_.bounds = drawn;
    context_.outOfMemory = static_cast<uint16_t>(context_.outOfMemory | context.outOfMemory);
    return tiles;
}

bool Renderer::setTiles(MMPaint& paint, Picture& tiles, pugi::xml_node pattern, const State& state,
                        const Box& userBounds)
{
    const Tiling tiling = readTiling(pattern, state, userBounds);
    const std::optional<Affine> fromDevice = tiling.toDevice.inverse();
    if (!fromDevice || !tiling.source || !tiling.tile.hasArea()) return false;
    if (isActive(tiling.source)) {
        note("pattern that paints itself", pattern);
        return false;
    }
    const Active active(*this, tiling.source);

    // The tiles that the visible part of the shape needs.
    const Box visible = visiblePart(userBounds, state);
    if (!visible.hasArea()) return false;
    const Box needed = fromDevice->mapBox(visible);
    const double width = tiling.tile.width();
    const double height = tiling.tile.height();
    const double firstColumn = std::floor((needed.left - tiling.tile.left) / width);
    const double lastColumn = std::floor((needed.right - tiling.tile.left) / width);
    const double firstRow = std::floor((needed.top - tiling.tile.top) / height);
    const double lastRow = std::floor((needed.bottom - tiling.tile.top) / height);
    const double count = (lastColumn - firstColumn + 1) * (lastRow - firstRow + 1);
    if (!(count <= static_cast<double>(session_.limits.patternTiles) &&
          std::fabs(firstColumn) < kFarthestTile && std::fabs(firstRow) < kFarthestTile) ||
        state.depth >= static_cast<int>(session_.limits.depth)) {
        note("pattern of too many tiles", pattern);
        return false;
    }

    const TileRange range{static_cast<int>(firstColumn), static_cast<int>(lastColumn),
                          static_cast<int>(firstRow), static_cast<int>(lastRow)};
    State tileState;
    tileState.style = document_.styleOf(tiling.source, state.viewport);
    tileState.style.opacity = 1;
    tileState.viewport = tiling.viewport;
    tileState.depth = state.depth + kPatternDepth;
    tiles = drawTiles(tiling, range, tileState);
    separateAlpha(tiles);
    const auto pixmapWidth = static_cast<uint16_t>(tiles.width);
    const auto pixmapHeight = static_cast<uint16_t>(tiles.height);
    const MMPixmap pixmap = {pixmapWidth, pixmapHeight,        pixmapWidth * 4u,
                             0,           tiles.pixels.data(), 1};
    setPattern(paint, pixmap, kIdentityMatrix, kFilterNearest, true);
    return true;
}

} // namespace Svg
} // namespace KAVO
