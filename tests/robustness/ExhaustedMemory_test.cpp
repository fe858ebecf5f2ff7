// Every public operation when any one of its heap calls fails.
#include "tests/robustness/SmallScene.h"
#include "tests/support/FailingHeap.h"
#include "tests/support/FakeFontEngine.h"
#include "tests/support/FakeLayoutEngine.h"
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

namespace robust {
namespace {

using Points = std::vector<MMPoint2D>;

const EncodedPath& curvedPath()
{
    static const EncodedPath path = [] {
        EncodedPath p;
        p.points({at(2, 2)}).curves({at(30, 4), at(-9, 18), at(20, 20)}, EncodedPath::kClosed);
        p.points({at(4, 20), at(12, 3), at(20, 20), at(3, 9), at(21, 9)}, EncodedPath::kOpen);
        return p;
    }();
    return path;
}

Points star()
{
    return {at(4, 20), at(12, 3), at(20, 20), at(3, 9), at(21, 9)};
}

void walkPath(SmallScene& s)
{
    const std::vector<uint32_t> stored = curvedPath().stored();
    MMPathPos pos = {};
    pos.path = stored.data();
    s.context.getPathPos(pos, fx(12), nullptr);
}

// What comes out. Text that lacks memory for a glyph leaves it out and says nothing, as for a
// character without a glyph.
enum Result { kPicture, kNumbers, kTextPicture, kTextNumbers };

struct Operation {
    const char* name;
    Result result;
    void (*run)(SmallScene&);
};

const Operation kOperations[] = {
    {"drawPath, filled", kPicture,
     [](SmallScene& s) {
         s.context.strokePaint.paintType = kPaintNone;
         s.context.drawPath(curvedPath().data());
     }},
    {"drawPath, stroked", kPicture,
     [](SmallScene& s) {
         s.context.fillPaint.paintType = kPaintNone;
         s.context.drawPath(curvedPath().data());
     }},
    {"drawPath, dashed", kPicture,
     [](SmallScene& s) {
         s.dash();
         s.context.drawPath(curvedPath().data());
     }},
    {"drawPolyline", kPicture,
     [](SmallScene& s) {
         Points points = star();
         MMLinkPath record = {points.data(), 5};
         s.context.drawPolyline(&record, 1, 1);
     }},
    {"drawDashArray", kPicture,
     [](SmallScene& s) {
         Points points = star();
         MMLinkPath record = {points.data(), 5};
         s.dash();
         s.context.drawDashArray(&record, 1, 0);
     }},
    {"drawEllipticalRect", kPicture,
     [](SmallScene& s) {
         s.context.drawEllipticalRect(fx(12), fx(12), fx(9), fx(7), fx(4), fx(3));
     }},
    {"drawCircularArc", kPicture,
     [](SmallScene& s) {
         MMPoint2D centre = at(12, 12);
         s.context.drawCircularArc(&centre, fx(8), fx(20), fx(250), 1, 0);
     }},
    {"rasterPolygon", kPicture, [](SmallScene& s) { s.context.rasterPolygon(star().data(), 5); }},
    {"rasterComplexPolygon", kPicture,
     [](SmallScene& s) { s.context.rasterComplexPolygon(star().data(), 5); }},
    {"drawImage through the transform", kPicture,
     [](SmallScene& s) { s.context.drawImage(&s.image, 0, 0, fx(20), fx(20), 0); }},
    {"drawImage into another pixmap", kPicture,
     [](SmallScene& s) {
         const MMFixedRegion from = {0, 0, fx(4), fx(4)}, to = {fx(4), fx(4), fx(19), fx(22)};
         const MMPixmap target = s.context.target;
         s.context.drawImage(&s.image, &from, &target, &to, fx(20));
     }},
    {"drawText", kTextPicture,
     [](SmallScene& s) { s.context.drawText(Text(u"Ag i").data(), fx(1), fx(9)); }},
    {"drawText of lines, through a row buffer", kTextPicture,
     [](SmallScene& s) {
         Text first(u"Ag"), second(u"j");
         uint16_t* lines[] = {first.data(), second.data()};
         s.context.fillPaint.paintType = kPaintNone;
         s.context.strokePaint.paintType = kPaintPattern;
         s.context.strokePaint.patternTransform = kIdentityMatrix;
         s.context.strokePaint.patternImage = s.image;
         s.context.drawText(lines, 2, fx(1), fx(9));
     }},
    {"drawWrappedText", kTextPicture,
     [](SmallScene& s) {
         s.dash(); // for the underline
         s.context.drawWrappedText(Text(u"Ag ij kl").data(), 0, 0);
     }},
    {"createTextLayout", kTextNumbers,
     [](SmallScene& s) {
         s.context.destroyTextLayout(s.context.createTextLayout(Text(u"Ag ij kl").data(), 12));
     }},
    {"getTextSize", kTextNumbers,
     [](SmallScene& s) {
         Fixed width, height;
         s.context.getTextSize(Text(u"Ag").data(), 2, width, height);
     }},
    {"getTextWidth", kTextNumbers,
     [](SmallScene& s) { s.context.getTextWidth(Text(u"Ag").data(), 2); }},
    {"getTextBBox", kTextNumbers,
     [](SmallScene& s) {
         MMFixedRegion box = {};
         s.context.getTextBBox(Text(u"Ag").data(), 0, 0, &box);
     }},
    {"getPathPos", kNumbers, walkPath},
    {"getPathKeyPointCount", kNumbers,
     [](SmallScene& s) { s.context.getPathKeyPointCount(curvedPath().stored().data()); }},
};

void drawReference(SmallScene& scene)
{
    scene.reset();
    scene.dash();
    scene.context.drawPath(curvedPath().data());
    scene.context.drawText(Text(u"gAj").data(), fx(3), fx(20));
    scene.context.drawImage(&scene.image, fx(8), fx(8), fx(9), fx(9), 1);
}

TEST(ExhaustedMemory, AnOperationWithoutMemoryLeavesTheContextAsGoodAsNew)
{
    SmallScene fresh;
    drawReference(fresh);
    for (const Operation& operation : kOperations) {
        SmallScene whole;
        operation.run(whole);
        const bool draws = operation.result == kPicture || operation.result == kTextPicture;
        EXPECT_EQ(whole.pixels != SmallScene().pixels, draws) << operation.name;
        uint32_t calls = 0;
        for (uint32_t n = 1; n <= calls + 1; ++n) {
            SCOPED_TRACE(testing::Message() << operation.name << ", heap call " << n);
            FailingHeap heap;
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
                if (calls < n) {
                    EXPECT_EQ(scene.context.outOfMemory, 0);
                    EXPECT_EQ(scene.pixels, whole.pixels);
                } else if (operation.result < kTextPicture) {
                    EXPECT_EQ(scene.context.outOfMemory, kScratchExhausted);
                }
                stack.DeAlloc(full);
                drawReference(scene);
                EXPECT_EQ(scene.pixels, fresh.pixels);
                EXPECT_EQ(stack.usedWords, 0u);
            }
            EXPECT_EQ(heap.liveBlocks(), 0);
            EXPECT_EQ(fakeFontEngine.glyphsAlive, 0);
            EXPECT_EQ(fakeLayoutEngine.objectsAlive, 0);
        }
    }
}

} // namespace
} // namespace robust
