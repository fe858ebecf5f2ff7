// SPDX-License-Identifier: MIT
// Null pointers in every public call that takes points, records, a path, a pixmap, a text or a
// result: nothing is drawn, and the answer is 0.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/RegionFlush.h"
#include "math/Vector2D.h"
#include "tests/support/Picture.h"
#include "util/Base64.h"
#include "util/WideString.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

// What the calls with one null among their arguments get for the others.
uint16_t word[] = {'a', 'b', 0};
uint16_t* const noLine = nullptr;
uint16_t* lines[] = {noLine, word};
uint8_t bytes[8] = {};
MMPoint2D points[] = {{0, 0}, {40 << 16, 0}, {20 << 16, 40 << 16}};
MMLinkPath halfRecords[] = {{points, 3}, {nullptr, 3}};
const MMFixedRegion part = {0, 0, 8 << 16, 8 << 16};
const MMPixmap noPixels = {8, 8, 32, 0, nullptr, 0};

// Answers by value are added up, answers through a result start at 5.
struct NullCall {
    const char* what;
    int64_t (*answer)(MMContext2D&);
} const calls[] = {
    {"rasterPolygon", [](auto& c) -> int64_t { return c.rasterPolygon(nullptr, 3), 0; }},
    {"monotone", [](auto& c) -> int64_t { return c.rasterMonotonePolygon(nullptr, 3), 0; }},
    {"complex", [](auto& c) -> int64_t { return c.rasterComplexPolygon(nullptr, 3), 0; }},
    {"no target",
     [](auto& c) -> int64_t {
         c.target.pixels = nullptr;
         c.rasterPolygon(points, 3);
         return c.drawText(word, 0, 20 << 16), 0;
     }},
    {"drawPath", [](auto& c) -> int64_t { return c.drawPath(nullptr), 0; }},
    {"key points", [](auto& c) -> int64_t { return c.getPathKeyPointCount(nullptr); }},
    {"getPathPos",
     [](auto& c) -> int64_t {
         MMPathPos pos = {};
         Degrees angle = 5;
         c.getPathPos(pos, 1 << 16, nullptr);
         c.getPathPos(pos, 1 << 16, &angle);
         return angle + pos.current.x + pos.walked;
     }},
    {"getBezierPts",
     [](auto& c) -> int64_t {
         return c.getBezierPts(nullptr, points[0], points[1], points[2], points[0]);
     }},
    {"getCircularArcPts",
     [](auto& c) -> int64_t {
         return c.getCircularArcPts(nullptr, points[0], points[1], points[2], 9 << 16, 1);
     }},
    {"drawPolyline", [](auto& c) -> int64_t { return c.drawPolyline(nullptr, 2, 0), 0; }},
    {"half records", [](auto& c) -> int64_t { return c.drawPolyline(halfRecords, 2, 1), 0; }},
    {"drawDashArray", [](auto& c) -> int64_t { return c.drawDashArray(nullptr, 2, 0), 0; }},
    {"half dashes", [](auto& c) -> int64_t { return c.drawDashArray(halfRecords, 2, 1), 0; }},
    {"drawCircularArc",
     [](auto& c) -> int64_t {
         return c.drawCircularArc(nullptr, 9 << 16, 0, kDegrees90, 1, 0), 0;
     }},
    {"drawImage", [](auto& c) -> int64_t { return c.drawImage(nullptr, 0, 0, 9, 9, 0), 0; }},
    {"no texels",
     [](auto& c) -> int64_t { return c.drawImage(&noPixels, 0, 0, 9 << 16, 9 << 16, 0), 0; }},
    {"drawImage into",
     [](auto& c) -> int64_t {
         const MMPixmap target = c.target;
         c.drawImage(nullptr, &part, &target, &part, 0);
         c.drawImage(&target, nullptr, &target, &part, 0);
         c.drawImage(&target, &part, nullptr, &part, 0);
         return c.drawImage(&target, &part, &target, nullptr, 0), 0;
     }},
    {"setPattern",
     [](auto& c) -> int64_t {
         setPattern(c.currentPaint, noPixels, kIdentityMatrix, kFilterBilinear);
         return c.rasterPolygon(points, 3), 0;
     }},
    {"gradients",
     [](auto& c) -> int64_t {
         setLinearGradient(c.currentPaint, points[0], points[1], kIdentityMatrix,
                           {nullptr, nullptr, 2}, {nullptr, nullptr});
         c.rasterPolygon(points, 3);
         setRadialGradient(c.currentPaint, points[0], 9 << 16, kIdentityMatrix,
                           {nullptr, nullptr, 2}, {nullptr, nullptr});
         return c.rasterPolygon(points, 3), 0;
     }},
    {"white space",
     [](auto& c) -> int64_t {
         c.ParseText(nullptr, word);
         c.ParseText(word, nullptr);
         ParseText2(nullptr, word);
         ParseText2(word, nullptr);
         return MM_wstrcmp(word, lines[1]);
     }},
    {"drawText lines", [](auto& c) -> int64_t { return c.drawText(nullptr, 2, 0, 9 << 16), 0; }},
    {"drawText", [](auto& c) -> int64_t { return c.drawText(noLine, 0, 9 << 16), 0; }},
    {"a null line",
     [](auto& c) -> int64_t { return c.textAnchor = kAnchorEnd, c.drawText(lines, 1, 0, 0), 0; }},
    {"renderText", [](auto& c) -> int64_t { return c.renderText(nullptr, 9, 1, 0), 0; }},
    {"getTextWidth", [](auto& c) -> int64_t { return c.getTextWidth(nullptr, 9); }},
    {"getTextSize",
     [](auto& c) -> int64_t {
         Fixed width = 5, height = 5;
         c.getTextSize(nullptr, 9, width, height);
         return int64_t{width} + height;
     }},
    {"getTextBBox",
     [](auto& c) -> int64_t {
         MMFixedRegion box = {};
         return c.getTextBBox(nullptr, 0, 0, &box) + c.getTextBBox(word, 0, 0, nullptr);
     }},
    {"createTextLayout",
     [](auto& c) -> int64_t { return c.createTextLayout(nullptr, 50) == nullptr ? 0 : 1; }},
    {"destroyTextLayout", [](auto& c) -> int64_t { return c.destroyTextLayout(nullptr), 0; }},
    {"drawWrappedText", [](auto& c) -> int64_t { return c.drawWrappedText(nullptr, 0, 0), 0; }},
    {"flush", [](auto&) -> int64_t { return MMG_flushRegion(nullptr, 0, 0, 9, 9, 1), 0; }},
    {"pan", [](auto&) -> int64_t { return panPixmap(nullptr, 1, 1), 0; }},
    {"a pixmap without pixels",
     [](auto&) -> int64_t {
         MMPixmap pixmap = noPixels;
         MMG_flushRegion(&pixmap, 0, 0, 9, 9, 1);
         return panPixmap(&pixmap, 1, 1), 0;
     }},
    {"strings",
     [](auto&) -> int64_t {
         return MMwsstrlen(nullptr) + MM_wstrcmp(nullptr, word) + MM_wstrcmp(word, nullptr) +
                MM_wstrncmp(nullptr, word, 2) + MM_wstrncmp(word, nullptr, 2);
     }},
    {"copies of strings",
     [](auto&) -> int64_t {
         return (MM_wstrncpy(nullptr, word, 2) != nullptr) +
                (MM_wstrncpy(word, nullptr, 2) != nullptr) + (MM_wstrchr(nullptr, 'a') != nullptr) +
                (MMstrUtf8ToWs(nullptr, 2) != nullptr);
     }},
    {"Base64",
     [](auto&) -> int64_t {
         return MMdecodeBase64(nullptr, 8, bytes) + MMdecodeBase64(bytes, 8, nullptr);
     }},
    {"vectors",
     [](auto&) -> int64_t {
         return v2dDot(nullptr, points) + v2dDot(&points[1], nullptr) + v2dCross(nullptr, points) +
                v2dCross(&points[1], nullptr) + v2dNorm(nullptr);
     }},
    {"an intersection",
     [](auto&) -> int64_t {
         MMIntersect lines = {{0, 0}, {1 << 16, 0}, 9 << 16, 1 << 16, nullptr,
                              {0, 0}, {0, 1 << 16}, 9 << 16, 0};
         return v2dGetIntercept(lines);
     }},
    {"matrices",
     [](auto& c) -> int64_t {
         MMPoint2D mapped = {0, 0};
         c.transform.e = 5;
         c.transform.transform(nullptr, points, 3);
         c.transform.transform(&mapped, nullptr, 1);
         c.transform.mul(nullptr, &kIdentityMatrix);
         c.transform.mul(&kIdentityMatrix, nullptr);
         return mapped.x + c.transform.e - 5;
     }},
};

TEST(NullPointers, DrawNothingAndAnswerZero)
{
    constexpr Fixed kDashes[] = {3 << 16, 2 << 16};
    for (const NullCall& call : calls) {
        SCOPED_TRACE(call.what);
        Picture picture;
        ASSERT_NE(picture.context.fontMetrics, nullptr);
        picture.context.strokePaint.paintType = kPaintSolid;
        picture.context.dashArray = kDashes;
        picture.context.dashCount = 2;
        EXPECT_EQ(call.answer(picture.context), 0);
        EXPECT_TRUE(picture.blank());
        EXPECT_EQ(picture.context.outOfMemory, 0);
        EXPECT_EQ(MMwsstrlen(word), 2);
    }
}

} // namespace
