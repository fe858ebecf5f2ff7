// One context that draws for a long time, as a device's does between its starts.
#include "tests/robustness/SmallScene.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

#include <random>

namespace robust {
namespace {

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
constexpr uint32_t kOperations = 1000000;
#else
constexpr uint32_t kOperations = 100000; // emulators and sanitizers are slow
#endif
constexpr uint32_t kReach = 10 * kFixedOne; // coordinates; small, to be quick
constexpr uint32_t kFrame = 1000;           // operations
constexpr uint32_t kWarmFrame = 30;         // by then each of the different operations has come up
constexpr uint32_t kDifferent = 2000;       // random operations

// One small random operation in a random state. The same number draws the same.
class Drawing {
public:
    Drawing(SmallScene& scene, uint32_t number) : scene_(scene), random_(number) {}

    void run()
    {
        MMContext2D& c = scene_.context;
        const Fixed scale = below(2) == 0 ? kFixedOne : coordinate() / 4;
        c.transform = {scale, 0, below(3) == 0 ? kFixedOne / 4 : 0, kFixedOne, 0, 0};
        c.antiAlias = below(2);
        c.fillRule = below(2);
        c.clipLeft = static_cast<int16_t>(below(4));
        c.fillPaint = paint();
        c.strokePaint = paint();
        c.currentPaint = c.fillPaint;
        c.strokeHalfWidth = coordinate() / 8;
        c.joinStyle = below(3);
        c.capStyle = below(3);
        c.patternFilter = below(3);
        c.dashArray = nullptr;
        if (below(4) == 0) scene_.dash();
        draw(c);
    }

private:
    uint8_t below(uint32_t limit) { return static_cast<uint8_t>(random_() % limit); }
    Fixed coordinate() { return static_cast<Fixed>(random_() % kReach); }
    MMPoint2D point() { return {coordinate(), coordinate()}; }
    std::vector<MMPoint2D> points(size_t count)
    {
        std::vector<MMPoint2D> list(count);
        for (MMPoint2D& p : list)
            p = point();
        return list;
    }

    MMPaint paint()
    {
        MMPaint p = SmallScene::paint(random_());
        p.paintOpacity = below(2) != 0 ? 255 : below(256);
        if (below(4) == 0) p.paintType = kPaintNone;
        if (below(4) != 0) return p;
        p.paintType = kPaintPattern;
        p.patternTransform = kIdentityMatrix;
        p.patternImage = scene_.image;
        return p;
    }

    void draw(MMContext2D& c)
    {
        switch (below(10)) {
        case 0: {
            EncodedPath path;
            path.points(points(1 + below(3))).curves(points(3), EncodedPath::kClosed);
            return c.drawPath(path.points(points(2 + below(4)), EncodedPath::kOpen).data());
        }
        case 1:
            return c.drawEllipticalRect(coordinate(), coordinate(), coordinate() / 4,
                                        coordinate() / 4, coordinate() / 8, coordinate() / 8);
        case 2: {
            MMPoint2D centre = point();
            return c.drawCircularArc(&centre, coordinate() / 4, coordinate() * 8, coordinate() * 8,
                                     below(2), below(2));
        }
        case 3: {
            std::vector<MMPoint2D> line = points(2 + below(3));
            MMLinkPath record = {line.data(), static_cast<uint32_t>(line.size())};
            return c.drawPolyline(&record, 1, below(2));
        }
        case 4:
            return c.drawImage(&scene_.image, coordinate(), coordinate(), coordinate() / 2,
                               coordinate() / 2, below(2));
        case 5: {
            const MMFixedRegion to = {coordinate(), coordinate(), coordinate(), coordinate()};
            const MMFixedRegion from = {0, 0, coordinate() / 8, coordinate() / 8};
            const MMPixmap target = c.target;
            return c.drawImage(&scene_.image, &from, &target, &to, coordinate() * 8);
        }
        case 6:
            c.penX = c.penY = 0;
            return c.drawWrappedText(Text(below(2) != 0 ? u"i g" : u"Aj").data(), 0, 0);
        case 7: {
            const Fixed size = c.fontSize;
            c.fontSize = (2 + below(5)) * kFixedOne;
            c.drawText(Text(below(2) != 0 ? u"gi" : u"A j").data(), coordinate(), coordinate());
            c.fontSize = size;
            return;
        }
        default:
            return c.rasterPolygon(points(5).data(), static_cast<uint16_t>(3 + below(3)));
        }
    }

    SmallScene& scene_;
    std::minstd_rand random_;
};

void drawFrame(SmallScene& scene, uint32_t frame)
{
    scene.reset();
    std::minstd_rand random(frame);
    for (uint32_t i = 0; i < kFrame; ++i)
        Drawing(scene, 1 + static_cast<uint32_t>(random() % kDifferent)).run();
}

TEST(LongLife, MemoryStaysAndTheLastFrameIsThatOfANewContext)
{
    FailingHeap heap; // counts only
    {
        SmallScene old;
        int64_t warm = 0;
        constexpr uint32_t kFrames = kOperations / kFrame;
        for (uint32_t frame = 1; frame <= kFrames; ++frame) {
            drawFrame(old, frame);
            EXPECT_EQ(old.context.scratchStack.usedWords, 0u);
            if (frame == kWarmFrame) warm = heap.liveBytes();
            ASSERT_EQ(heap.liveBytes(), frame < kWarmFrame ? heap.liveBytes() : warm) << frame;
        }
        EXPECT_EQ(old.context.outOfMemory, 0);
        SmallScene fresh;
        drawFrame(fresh, kFrames);
        EXPECT_EQ(old.pixels, fresh.pixels);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

TEST(LongLife, ADashedPointLeavesTheBlockOfAPointBehindAndNoMore)
{
    FailingHeap heap;
    {
        SmallScene scene;
        scene.dash();
        const EncodedPath dot = EncodedPath().points({at(3, 3)}, EncodedPath::kOpen);
        const EncodedPath line = EncodedPath().points({at(3, 3), at(9, 9)}, EncodedPath::kOpen);
        for (uint32_t n = 1; n <= 1000; ++n) {
            scene.context.drawPath(dot.data());
            ASSERT_EQ(scene.context.scratchStack.usedWords, n * 3); // the point and a size word
            scene.context.drawPath(line.data());
            ASSERT_EQ(scene.context.scratchStack.usedWords, n * 3);
        }
        MMPoint2D point = at(3, 3);
        MMLinkPath record = {&point, 1};
        heap.failFrom(1);
        for (uint32_t n = 3000; scene.context.outOfMemory == 0; n += 3) {
            ASSERT_EQ(scene.context.scratchStack.usedWords, n);
            scene.context.drawDashArray(&record, 1, 0);
        }
        EXPECT_GT(heap.calls(), 0u); // not before the last block was full
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

} // namespace
} // namespace robust
