// Every public operation when any one of its heap calls fails.
#include "tests/robustness/Operations.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/FakeLayoutEngine.h"

namespace robust {
namespace {

void drawReference(SmallScene& scene)
{
    scene.reset();
    scene.dash();
    scene.context.drawPath(curvedPath().data());
    scene.context.drawText(Text(u"gAj").data(), fx(3), fx(20));
    scene.context.drawImage(&scene.image, fx(8), fx(8), fx(9), fx(9), 1);
}

// Runs the operation with the n-th heap call failing, and sees that the context is none the worse.
// Returns the heap calls made; reported says whether the context knows that memory ran out.
uint32_t runFailing(const Operation& operation, uint32_t n, const SmallScene& whole,
                    const SmallScene& reference, bool& reported)
{
    FailingHeap heap;
    uint32_t calls = 0;
    {
        SmallScene scene;
        MMStackContext& stack = scene.context.scratchStack;
        void* full = stack.Alloc(1024); // what follows has to ask the heap
        const uint32_t used = stack.usedWords;
        heap.failAt(n);
        operation.run(scene);
        calls = heap.calls();
        heap.failAt(0);
        EXPECT_EQ(stack.usedWords, used);
        reported = scene.context.outOfMemory == kScratchExhausted;
        if (calls < n) {
            EXPECT_EQ(scene.context.outOfMemory, 0);
            EXPECT_EQ(scene.pixels, whole.pixels);
        }
        stack.DeAlloc(full);
        drawReference(scene);
        EXPECT_EQ(scene.pixels, reference.pixels);
        EXPECT_EQ(stack.usedWords, 0u);
    }
    EXPECT_EQ(heap.liveBlocks(), 0);
    EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
    EXPECT_EQ(fakeLayoutEngine.objectsAlive, 0);
    return calls;
}

TEST(ExhaustedMemory, AnOperationWithoutMemoryLeavesTheContextAsGoodAsNew)
{
    SmallScene reference;
    drawReference(reference);
    for (const Operation& operation : kOperations) {
        SmallScene whole;
        operation.run(whole);
        EXPECT_EQ(whole.pixels != SmallScene().pixels, operation.draws) << operation.name;
        uint32_t calls = 0, reports = 0;
        for (uint32_t n = 1; n <= calls + 1; ++n) {
            SCOPED_TRACE(testing::Message() << operation.name << ", heap call " << n);
            bool reported = false;
            calls = runFailing(operation, n, whole, reference, reported);
            reports += reported ? 1 : 0;
        }
        EXPECT_GT(calls, 0u) << operation.name;
        EXPECT_EQ(reports == calls, operation.report == Report::kAlways) << operation.name;
        EXPECT_EQ(reports == 0, operation.report == Report::kNever) << operation.name;
    }
}

} // namespace
} // namespace robust
