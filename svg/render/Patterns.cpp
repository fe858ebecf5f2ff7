// SPDX-License-Identifier: MIT
// Patterns: the tiles are drawn into a picture of their own, which then paints like an image that
// lies pixel on pixel. Tiles that lie on pixels are one tile, copied. Tiles whose edges lie between
// pixels are one tile, sampled: drawn beside each other their edges would show.
#include "graphics2d/PaintSetup.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/render/PictureDrawing.h"
#include "svg/render/PicturePixmap.h"
#include "svg/render/TileSampling.h"
#include "svg/values/TransformParser.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// A pattern is drawn anew for whatever it paints, and so are those inside it: these get as many
// pixels as fifteen of the largest pictures have.
constexpr double kMostTilePixels = 1e9;

constexpr double kFarthestTile = 1e9; // columns or rows from the first

bool isWhole(double v)
{
    return std::fabs(v - std::round(v)) < 1.0 / 256;
}

} // namespace

// What is repeated, and where.
struct Renderer::Tiling {
    Box tile;          // the first tile, in the pattern's space
    Box shown;         // of a tile, from its corner on
    Affine toDevice;   // of the pattern's space
    Affine content;    // maps the content into the pattern's space, its origin at the tile's corner
    Viewport viewport; // that percentages in the content refer to
    pugi::xml_node source; // the pattern whose children are drawn

    // Every tile begins and ends with a pixel.
    bool liesOnPixels() const
    {
        const Point corner = toDevice.map({tile.left, tile.top});
        return toDevice.b == 0 && toDevice.c == 0 && isWhole(corner.x) && isWhole(corner.y) &&
               isWhole(toDevice.a * tile.width()) && isWhole(toDevice.d * tile.height());
    }
};

struct Renderer::TileRange {
    int firstColumn;
    int lastColumn;
    int firstRow;
    int lastRow;
};

// Draws tiles into a picture of their own.
class Renderer::TileDrawing {
public:
    TileDrawing(Renderer& outer, Picture& picture) : drawing_(outer, picture) {}

    // One tile at its place within a clip rectangle.
    void draw(const Tiling& tiling, const Affine& place, State& state, const PixelArea& clip)
    {
        drawing_.clipTo(clip);
        Renderer& renderer = drawing_.renderer();
        state.toDevice = place * tiling.content;
        renderer.drawInside(tiling.shown, place,
                            [&] { renderer.drawChildren(tiling.source, state); });
    }

private:
    PictureDrawing drawing_;
};

Renderer::Tiling Renderer::readTiling(pugi::xml_node pattern, const State& state,
                                      const Box& userBounds) const
{
    const ReferenceChain chain(document_, pattern);
    const bool inBox = chain["patternUnits"] != std::string_view("userSpaceOnUse");
    const bool contentInBox = chain["patternContentUnits"] == std::string_view("objectBoundingBox");
    Viewport units = state.viewport;
    if (inBox) units.width = units.height = 1;
    const Style style = document_.styleOf(pattern, state.viewport);
    const LengthContext lengths{units, style.fontSize};
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
    tiling.shown =
        clippedViewport({0, 0, width, height}, style.clip, style.lengths(state.viewport));
    const std::optional<Affine> transform =
        parseTransformAttribute(chain["patternTransform"], lengths);
    const Box whole{0, 0, state.viewport.width, state.viewport.height};
    const std::optional<Point> origin =
        parseTransformOrigin(style.transformOrigin, style.lengths(state.viewport), whole);
    tiling.toDevice =
        state.toDevice * around(origin.value_or(Point()), transform.value_or(Affine()));
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

void Renderer::drawTiles(const Tiling& tiling, const TileRange& range, State state,
                         const PixelArea& area, Picture& tiles)
{
    TileDrawing drawing(*this, tiles);
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
        for (int column = range.firstColumn; column <= range.lastColumn; ++column) {
            const Affine place =
                tiling.toDevice * translation(tiling.tile.left + column * tiling.tile.width(),
                                              tiling.tile.top + row * tiling.tile.height());
            drawing.draw(tiling, place, state, area);
        }
    }
}

// Tiles that lie on pixels are all the same. False when one is larger than the whole picture, or
// has no pixel.
bool Renderer::copyTiles(const Tiling& tiling, State state, const PixelArea& area, Picture& tiles)
{
    const Box box = tiling.toDevice.mapBox(tiling.tile);
    const double width = std::round(box.width());
    const double height = std::round(box.height());
    const double most = static_cast<double>(tiles.pixels.size());
    if (!(width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide &&
          width * height <= most))
        return false;

    const double left = std::round(box.left);
    const double top = std::round(box.top);
    Picture tile(static_cast<int>(width), static_cast<int>(height), 0);
    const Affine place =
        translation(-left, -top) * tiling.toDevice * translation(tiling.tile.left, tiling.tile.top);
    TileDrawing(*this, tile).draw(tiling, place, state, {0, 0, tile.width, tile.height});
    copyTile(tile, static_cast<int>(std::fmod(left, width)),
             static_cast<int>(std::fmod(top, height)), area, tiles);
    return true;
}

// False when a tile would be larger than the whole picture is worth.
bool Renderer::sampleTiles(const Tiling& tiling, State state, const PixelArea& area, Picture& tiles)
{
    const Affine& m = tiling.toDevice;
    const double width = std::hypot(m.a, m.b) * tiling.tile.width() * kTileSamples;
    const double height = std::hypot(m.c, m.d) * tiling.tile.height() * kTileSamples;
    const double most = 8.0 * static_cast<double>(tiles.pixels.size());
    if (!(width <= kLargestSide && height <= kLargestSide && width * height <= most)) return false;

    Picture tile(std::max(1, static_cast<int>(std::ceil(width))),
                 std::max(1, static_cast<int>(std::ceil(height))), 0);
    const Affine tilesToPattern{tiling.tile.width(), 0, 0, tiling.tile.height(), tiling.tile.left,
                                tiling.tile.top};
    const std::optional<Affine> toTile = (tiling.toDevice * tilesToPattern).inverse();
    if (!toTile) return true;
    const Affine place{tile.width / tiling.tile.width(),   0, 0,
                       tile.height / tiling.tile.height(), 0, 0};
    TileDrawing(*this, tile).draw(tiling, place, state, {0, 0, tile.width, tile.height});
    repeatTile(tile, *toTile, area, tiles);
    return true;
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
    if (state.depth >= static_cast<int>(session_.limits.depth)) {
        note("patterns in patterns without end", pattern);
        return false;
    }

    const bool isInside = std::any_of(active_.begin(), active_.end(), [](pugi::xml_node outer) {
        return outer.name() == std::string_view("pattern");
    });
    if (isInside) session_.tilePixels += 1.0 * context_.target.width * context_.target.height;
    if (session_.tilePixels > kMostTilePixels) {
        note("patterns in patterns of more pixels than the limit", pattern);
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
    const bool affordable = count <= static_cast<double>(session_.limits.patternTiles) &&
                            std::fabs(firstColumn) < kFarthestTile &&
                            std::fabs(firstRow) < kFarthestTile;

    State tileState;
    tileState.style = document_.styleOf(tiling.source, state.viewport);
    tileState.style.opacity = 1;
    tileState.viewport = tiling.viewport;
    tileState.depth = state.depth + kPatternDepth;
    tiles = Picture(context_.target.width, context_.target.height, 0);
    const PixelArea area{
        static_cast<int>(std::floor(visible.left)), static_cast<int>(std::floor(visible.top)),
        static_cast<int>(std::ceil(visible.right)), static_cast<int>(std::ceil(visible.bottom))};
    const bool single = affordable && count == 1;
    const bool repeated =
        !single && ((tiling.liesOnPixels() && copyTiles(tiling, tileState, area, tiles)) ||
                    sampleTiles(tiling, tileState, area, tiles));
    if (!repeated) {
        if (!affordable) {
            note("pattern of too many tiles", pattern);
            return false;
        }
        const TileRange range{static_cast<int>(firstColumn), static_cast<int>(lastColumn),
                              static_cast<int>(firstRow), static_cast<int>(lastRow)};
        drawTiles(tiling, range, tileState, area, tiles);
    }
    separateAlpha(tiles);
    const MMPixmap pixmap = pixmapOf(tiles, true);
    setPattern(paint, pixmap, kIdentityMatrix, kFilterNearest, true);
    return true;
}

} // namespace Svg
} // namespace KAVO
