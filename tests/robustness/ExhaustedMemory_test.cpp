// SPDX-License-Identifier: MIT
// Pictures with everything that the library can draw, when any one of its heap calls fails.
#include "tests/pictures/Scenes.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/FakeLayoutEngine.h"

namespace KAVO::Graphics2D::pictures {
namespace {

void drawReference(Canvas& canvas)
{
    canvas.reset();
    canvas.blob();
    canvas.text(u"gAj", 30, 80, 20);
    canvas.stroke(11), canvas.zigzag();
}

struct Outcome {
    uint32_t calls; // of the heap
    bool reported;  // that memory ran out
};

// Draws the scene with the n-th heap call failing, and sees that the context is none the worse.
Outcome drawFailing(const Scene& scene, uint8_t refined, uint32_t n, const Canvas& whole,
                    const Canvas& reference)
{
    FailingHeap heap;
    Outcome outcome;
    {
        Canvas canvas;
        MMStackContext& stack = canvas.context.scratchStack;
        void* full = stack.Alloc(1024); // what follows has to ask the heap
        const uint32_t used = stack.usedWords;
        canvas.context.refined = refined;
        heap.failAt(n);
        scene.draw(canvas);
        outcome = {heap.calls(), canvas.context.outOfMemory == kScratchExhausted};
        heap.failAt(0);
        EXPECT_EQ(stack.usedWords, used);
        if (outcome.calls < n) {
            EXPECT_EQ(canvas.context.outOfMemory, 0);
            EXPECT_EQ(canvas.pixels, whole.pixels);
        }
        stack.DeAlloc(full);
        drawReference(canvas);
        EXPECT_EQ(canvas.pixels, reference.pixels);
        EXPECT_EQ(stack.usedWords, 0u);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
    EXPECT_EQ(fakeLayoutEngine.objectsAlive, 0);
    return outcome;
}

TEST(ExhaustedMemory, ASceneWithoutMemoryLeavesTheContextAsGoodAsNew)
{
    constexpr uint32_t kMostCalls = 200; // what a scene does then, it has done before
    Canvas reference;
    drawReference(reference);
    for (size_t i = 0; i < 2 * std::size(kScenes); ++i) {
        const Scene& scene = kScenes[i / 2];
        const uint8_t refined = i % 2;
        if (!scene.ofItsOwnMemory) continue;
        Canvas whole;
        whole.context.refined = refined;
        scene.draw(whole);
        uint32_t failures = 0, reports = 0;
        for (uint32_t n = 1; n <= kMostCalls && failures == n - 1; ++n) {
            SCOPED_TRACE(testing::Message()
                         << scene.name << ", refined " << int(refined) << ", heap call " << n);
            const Outcome outcome = drawFailing(scene, refined, n, whole, reference);
            failures += outcome.calls >= n ? 1 : 0;
            reports += outcome.reported ? 1 : 0;
        }
        SCOPED_TRACE(testing::Message() << scene.name << ", refined " << int(refined));
        const std::string name = scene.name;
        EXPECT_GT(failures, 0u);
        // Text that lacks memory for a glyph leaves it out and says nothing, as for a character
        // without a glyph. Dashes that lack memory to be one shape are drawn by themselves.
        if (name == "text")
            EXPECT_EQ(reports, 0u);
        else if (name.find("text") == 0 || (refined != 0 && name.find("dashes") == 0))
            EXPECT_TRUE(reports > 0 && reports < failures);
        else
            EXPECT_EQ(reports, failures);
    }
}

} // namespace
} // namespace KAVO::Graphics2D::pictures
