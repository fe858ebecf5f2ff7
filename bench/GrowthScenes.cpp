// SPDX-License-Identifier: MIT
// Drawings at growing sizes: work that should follow what is seen, or the input in proportion.
#include "Scene.h"

#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "graphics2d/convenience/MMText.h"

#include <memory>
#include <random>
#include <string>

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

// A target of its own and what a drawing keeps from one time to the next.
struct Drawing {
    std::vector<Pixel> pixels;
    MMContext2D context;
    MMPathBuilder path;
    std::vector<MMPoint2D> points;
    std::vector<Fixed> dashes;

    explicit Drawing(int32_t side = kSceneSize)
        : pixels(static_cast<size_t>(side) * static_cast<size_t>(side), 0xFFFFFFFF)
    {
        setTarget(context, pixels.data(), side, side);
        context.refined = 0;
        context.antiAlias = 1;
    }

    void strokeOnly(Fixed halfWidth)
    {
        context.fillPaint.paintType = kPaintNone;
        context.strokePaint.paintType = kPaintSolid;
        context.strokeHalfWidth = halfWidth;
    }
};

Draw drawPathOf(const std::shared_ptr<Drawing>& drawing)
{
    return [drawing] { drawing->context.drawPath(drawing->path.words()); };
}

// Whole numbers from low to high, as 16.16.
class Places {
public:
    Fixed within(int32_t low, int32_t high)
    {
        return fixFromInt(std::uniform_int_distribution<int32_t>(low, high)(engine_));
    }

private:
    std::mt19937 engine_{3};
};

// A polygon of random radii around the target's middle, many vertices in one row.
Draw prickles(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>();
    std::mt19937 engine(3);
    std::uniform_real_distribution<double> radius(100, 490);
    for (uint32_t i = 0; i < count; ++i) {
        const double angle = 6.283185307179586 * i / count;
        const double r = radius(engine);
        drawing->points.push_back({static_cast<Fixed>((500 + r * std::cos(angle)) * 65536),
                                   static_cast<Fixed>((500 + r * std::sin(angle)) * 65536)});
    }
    drawing->context.currentPaint = drawing->context.fillPaint;
    return [drawing] {
        drawing->context.rasterPolygon(drawing->points.data(),
                                       static_cast<uint16_t>(drawing->points.size()));
    };
}

Draw squaresInOnePath(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>();
    Places places;
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.rect(places.within(0, 996), places.within(0, 996), 3_fx, 3_fx);
    return drawPathOf(drawing);
}

Draw discsInOnePath(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>();
    Places places;
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.circle(places.within(10, 990), places.within(10, 990), 10_fx);
    return drawPathOf(drawing);
}

// On a target that shows next to nothing of them.
Draw farCurves(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>(100);
    Places places;
    const auto far = [&places] { return places.within(-30000, 30000); };
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.cubicTo(far(), far(), far(), far(), far(), far());
    return drawPathOf(drawing);
}

Draw hugeStroke(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>(100);
    Places places;
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.lineTo(places.within(0, 100), places.within(0, 100));
    drawing->strokeOnly(30000_fx);
    return drawPathOf(drawing);
}

// Lines across the whole range, most of whose dashes lie outside of the target.
Draw farDashes(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>(100);
    drawing->dashes = {0.5_fx, 0.5_fx};
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.moveTo(-30000_fx, fixFromInt(static_cast<int32_t>(i)))
            .lineTo(30000_fx, fixFromInt(static_cast<int32_t>(i)));
    drawing->strokeOnly(0.5_fx);
    drawing->context.dashArray = drawing->dashes.data();
    drawing->context.dashCount = 2;
    return drawPathOf(drawing);
}

// So many steps along as many points of one command.
Draw stepsAlongAPath(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>();
    for (uint32_t i = 0; i < count; ++i)
        drawing->path.lineTo(static_cast<Fixed>(i % 2 * 0x4000), static_cast<Fixed>(i * 0x4000));
    return [drawing, count] {
        MMPathPos position = {};
        position.path = drawing->path.storedPath();
        for (uint32_t i = 0; i < count; ++i)
            drawing->context.getPathPos(position, static_cast<Fixed>(i * 0x4000), nullptr);
    };
}

Draw textOutside(uint32_t count)
{
    auto drawing = std::make_shared<Drawing>(100);
    drawing->context.fontSize = 2000_fx;
    const std::string line(count, 'g');
    auto text = std::make_shared<MMText>(line.c_str());
    return [drawing, text] { drawing->context.drawText(text->units(), 0, 30000_fx); };
}

} // namespace

std::vector<Growth> growthSeries()
{
    return {{"vertices of a polygon", {100, 1000, 10000, 60000}, prickles},
            {"squares in one path", {100, 1000, 3000, 10000}, squaresInOnePath},
            {"discs in one path", {10, 100, 1000, 5000}, discsInOnePath},
            {"curves far outside", {10, 100, 1000}, farCurves},
            {"points of a huge stroke", {10, 100, 1000}, hugeStroke},
            {"lines of dashes outside", {1, 10, 50}, farDashes},
            {"steps along a path", {100, 1000, 5000}, stepsAlongAPath},
            {"letters of 2,000 px outside", {10, 100}, textOutside}};
}
