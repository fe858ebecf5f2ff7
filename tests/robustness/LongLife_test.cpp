// One context that draws for a long time, as a device's does between its starts.
#include "tests/pictures/Scenes.h"
#include "tests/support/FailingHeap.h"

#include <random>

namespace pictures {
namespace {

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
constexpr uint32_t kOperations = 1000000;
#else
constexpr uint32_t kOperations = 50000; // emulators and sanitizers are slow
#endif
constexpr uint32_t kFrame = 500;      // operations
constexpr uint32_t kDifferent = 2000; // random operations
constexpr uint32_t kWarmFrame = 50;   // by then each of them has come up

// One small random operation in a random state. The same number draws the same.
void drawAtRandom(Canvas& c, uint32_t number)
{
    std::minstd_rand random(number);
    const auto below = [&random](uint32_t limit) { return static_cast<uint8_t>(random() % limit); };
    const auto length = [&below](double unit) { return unit * below(100); };
    static const Fixed dashes[] = {fx(20), fx(6)};
    MMContext2D& context = c.context;

    c.resetState();
    c.place(0.05 + length(0.002), 0, length(0.001), 0.05 + length(0.002), length(.9), length(.9));
    context.antiAlias = below(2);
    context.fillRule = below(2);
    context.clipLeft = below(40);
    c.opacity(below(2) != 0 ? 255 : below(256));
    switch (below(5)) {
    case 0:
        c.linear(below(2) != 0);
        break;
    case 1:
        c.radial(below(2) != 0);
        break;
    case 2:
        c.pattern(static_cast<MMPatternFilter>(below(3)), below(2) != 0);
        break;
    case 3:
        c.solid(kRed, kPaintXOR);
        break;
    default:
        break;
    }
    if (below(2) != 0)
        c.stroke(length(0.3), static_cast<MMJoinStyle>(below(3)),
                 static_cast<MMCapStyle>(below(3)));
    if (below(4) == 0) context.dashArray = dashes, context.dashCount = 2;

    MMPoint2D centre = at(below(96), below(96));
    const uint32_t shape = below(9);
    // Few enough glyphs that the glyph cache fills once and keeps them.
    if (shape >= 7) c.place(0.3, 0, 0.1 * below(2), 0.3, length(.5), length(.5));
    switch (shape) {
    case 0:
        return c.star();
    case 1:
        return c.zigzag(below(2) != 0);
    case 2:
        return c.blob();
    case 3:
        return c.tangle(3 + below(5), below(90), 5);
    case 4:
        return context.drawEllipticalRect(centre.x, centre.y, fx(40), fx(30), fx(9), fx(9));
    case 5:
        return context.drawCircularArc(&centre, fx(40), 0, fx(length(6)), below(2), below(2));
    case 6:
        return c.drawImage(below(50), below(50), 90, 60, below(2));
    case 7:
        return c.text(u"gA i", below(50), below(90), 20 + 4 * below(3));
    default:
        return wrappedText(c);
    }
}

void drawFrame(Canvas& canvas, uint32_t frame)
{
    canvas.reset();
    std::minstd_rand random(frame);
    for (uint32_t i = 0; i < kFrame; ++i)
        drawAtRandom(canvas, 1 + static_cast<uint32_t>(random() % kDifferent));
}

TEST(LongLife, MemoryStaysAndTheLastFrameIsThatOfANewContext)
{
    FailingHeap heap; // counts only
    {
        Canvas old;
        int64_t warm = 0;
        constexpr uint32_t kFrames = kOperations / kFrame;
        for (uint32_t frame = 1; frame <= kFrames; ++frame) {
            drawFrame(old, frame);
            ASSERT_EQ(old.context.scratchStack.usedWords, 0u);
            if (frame == kWarmFrame) warm = heap.liveBytes();
            ASSERT_TRUE(frame < kWarmFrame || heap.liveBytes() == warm) << "frame " << frame;
        }
        EXPECT_EQ(old.context.outOfMemory, 0);
        Canvas fresh;
        drawFrame(fresh, kFrames);
        EXPECT_EQ(old.pixels, fresh.pixels);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

TEST(LongLife, ADashedPointLeavesTheBlockOfAPointBehindAndNoMore)
{
    FailingHeap heap;
    {
        Canvas canvas;
        const Fixed dashes[] = {fx(3), fx(2)};
        canvas.context.dashArray = dashes;
        canvas.context.dashCount = 2;
        canvas.stroke(2);
        for (uint32_t n = 1; n <= 1000; ++n) {
            canvas.line({at(3, 3)});
            ASSERT_EQ(canvas.context.scratchStack.usedWords, n * 3); // the point and a size word
            canvas.line({at(3, 3), at(9, 9)});
            ASSERT_EQ(canvas.context.scratchStack.usedWords, n * 3);
        }
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
}

} // namespace
} // namespace pictures
