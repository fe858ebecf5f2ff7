// One context that draws for a long time, as a device's does between its starts.
#include "tests/pictures/Scenes.h"
#include "tests/support/FailingHeap.h"

namespace pictures {
namespace {

#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
constexpr int kRounds = 100; // some 200,000 operations
#else
constexpr int kRounds = 10; // emulators and sanitizers are slow
#endif

TEST(LongLife, MemoryStaysAndEveryPictureIsThatOfANewContext)
{
    std::vector<std::vector<Pixel>> pictures;
    for (const Scene& scene : kScenes) {
        Canvas fresh;
        scene.draw(fresh);
        pictures.push_back(fresh.pixels);
    }
    FailingHeap heap; // counts only
    {
        Canvas old;
        int64_t warm = 0;
        for (int round = 0; round < kRounds; ++round) {
            for (size_t i = 0; i < pictures.size(); ++i) {
                old.reset();
                kScenes[i].draw(old);
                ASSERT_EQ(old.pixels, pictures[i]) << kScenes[i].name << ", round " << round;
                ASSERT_EQ(old.context.scratchStack.usedWords, 0u) << kScenes[i].name;
                ASSERT_EQ(old.context.outOfMemory, 0) << kScenes[i].name;
            }
            if (round == 1) warm = heap.liveBytes();
            ASSERT_TRUE(round == 0 || heap.liveBytes() == warm) << "round " << round;
        }
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
