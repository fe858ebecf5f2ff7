// Drawing with numbers from the ends of their ranges: it ends, and only inside the target. What it
// would read elsewhere is the sanitizers' to find. The fuzzers go further and take longer.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/RegionFlush.h"
#include "tests/support/Picture.h"

#include <climits>
#include <random>

namespace {

using namespace KAVO::Graphics2D;

// A context in a random state.
struct HostilePicture : Picture {
    std::mt19937& random;
    Pixel texels[4] = {0xFF123456, 0x80808080, 0, 0xFFFFFFFF};
    MMPixmap image = {2, 2, 8, 0, texels, 0};

    explicit HostilePicture(std::mt19937& generator) : random(generator)
    {
        context.antiAlias = byte(2);
        context.fillRule = byte(2);
        context.joinStyle = byte(4);
        context.capStyle = byte(4);
        context.patternFilter = byte(3);
        context.strokeHalfWidth = number();
        context.miterLimit = number();
        if (byte(2) != 0) context.transform = matrix();
        if (byte(5) == 0) image.width = byte(2);
        if (byte(7) == 0) image.pixels = nullptr;
        image.pixmapExtra = byte(2);
    }
    uint8_t byte(uint32_t limit) { return static_cast<uint8_t>(random() % limit); }
    Fixed number()
    {
        const Fixed odd[] = {
            INT_MIN,    INT_MIN + 1,      -0x40000000, -0x10000, -1,       0,
            1,          0x7FFF,           0x8000,      0x10000,  50 << 16, (50 << 16) + 17,
            0x40000000, INT_MAX - 0x7FFF, INT_MAX};
        return byte(8) == 0 ? static_cast<Fixed>(random()) : odd[random() % std::size(odd)];
    }
    MMPoint2D point() { return {number(), number()}; }
    Matrix2D matrix() { return {number(), number(), number(), number(), number(), number()}; }
    MMFixedRegion region() { return {number(), number(), number(), number()}; }
    std::vector<MMPoint2D> points()
    {
        std::vector<MMPoint2D> list(1 + byte(12));
        for (MMPoint2D& p : list)
            p = point();
        return list;
    }
};

TEST(HostileInput, DrawsInsideTheTargetAndEnds)
{
    std::mt19937 random(3);
    const Pixel colours[] = {0xFF000000, 0x80FF8000, 0xFFFFFFFF};
    Pixel rampColours[gradientRampRoom(3)];
    Fixed rampOffsets[gradientRampRoom(3)];
    const GradientRamp ramp = {rampColours, rampOffsets};
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE(round);
        HostilePicture p(random);
        MMContext2D& c = p.context;
        for (const auto raster : {&MMContext2D::rasterPolygon, &MMContext2D::rasterMonotonePolygon,
                                  &MMContext2D::rasterComplexPolygon}) {
            std::vector<MMPoint2D> polygon = p.points();
            (c.*raster)(polygon.data(), static_cast<uint16_t>(polygon.size()));
        }
        std::vector<MMPoint2D> line = p.points();
        MMLinkPath record = {line.data(), static_cast<uint32_t>(line.size())};
        c.drawPolyline(&record, 1, p.byte(2));
        c.drawCircularArc(&line[0], p.number(), p.number(), p.number(), p.byte(2), p.byte(2));
        c.drawEllipticalRect(p.number(), p.number(), p.number(), p.number(), p.number(),
                             p.number());
        c.drawImage(&p.image, p.number(), p.number(), p.number(), p.number(), p.byte(2));

        const Fixed offsets[] = {p.number(), p.number(), p.number()};
        const GradientStops stops = {colours, offsets, 3};
        MMPoint2D triangle[] = {{0, 0}, {64 << 16, 0}, {64 << 16, 64 << 16}};
        setLinearGradient(c.currentPaint, p.point(), p.point(), p.matrix(), stops, ramp);
        c.rasterPolygon(triangle, 3);
        setRadialGradient(c.currentPaint, p.point(), p.number(), p.matrix(), stops, ramp);
        c.rasterPolygon(triangle, 3);
        setPattern(c.currentPaint, p.image, p.matrix(), MMPatternFilter(c.patternFilter));
        c.rasterPolygon(triangle, 3);

        const MMPixmap target = c.target;
        const MMFixedRegion from = p.region(), to = p.region();
        c.drawImage(&p.image, &from, &target, &to, p.number());
        EXPECT_EQ(c.outOfMemory, 0);
    }
}

TEST(HostileInput, NothingIsDrawnOfNothing)
{
    Picture picture;
    MMContext2D& context = picture.context;
    MMPoint2D centre = {32 << 16, 32 << 16};
    MMPathPos noPath{};
    context.drawPath(nullptr);
    context.getPathPos(noPath, 5, nullptr);
    context.drawCircularArc(nullptr, 10 << 16, 0, kDegrees90, 1, 0);
    for (Fixed radius : {0, -kFixedOne, INT_MIN})
        context.drawCircularArc(&centre, radius, 0, kDegrees90, 1, 0);
    for (Fixed halfWidth : {0, -kFixedOne, INT_MIN}) {
        context.strokeHalfWidth = halfWidth;
        MMLinkPath record = {&centre, 1};
        context.drawPolyline(&record, 1, 0);
    }
    EXPECT_TRUE(picture.emptyBounds());
    const MMPixmap target = context.target;
    context.drawImage(nullptr, 0, 0, 9 << 16, 9 << 16, 0);
    context.drawImage(&target, nullptr, &target, nullptr, 0);
    EXPECT_TRUE(picture.blank());
    MMPixmap empty = {0, 0, 0, 0, nullptr, 0}, unset = {3, 3, 12, 0, nullptr, 0};
    for (MMPixmap* pixmap : {&empty, &unset}) {
        MMG_flushRegion(pixmap, 0, 0, 3, 3, 1);
        panPixmap(pixmap, 1, 1);
    }
}

} // namespace
