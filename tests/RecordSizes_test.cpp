// SPDX-License-Identifier: MIT
// Record sizes and field positions that callers on 32-bit targets rely on, in 32-bit words. Checked
// by the compiler; on other targets pointers make most of the records larger.
#include "graphics2d/MMContext2D.h"
#include "graphics2d/MMLinkPath.h"
#include "graphics2d/MMPaint.h"
#include "graphics2d/MMPixmap.h"
#include "graphics2d/MMTextLayout.h"
#include "math/Matrix2D.h"
#include "math/Vector2D.h"
#include "memory/MMBucketContext.h"
#include "memory/MMCacheContext.h"
#include "memory/MMStackContext.h"
#include "memory/Vector.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace {

constexpr bool onWord(size_t bytes, size_t word)
{
    return sizeof(void*) != 4 || bytes == word * sizeof(uint32_t);
}

static_assert(onWord(sizeof(MMPixmap), 5), "");
static_assert(onWord(sizeof(MMPaint), 14), "");
static_assert(onWord(sizeof(MMStackContext), 4), "");
static_assert(onWord(sizeof(MMBucketContext), 5), "");
static_assert(onWord(sizeof(Vector), 2), "");
static_assert(onWord(sizeof(MMCacheInteriorNode), 18), "");
static_assert(onWord(sizeof(MMCacheEntry), 6), "");
static_assert(onWord(sizeof(MMCacheContext<48>), 9), "");
static_assert(onWord(sizeof(MMIntersect), 13), "");
static_assert(onWord(sizeof(MMLinkPath), 2), "");
static_assert(onWord(sizeof(MMMask), 4), "");
static_assert(onWord(sizeof(MMTextLayout), 2), "");

// Without pointers: on every target.
static_assert(sizeof(MMPoint2D) == 2 * sizeof(uint32_t), "");
static_assert(sizeof(MMFixedRegion) == 4 * sizeof(uint32_t), "");
static_assert(sizeof(Matrix2D) == 6 * sizeof(uint32_t), "");

static_assert(onWord(offsetof(MMPixmap, pixels), 3), "");
static_assert(onWord(offsetof(MMPaint, paintColour), 1), "");
static_assert(onWord(offsetof(MMPaint, paintHasAlpha), 4), "");
static_assert(onWord(offsetof(MMPaint, patternImage), 7), "");
static_assert(onWord(offsetof(MMPaint, patternHasAlpha), 12), "");
static_assert(onWord(offsetof(MMPaint, paintOpacity), 13), "");

// The fields of the context keep their order, whatever groups their comments make.
constexpr bool ascend(std::initializer_list<size_t> offsets)
{
    size_t previous = 0;
    for (const size_t offset : offsets) {
        if (offset < previous) return false;
        previous = offset;
    }
    return true;
}

using Context = KAVO::Graphics2D::MMContext2D;
static_assert(ascend({offsetof(Context, scratchStack),
                      offsetof(Context, fontCache),
                      offsetof(Context, strokePaint),
                      offsetof(Context, fillPaint),
                      offsetof(Context, fontSize),
                      offsetof(Context, savedTransforms),
                      offsetof(Context, transform),
                      offsetof(Context, clipLeft),
                      offsetof(Context, clipTop),
                      offsetof(Context, clipRight),
                      offsetof(Context, clipBottom),
                      offsetof(Context, strokeHalfWidth),
                      offsetof(Context, miterLimit),
                      offsetof(Context, dashArray),
                      offsetof(Context, dashOffset),
                      offsetof(Context, dashCount),
                      offsetof(Context, patternFilter),
                      offsetof(Context, imageOpacity),
                      offsetof(Context, accumulateBounds),
                      offsetof(Context, reservedFlag),
                      offsetof(Context, boundsMinX),
                      offsetof(Context, boundsMinY),
                      offsetof(Context, boundsMaxX),
                      offsetof(Context, boundsMaxY),
                      offsetof(Context, currentPaint),
                      offsetof(Context, spanStart),
                      offsetof(Context, spanEnd),
                      offsetof(Context, spanRow),
                      offsetof(Context, spanPixels),
                      offsetof(Context, spanCoverage),
                      offsetof(Context, spanCoverageNext),
                      offsetof(Context, spanCoverageStep),
                      offsetof(Context, spanTailCoverage),
                      offsetof(Context, leftEdgeAlpha),
                      offsetof(Context, antiAlias),
                      offsetof(Context, drawSuppressed),
                      offsetof(Context, target),
                      offsetof(Context, pickX),
                      offsetof(Context, pickY),
                      offsetof(Context, pickHit),
                      offsetof(Context, outOfMemory),
                      offsetof(Context, layoutControl),
                      offsetof(Context, pointStep),
                      offsetof(Context, refined),
                      offsetof(Context, clipMask),
                      offsetof(Context, maskTarget),
                      offsetof(Context, layer)}),
              "");

} // namespace
