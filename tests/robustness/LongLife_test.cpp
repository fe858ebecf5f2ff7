// SPDX-License-Identifier: MIT
// One context that draws for a long time, as a device's does between its starts.
#include "tests/pictures/Scenes.h"
#include "tests/support/EncodedPath.h"
#include "tests/support/FailingHeap.h"

#include <algorithm>
#include <cstdlib>
#include <random>

using namespace KAVO;

namespace KAVO::Graphics2D::pictures {
namespace {

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
uint32_t operations()
{
    const char* wanted = std::getenv("MM2D_LONG_LIFE");
    return wanted != nullptr && *wanted != 0 ? 1000000 : 100000;
}
#else
uint32_t operations()
{
    return 50000; // emulators and sanitizers are slow
}
#endif
constexpr uint32_t kFrame = 500;      // operations
constexpr uint32_t kDifferent = 2000; // random operations
constexpr uint32_t kWarmFrame = 50;   // by then each of them has come up

// A random scene in a random state, small. The same number draws the same, but for a matrix that
// no other operation has: together the three remainders take a thousand million to come again.
void drawAtRandom(Canvas& c, uint32_t number, uint32_t operation)
{
    std::minstd_rand random(number);
    const auto below = [&random](uint32_t limit) { return static_cast<uint8_t>(random() % limit); };
    static const Fixed dashes[] = {20_fx, 6_fx};
    const Scene& scene = kScenes[below(std::size(kScenes))];
    const bool isText = std::string(scene.name).find("text") == 0;

    c.resetState();
    const double scale = isText ? 0.3 : 0.05 + 0.002 * below(100);
    const double skew = isText ? 0 : 0.001 * below(100);
    const uint8_t x = below(80), y = below(80);
    c.place(scale + operation % 1021 / 65536.0, 0, skew + operation % 1019 / 65536.0,
            scale + operation % 1013 / 65536.0, x, y);
    c.context.antiAlias = below(2);
    c.context.fillRule = below(2);
    c.context.clipLeft = below(40);
    c.opacity(below(2) != 0 ? 255 : below(256));
    if (below(4) == 0) c.context.dashArray = dashes, c.context.dashCount = 2;
    c.context.refined = below(2);
    scene.draw(c);
}

void drawFrame(Canvas& canvas, uint32_t frame)
{
    canvas.reset();
    std::minstd_rand random(frame);
    for (uint32_t i = 0; i < kFrame; ++i)
        drawAtRandom(canvas, 1 + static_cast<uint32_t>(random() % kDifferent), frame * kFrame + i);
}

TEST(LongLife, MemoryStaysAndTheLastFrameIsThatOfANewContext)
{
    FailingHeap heap; // counts only
    {
        Canvas old;
        int64_t warm = 0;
        const uint32_t frames = operations() / kFrame;
        for (uint32_t frame = 1; frame <= frames; ++frame) {
            drawFrame(old, frame);
            ASSERT_EQ(old.context.scratchStack.usedWords, 0u);
            // What the glyph cache holds within its budget changes; nothing else does.
            if (frame <= kWarmFrame) warm = std::max(warm, heap.liveBytes());
            ASSERT_LE(heap.liveBytes(), warm + warm / 8) << "frame " << frame;
        }
        EXPECT_EQ(old.context.outOfMemory, 0);
        Canvas fresh;
        drawFrame(fresh, frames);
        EXPECT_EQ(old.pixels, fresh.pixels);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

// At one font size, and with matrices that never come again.
TEST(LongLife, ZoomingTextTakesNoMoreMemory)
{
    FailingHeap heap;
    {
        TextScene scene(40);
        int64_t warm = 0;
        for (int32_t frame = 0; frame < 100000; ++frame) {
            scene.context.transform.a = kFixedOne + frame; // 18 to 30 pixels wide
            scene.context.transform.d = kFixedOne + frame % 700 * 91;
            scene.draw(u"ab", 2, 30);
            if (frame < 3000)
                warm = heap.peakBytes();
            else
                ASSERT_LE(heap.liveBytes(), warm + warm / 4) << "frame " << frame;
        }
        EXPECT_LE(heap.peakBytes(), warm + warm / 4);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

TEST(LongLife, ADashedPointLeavesTheBlockOfAPointBehindAndNoMore)
{
    FailingHeap heap;
    {
        Canvas canvas;
        const Fixed dashes[] = {3_fx, 2_fx};
        canvas.context.dashArray = dashes;
        canvas.context.dashCount = 2;
        canvas.stroke(2);
        EncodedPath point;
        point.points({at(3, 3)}, EncodedPath::kOpen);
        const void* block = nullptr;
        for (uint32_t n = 1; n <= 1000; ++n) {
            canvas.context.drawPath(point.data());
            ASSERT_EQ(canvas.context.scratchStack.usedWords, n * 3); // the point and a size word
            canvas.line({at(3, 3), at(9, 9)});
            canvas.zigzag();
            ASSERT_EQ(canvas.context.scratchStack.usedWords, n * 3);
            if (n == 1) block = canvas.context.scratchStack.firstBlock;
            ASSERT_EQ(canvas.context.scratchStack.firstBlock, block); // large enough for ever
        }
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
