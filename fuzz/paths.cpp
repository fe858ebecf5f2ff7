// SPDX-License-Identifier: MIT
// Shapes of all kinds, above all encoded paths, drawn by a context in any state.
#include "fuzz/HostileScene.h"
#include "graphics2d/MMPathWords.h"
#include "graphics2d/layers/MMLayer.h"

#include <optional>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// The rest of the input as a stored path. The numbers of items and subpaths are cut to what is
// there, as a path has no length of its own; nothing else is put right.
std::vector<uint32_t> readPath(ByteReader& in)
{
    std::vector<uint32_t> words = in.array<uint32_t>(2 + in.left() / 4);
    uint32_t subpaths = 0;
    for (size_t at = 2; at < words.size();) {
        uint32_t& command = words[at++];
        const uint32_t kind = command & kPathKindMask;
        const uint32_t perItem = kind == kPathPoints ? 2 : kind == kPathCurves ? 6 : 0;
        uint32_t items = command & kPathItemMask;
        if (perItem > 0) {
            items = static_cast<uint32_t>(std::min<size_t>(items, (words.size() - at) / perItem));
            command = (command & ~kPathItemMask) | items;
            at += items * perItem;
        }
        subpaths += (command & kPathEnd) != 0;
    }
    words[1] = (words[1] & ~kPathSubpathMask) | std::min(words[1] & kPathSubpathMask, subpaths);
    return words;
}

MMLayerOptions readLayer(ByteReader& in)
{
    MMLayerOptions options;
    options.opacity = in.byte();
    options.blendMode = static_cast<MMBlendMode>(in.byte());
    return options;
}

std::vector<MMPoint2D> readPolygon(ByteReader& in)
{
    std::vector<MMPoint2D> points(in.below(40));
    for (MMPoint2D& p : points)
        p = {in.fixed(), in.fixed()};
    return points;
}

void walk(MMContext2D& context, const std::vector<uint32_t>& path, Fixed step)
{
    MMPathPos pos = {};
    pos.path = path.data();
    for (uint32_t i = 0; i < 4; ++i) {
        Degrees direction;
        context.getPathPos(pos, wrapMul(step, i), &direction);
    }
}

// Returns whether a point may have been dashed.
bool drawShape(ByteReader& in, MMContext2D& context)
{
    const Fixed a = in.fixed(), b = in.fixed(), c = in.fixed(), d = in.fixed();
    MMPoint2D centre = {a, b};
    std::vector<MMPoint2D> polygon = readPolygon(in);
    const uint16_t count = static_cast<uint16_t>(polygon.size());
    MMLinkPath record = {polygon.data(), count};
    const uint32_t shape = in.below(7);
    switch (shape) {
    case 0:
        context.drawEllipticalRect(a, b, c, d, in.fixed(), in.fixed());
        break;
    case 1:
        context.drawCircularArc(&centre, c, d, in.fixed(), in.byte(), in.byte());
        break;
    case 2:
        context.rasterPolygon(polygon.data(), count);
        break;
    case 3:
        context.rasterMonotonePolygon(polygon.data(), count);
        break;
    case 4:
        context.rasterComplexPolygon(polygon.data(), count);
        break;
    case 5:
        context.drawPolyline(&record, 1, in.byte());
        break;
    default:
        context.drawDashArray(&record, 1, in.byte());
    }
    return shape == 6 || context.dashCount != 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ByteReader in(data, size);
    const bool isPath = in.below(4) != 0;
    HostileScene scene(in, true);
    bool dashed = scene.context.dashCount != 0;
    std::optional<MMLayer> layer, inner;
    if (!dashed && in.below(4) == 3) {
        layer.emplace(scene.context, readLayer(in));
        if (in.below(2) != 0) inner.emplace(scene.context, 3, -4, 50, 40, readLayer(in));
    }
    if (isPath) {
        const Fixed step = in.fixed();
        const std::vector<uint32_t> path = readPath(in);
        scene.context.drawPath(path.data() + 1);
        walk(scene.context, path, step);
        if ((path[1] & 0xFFFF) != 0) scene.context.getPathKeyPointCount(path.data());
    } else {
        dashed = drawShape(in, scene.context);
    }
    inner.reset();
    layer.reset();
    scene.check(dashed);
    return 0;
}
