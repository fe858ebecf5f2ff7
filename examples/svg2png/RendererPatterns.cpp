// SPDX-License-Identifier: MIT
// Patterns: the tiles are drawn into a picture of their own, which then paints like an image that
// lies pixel on pixel.
#include "graphics2d/PaintSetup.h"
#include "svg2png/ClipGuard.h"
#include "svg2png/Colour.h"
#include "svg2png/Renderer.h"
#include "svg2png/TransformParser.h"

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

constexpr double kMostTiles = 20000;
constexpr double kFarthestTile = 1e9; // columns or rows from the first

} // namespace

// What is repeated, and where.
struct Renderer::Tiling {
    Box tile;        // the first tile, in the pattern's space
    Affine toDevice; // of the pattern's space
    Affine content;  // maps the content into the pattern's space, its origin at the tile's corner
    pugi::xml_node children;
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
    const ViewportSize size = inBox ? ViewportSize{1, 1} : state.viewport;
    const double fontSize = state.style.fontSize;
    double x = parseLength(chain["x"], {size.width, fontSize}, 0);
    double y = parseLength(chain["y"], {size.height, fontSize}, 0);
    double width = parseLength(chain["width"], {size.width, fontSize}, 0);
    double height = parseLength(chain["height"], {size.height, fontSize}, 0);
    if (inBox) {
        x = userBounds.left + x * userBounds.width();
        y = userBounds.top + y * userBounds.height();
        width *= userBounds.width();
        height *= userBounds.height();
    }

    Tiling tiling;
    tiling.tile = {x, y, x + width, y + height};
    tiling.toDevice = state.toDevice * parseTransform(chain["patternTransform"]).value_or(Affine());
    if (const std::optional<Box> box = parseViewBox(chain["viewBox"]))
        tiling.content = fitViewBox(chain["preserveAspectRatio"], *box, width, height);
    else if (contentInBox)
        tiling.content = {userBounds.width(), 0, 0, userBounds.height(), userBounds.left - x,
                          userBounds.top - y};
    else
        tiling.content = translation(-x, -y);
    for (const pugi::xml_node link : chain.elements()) {
        if (!tiling.children && link.first_child()) tiling.children = link;
    }
    return tiling;
}

Picture Renderer::drawTiles(const Tiling& tiling, const TileRange& range, State state,
                            uint32_t ground)
{
    Picture tiles(picture_.width, picture_.height, ground);
    Renderer renderer(document_, tiles, options_);
    renderer.elementsLeft_ = elementsLeft_;
    const double width = tiling.tile.width();
    const double height = tiling.tile.height();
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
        for (int column = range.firstColumn; column <= range.lastColumn; ++column) {
            const Affine place = tiling.toDevice * translation(tiling.tile.left + column * width,
                                                               tiling.tile.top + row * height);
            state.toDevice = place * tiling.content;
            const ClipGuard guard(renderer.context_);
            renderer.clipTo(place.mapBox({0, 0, width, height}));
            renderer.drawChildren(tiling.children, state);
        }
    }
    elementsLeft_ = renderer.elementsLeft_;
    shortcomings_.insert(renderer.shortcomings_.begin(), renderer.shortcomings_.end());
    return tiles;
}

bool Renderer::setTiles(MMPaint& paint, Picture& tiles, pugi::xml_node pattern, const State& state,
                        const Box& userBounds)
{
    const Tiling tiling = readTiling(pattern, state, userBounds);
    const std::optional<Affine> fromDevice = tiling.toDevice.inverse();
    const double width = tiling.tile.width();
    const double height = tiling.tile.height();
    if (!fromDevice || !tiling.children || !(width > 0 && height > 0)) return false;

    // The tiles that the visible part of the shape needs.
    Box visible = state.toDevice.mapBox(userBounds);
    const double reach = (state.style.strokeWidth + state.glyphOverhang) * state.toDevice.norm();
    visible = {std::max(visible.left - reach, 0.0), std::max(visible.top - reach, 0.0),
               std::min<double>(visible.right + reach, picture_.width),
               std::min<double>(visible.bottom + reach, picture_.height)};
    if (visible.empty()) return false;
    const Box needed = fromDevice->mapBox(visible);
    const double firstColumn = std::floor((needed.left - tiling.tile.left) / width);
    const double lastColumn = std::floor((needed.right - tiling.tile.left) / width);
    const double firstRow = std::floor((needed.top - tiling.tile.top) / height);
    const double lastRow = std::floor((needed.bottom - tiling.tile.top) / height);
    if (!((lastColumn - firstColumn + 1) * (lastRow - firstRow + 1) <= kMostTiles &&
          std::fabs(firstColumn) < kFarthestTile && std::fabs(firstRow) < kFarthestTile) ||
        state.depth >= kMostDepth) {
        shortcomings_.insert("pattern of too many tiles");
        return false;
    }

    const TileRange range{static_cast<int>(firstColumn), static_cast<int>(lastColumn),
                          static_cast<int>(firstRow), static_cast<int>(lastRow)};
    State tileState;
    tileState.style.apply(Properties(pattern), state.viewport.diagonal());
    tileState.viewport = state.viewport;
    tileState.depth = state.depth + kPatternDepth;
    tiles = separateFromGround(drawTiles(tiling, range, tileState, 0xFF000000),
                               drawTiles(tiling, range, tileState, 0xFFFFFFFF));
    if (state.glyphOverhang > 0)
        std::transform(tiles.pixels.begin(), tiles.pixels.end(), tiles.pixels.begin(), forGlyphs);
    const auto pixmapWidth = static_cast<uint16_t>(tiles.width);
    const auto pixmapHeight = static_cast<uint16_t>(tiles.height);
    const MMPixmap pixmap = {pixmapWidth, pixmapHeight,        pixmapWidth * 4u,
                             0,           tiles.pixels.data(), 1};
    context_.patternFilter = kFilterNearest;
    setPattern(paint, pixmap, kIdentityMatrix, kFilterNearest);
    return true;
}
