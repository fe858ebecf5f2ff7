// SPDX-License-Identifier: MIT
// What lies out of sight takes no memory and little work, and leaves pixels and bounds as they are.
#include "tests/support/EncodedPath.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/Picture.h"
#include "tests/support/StrokeRecorder.h"
#include "tests/support/UserUnits.h"

#include <random>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr int kSide = 240;

class Random {
public:
    explicit Random(uint32_t seed) : random_(seed) {}
    uint32_t below(uint32_t limit) { return random_() % limit; }
    Fixed within(double low, double high)
    {
        return fx(low + (high - low) * (random_() / 4294967296.0));
    }
    MMPoint2D place() { return {within(-60, 300), within(-60, 300)}; }

private:
    std::mt19937 random_;
};

// A path in a style, all at random.
void drawAtRandom(MMContext2D& context, uint32_t seed)
{
    Random random(seed);
    EncodedPath path;
    for (uint32_t subpaths = 1 + random.below(3); subpaths > 0; --subpaths) {
        path.points({random.place()});
        for (uint32_t commands = 1 + random.below(2); commands > 0; --commands) {
            std::vector<MMPoint2D> points;
            for (uint32_t n = 3 * (1 + random.below(3)); n > 0; --n)
                points.push_back(random.place());
            if (random.below(3) != 0)
                path.curves(points);
            else
                path.points(points);
        }
        path.points({}, random.below(2) != 0 ? EncodedPath::kOpen : EncodedPath::kClosed);
    }
    static Fixed dashes[3];
    for (Fixed& dash : dashes)
        dash = random.within(1, 60);
    const bool dashed = random.below(3) == 0;
    const bool fills = random.below(3) != 0;
    context.transform = {random.within(-1.5, 1.5), random.within(-1.5, 1.5),
                         random.within(-1.5, 1.5), random.within(-1.5, 1.5),
                         random.within(0, 240),    random.within(0, 240)};
    context.antiAlias = static_cast<uint8_t>(random.below(2));
    context.fillRule = static_cast<uint8_t>(random.below(2));
    context.joinStyle = static_cast<uint8_t>(random.below(3));
    context.capStyle = static_cast<uint8_t>(random.below(3));
    context.strokeHalfWidth = random.within(0.1, random.below(2) != 0 ? 4 : 90);
    context.miterLimit = random.within(1, 10);
    context.dashArray = dashed ? dashes : nullptr;
    context.dashCount = 3;
    context.dashOffset = random.within(-100, 100);
    context.accumulateBounds = static_cast<uint8_t>(random.below(2));
    context.fillPaint.paintType = fills ? kPaintSolid : kPaintNone;
    context.strokePaint.paintType = !fills || random.below(3) == 0 ? kPaintSolid : kPaintNone;
    context.strokePaint.paintColour = 0xFF806040;
    context.refined = static_cast<uint8_t>(random.below(2));
    context.drawPath(path.data());
}

TEST(Culling, LeavesPixelsAndBoundsAsTheyAre)
{
    constexpr int kLeft = 110, kTop = 100, kRight = 134, kBottom = 120;
    Picture small(kSide), large(kSide);
    int differing = 0; // levels
    small.context.clipLeft = kLeft;
    small.context.clipTop = kTop;
    small.context.clipRight = kRight;
    small.context.clipBottom = kBottom;
    for (uint32_t seed = 1; seed <= 10000; ++seed) {
        for (Picture* picture : {&small, &large}) {
            for (int y = kTop; y < kBottom; ++y)
                std::fill_n(picture->pixels.begin() +
                                static_cast<ptrdiff_t>(picture->indexOf(kLeft, y)),
                            kRight - kLeft, Picture::kBlank);
            drawAtRandom(picture->context, seed);
        }
        ASSERT_EQ(small.context.boundsMinX, large.context.boundsMinX) << "seed " << seed;
        ASSERT_EQ(small.context.boundsMinY, large.context.boundsMinY) << "seed " << seed;
        ASSERT_EQ(small.context.boundsMaxX, large.context.boundsMaxX) << "seed " << seed;
        ASSERT_EQ(small.context.boundsMaxY, large.context.boundsMaxY) << "seed " << seed;
        // Where a row is cut into slabs depends on what lies beside the clip rectangle, and with it
        // the last bit of an anti-aliased pixel now and then.
        const int rounding = small.context.antiAlias;
        for (int y = kTop; y < kBottom; ++y)
            for (int x = kLeft; x < kRight; ++x) {
                const int off = std::abs(small.coverage(x, y) - large.coverage(x, y));
                ASSERT_LE(off, rounding) << "seed " << seed << " at " << x << ',' << y;
                differing += off;
            }
    }
    EXPECT_LE(differing, 20);
}

// A context that draws 100 pixels square.
struct Small : Picture {
    Small() : Picture(100) { context.fillPaint.paintType = kPaintNone; }

    uint32_t peakAfter(const EncodedPath& path)
    {
        context.drawPath(path.data());
        return context.scratchStack.peakWords;
    }
};

// Whole, these curves have a million points.
TEST(Culling, VastCurvesTakeMemoryForWhatIsSeenOfThem)
{
    constexpr uint32_t kCurves = 1000;
    Random random(1);
    std::vector<MMPoint2D> points;
    for (uint32_t i = 0; i < 3 * kCurves; ++i)
        points.push_back({random.within(-30000, 30000), random.within(-30000, 30000)});
    EncodedPath path;
    path.points({at(0, 0)}).curves(points, EncodedPath::kClosed);
    Small picture;
    picture.context.fillPaint.paintType = kPaintSolid;
    // Forty points of a curve on average, twice, in the path and in the polygon and its ring.
    EXPECT_LE(picture.peakAfter(path), kCurves * 40 * 8);
    EXPECT_EQ(picture.context.outOfMemory, 0);
}

// With round joins and a pen 60,000 pixels wide, the whole outline has millions of points.
TEST(Culling, WideStrokesTakeMemoryForWhatIsSeenOfThem)
{
    constexpr uint32_t kPoints = 5000;
    Random random(2);
    std::vector<MMPoint2D> points;
    for (uint32_t i = 0; i < kPoints; ++i)
        points.push_back({random.within(0, 100), random.within(0, 100)});
    EncodedPath path;
    path.points(points, EncodedPath::kOpen);
    for (uint8_t join : {kJoinMiter, kJoinRound}) {
        Small picture;
        picture.context.strokePaint.paintType = kPaintSolid;
        picture.context.strokeHalfWidth = 30000_fx;
        picture.context.joinStyle = join;
        EXPECT_LE(picture.peakAfter(path), kPoints * 200) << int(join);
        EXPECT_EQ(picture.context.outOfMemory, 0);
    }
}

TEST(Culling, DashesOutOfSightAreCountedAndNotBuilt)
{
    static const Fixed dashes[] = {0.25_fx, 0.25_fx};
    EncodedPath path;
    for (int i = 0; i < 20; ++i)
        path.points({at(-30000, 20000 + i), at(-14000, 20000)}, EncodedPath::kOpen);
    Small picture;
    picture.context.strokePaint.paintType = kPaintSolid;
    picture.context.strokeHalfWidth = 100_fx;
    picture.context.dashArray = dashes;
    picture.context.dashCount = 2;
    StrokeRecorder recorder;
    picture.context.drawPath(path.data());
    EXPECT_EQ(recorder.strokes.size(), 20u); // the last of each, for the bounds
}

TEST(Culling, DashesTakeNothingFromTheHeapOnceTheyHaveBeenSeen)
{
    static const Fixed dashes[] = {5_fx, 3_fx};
    EncodedPath path;
    path.points({at(3, 5), at(90, 30), at(40, 95)}, EncodedPath::kClosed);
    Small picture;
    picture.context.strokePaint.paintType = kPaintSolid;
    picture.context.dashArray = dashes;
    picture.context.dashCount = 2;
    for (int way = 0; way < 4; ++way) {
        picture.context.antiAlias = way % 2;
        picture.context.refined = way / 2;
        picture.context.drawPath(path.data());
        picture.context.drawPath(path.data());
        FailingHeap heap;
        picture.context.drawPath(path.data());
        EXPECT_EQ(heap.calls(), 0u) << way;
    }
}

} // namespace
