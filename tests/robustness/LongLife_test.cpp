// One context that draws for a long time, as a device's does between its starts.
#include "tests/robustness/Operations.h"
#include "tests/support/FailingHeap.h"

#include <iterator>
#include <random>

namespace robust {
namespace {

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
constexpr uint32_t kCount = 500000; // operations
#else
constexpr uint32_t kCount = 50000; // emulators and sanitizers are slow
#endif
constexpr uint32_t kFrame = 1000;     // operations
constexpr uint32_t kWarmFrame = 20;   // by then each of the different operations has come up
constexpr uint32_t kDifferent = 2000; // operations in random states

// One operation in a random state. The same number draws the same.
void drawSomething(SmallScene& scene, uint32_t number)
{
    std::minstd_rand random(number);
    const auto below = [&](uint32_t limit) { return static_cast<uint8_t>(random() % limit); };
    scene.setState();
    MMContext2D& c = scene.context;
    // Few of them, so that all glyphs stay in the cache; small, to be quick.
    const Fixed scale = kFixedOne >> below(3);
    c.transform = {scale, 0, below(2) * kFixedOne / 4, kFixedOne, 0, 0};
    c.antiAlias = below(2);
    c.fillRule = below(2);
    c.clipLeft = static_cast<int16_t>(below(4));
    for (MMPaint* paint : {&c.fillPaint, &c.strokePaint}) {
        const MMPaintType types[] = {kPaintNone, kPaintPattern, kPaintSolid, kPaintSolid};
        paint->paintType = types[below(4)];
        paint->paintColour = static_cast<Pixel>(random());
        paint->paintOpacity = below(2) != 0 ? 255 : below(256);
    }
    c.currentPaint = c.fillPaint;
    c.strokeHalfWidth = below(16) * kFixedOne / 8;
    c.joinStyle = below(3);
    c.capStyle = below(3);
    c.patternFilter = below(3);
    c.fontSize = (2 + below(5)) * kFixedOne;
    if (below(4) == 0) scene.dash();
    kOperations[random() % std::size(kOperations)].run(scene);
}

void drawFrame(SmallScene& scene, uint32_t frame)
{
    scene.reset();
    std::minstd_rand random(frame);
    for (uint32_t i = 0; i < kFrame; ++i)
        drawSomething(scene, 1 + static_cast<uint32_t>(random() % kDifferent));
}

TEST(LongLife, MemoryStaysAndTheLastFrameIsThatOfANewContext)
{
    FailingHeap heap; // counts only
    {
        SmallScene old;
        int64_t warm = 0;
        for (uint32_t frame = 1; frame <= kCount / kFrame; ++frame) {
            drawFrame(old, frame);
            EXPECT_EQ(old.context.scratchStack.usedWords, 0u);
            if (frame == kWarmFrame) warm = heap.liveBytes();
            ASSERT_TRUE(frame < kWarmFrame || heap.liveBytes() == warm) << frame;
        }
        EXPECT_EQ(old.context.outOfMemory, 0);
        SmallScene fresh;
        drawFrame(fresh, kCount / kFrame);
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
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

} // namespace
} // namespace robust
