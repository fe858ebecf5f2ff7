// How much work strokes may make, counted in dashes and vertices.
#include "graphics2d/StrokeOutline.h"
#include "tests/support/Picture.h"
#include "tests/support/StrokeRecorder.h"
#include "tests/support/UserUnits.h"

#include <climits>

namespace {

using namespace KAVO::Graphics2D;
using Points = std::vector<MMPoint2D>;

constexpr size_t kMaxPieces = 65535; // dashes and gaps of one subpath

// Dashes and their points, both in proportion to the pattern's pieces whatever the pattern says.
TEST(StrokeWork, DashesAreBoundedWhateverThePattern)
{
    Points zigzag(300); // 299 times across the number range: 19 million units
    for (size_t i = 0; i < zigzag.size(); ++i)
        zigzag[i] = {i % 2 == 0 ? INT_MIN : INT_MAX, static_cast<Fixed>(i)};
    std::vector<Fixed> zeros(65535, 0);
    zeros.back() = fx(1000);
    const struct {
        const char* name;
        std::vector<Fixed> pattern;
        Points line;
        size_t least, greatest; // strokes
    } cases[] = {
        {"fine over a long way", {1, 1}, zigzag, 1, 1},
        {"one unit over a long way", {fx(1), fx(1)}, zigzag, 1, 1},
        // 65,536 units there and back again, more steeply by a few parts of 65,536: 65,317 pieces.
        {"just few enough", {fx(300), fx(300)}, zigzag, 32658, 32660},
        {"nothing but zeros and a gap", zeros, {at(0, 0), at(900, 0)}, 1, 1},
        {"zeros time and again", zeros, {at(0, 0), at(2500, 0)}, 1, 1},
        {"tiny", {1, 0, 0}, {at(0, 0), at(0.33, 0)}, 32000, 32768},
    };
    for (const auto& c : cases)
        for (Fixed offset : {0, INT_MIN, INT_MAX}) {
            MMContext2D context;
            context.dashArray = c.pattern.data();
            context.dashCount = static_cast<uint16_t>(c.pattern.size());
            context.dashOffset = offset;
            Points points = c.line;
            MMLinkPath record = {points.data(), static_cast<uint32_t>(points.size())};
            StrokeRecorder recorder;
            context.drawDashArray(&record, 1, 0);
            size_t total = 0;
            for (const auto& stroke : recorder.strokes)
                total += stroke.points.size();
            EXPECT_GE(recorder.strokes.size(), c.least) << c.name;
            EXPECT_LE(recorder.strokes.size(), c.greatest) << c.name;
            EXPECT_LE(total, points.size() + kMaxPieces + 1) << c.name;
        }
}

// Vertices of the outline that the stroker builds for a line.
uint32_t outlineVertices(MMContext2D& context, const Points& line, const StrokePen& pen)
{
    StrokeOutline outline(context.scratchStack, pen, static_cast<uint32_t>(line.size()));
    EXPECT_TRUE(outline.build(line.data(), static_cast<uint32_t>(line.size()), false));
    return outline.count();
}

// However wide the pen and whatever the transform: a round join or cap makes no more vertices than
// half a turn of the finest step, a smooth turn a twelfth of that, and each seven more.
TEST(StrokeWork, JoinsAndCapsHaveABoundedNumberOfVertices)
{
    const Fixed far = INT_MAX;
    const Points lines[] = {{{-far, -far}, {far, far}, {-far, -far + 1}, {far, 0}},
                            {{0, 0}, {1, 0}, {0, 0}, {0, 1}},
                            {{far, 0}, {-far, 1}, {far, 2}, {-far, 3}},
                            {at(0, 0), at(100, 0), at(200, 20), at(300, 66)}};
    for (Fixed halfWidth : {1, fx(1), fx(3000), far})
        for (Fixed scale : {1, fx(1), fx(100), far})
            for (Fixed limit : {0, fx(32767)})
                for (uint8_t style : {0, 1, 2}) {
                    MMContext2D context;
                    context.transform = {scale, 0, 0, scale, 0, 0};
                    context.strokeHalfWidth = halfWidth;
                    const Degrees step = DevicePen(context).stepFor(4);
                    const StrokePen pen = {halfWidth, limit, style, style, step, {kOne30, 0}};
                    for (const Points& line : lines)
                        EXPECT_LE(outlineVertices(context, line, pen),
                                  4 * (style == kJoinRound ? 1800u + 7 : 150u + 7));
                }
}

TEST(StrokeWork, ManyJoinsOrDashesShareABoundedNumberOfVertices)
{
    MMContext2D context;
    for (Fixed halfWidth : {fx(1), fx(64), fx(30000)}) {
        context.strokeHalfWidth = halfWidth;
        const DevicePen pen(context);
        EXPECT_EQ(pen.stepFor(4000), pen.step);
        for (uint64_t count : {10000u, 65535u, 1u << 20, 1u << 28}) // 45 degrees at most
            EXPECT_LE(count * (kDegrees180 / pen.stepFor(count)), (1u << 23) + 4 * count);
    }
}

TEST(StrokeWork, LongLinesTakeMemoryInProportion)
{
    Points points(60000); // to and fro, a little lower each time
    for (int i = 0; i < 60000; ++i)
        points[static_cast<size_t>(i)] = {fx(i % 200 < 100 ? i % 100 : 99 - i % 100), i * 140};
    for (double width : {0.5, 3000.0}) {
        Picture picture(128);
        picture.context.joinStyle = kJoinRound;
        picture.context.strokeHalfWidth = fx(width);
        MMLinkPath record = {points.data(), 60000};
        picture.context.drawPolyline(&record, 1, 0);
        EXPECT_EQ(picture.context.outOfMemory, 0);
        EXPECT_EQ(picture.coverage(64, 63), 255);
        EXPECT_LE(picture.context.scratchStack.peakWords, 60000u * 50) << width;
    }
}

} // namespace
