// SPDX-License-Identifier: MIT
// Strip fillers of the image pattern with the nearest texel.
//
// The sample point is the pixel's centre. Beyond the image its outermost texels repeat.
#include "graphics2d/strips/PatternSampling.h"
#include "graphics2d/strips/StripFillers.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// One texel per pixel, or so little less that the run stays on consecutive texels: an inverted
// identity comes out as 0xFFFF. False when the texels do not follow each other.
bool isRowCopy(const PatternWalk& walk, int32_t count)
{
    if (walk.v.step() != 0) return false;
    const Fixed step = walk.u.step();
    if (step != kFixedOne && step != kFixedOne - 1) return false;
    const uint32_t shortfall =
        static_cast<uint32_t>(kFixedOne - step) * static_cast<uint32_t>(count - 1);
    return shortfall <= walk.u.fraction();
}

// A texel as it is, or opaque.
template <bool kMakeOpaque, class Pixels>
inline Pixels taken(Pixels texels)
{
    return kMakeOpaque ? texels | kOpaque : texels;
}

// Texels that follow each other.
template <bool kMakeOpaque>
void copyRow(const Pixel* texels, Pixel* out, int32_t count)
{
    if (!kMakeOpaque) {
        std::memcpy(out, texels, static_cast<size_t>(count) * sizeof(Pixel));
        return;
    }
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        store(out + i, load<PixelVector>(texels + i) | kOpaque);
    for (; i < count; ++i)
        out[i] = texels[i] | kOpaque;
}

// All texels from one row.
template <bool kMakeOpaque>
void scaleRow(const PatternWalk& walk, Pixel* out, int32_t count)
{
    const Pixel* row = walk.row(walk.v.indexPosition());
    const Fixed step = walk.u.step();
    Fixed u = walk.u.indexPosition();
    for (; count >= 4; count -= 4, out += 4) {
        const Pixel first = row[fixFloor(u)];
        const Pixel second = row[fixFloor(wrapAdd(u, step))];
        u = wrapAdd(u, wrapAdd(step, step));
        const Pixel third = row[fixFloor(u)];
        const Pixel fourth = row[fixFloor(wrapAdd(u, step))];
        u = wrapAdd(u, wrapAdd(step, step));
        store4(out, taken<kMakeOpaque>(U32x4{first, second, third, fourth}));
    }
    for (; count > 0; --count, u = wrapAdd(u, step))
        *out++ = taken<kMakeOpaque>(row[fixFloor(u)]);
}

template <bool kMakeOpaque>
void sampleNearest(const PatternWalk& walk, bool inside, Pixel* out, uint32_t*, int32_t count)
{
    if (!inside) {
        PatternWalk at = walk;
        for (int32_t i = 0; i < count; ++i, at.advance(1))
            out[i] = taken<kMakeOpaque>(at.texelAt(at.u.tap(0), at.v.tap(0)));
        return;
    }
    Fixed u = walk.u.indexPosition();
    Fixed v = walk.v.indexPosition();
    if (isRowCopy(walk, count)) return copyRow<kMakeOpaque>(walk.row(v) + fixFloor(u), out, count);
    if (walk.v.step() == 0) return scaleRow<kMakeOpaque>(walk, out, count);
    for (int32_t i = 0; i < count; ++i) {
        out[i] = taken<kMakeOpaque>(walk.row(v)[fixFloor(u)]);
        u = wrapAdd(u, walk.u.step());
        v = wrapAdd(v, walk.v.step());
    }
}

void sampleRefinedNearest(const PatternWalk& walk, bool inside, Pixel* out, uint32_t* alphas,
                          int32_t count)
{
    if (walk.alpha == TexelAlpha::kMadeWhole)
        return sampleNearest<true>(walk, inside, out, alphas, count);
    sampleNearest<false>(walk, inside, out, alphas, count);
}

constexpr PatternFilter kNearest = {0, 0,    sampleNearest<false>, nullptr, sampleRefinedNearest,
                                    0, false};

PatternWalk walkOf(const MMContext2D& context)
{
    return PatternWalk::classic(context.currentPaint,
                                wrapAdd(fixFromInt(fixFloor(context.spanStart)), kFixedHalf),
                                wrapAdd(fixFromInt(context.spanRow), kFixedHalf));
}

} // namespace

void drawNearestPattern(MMContext2D& context)
{
    if (context.refined != 0) return drawRefinedPattern(context, kNearest, false);
    PatternWalk walk = walkOf(context);
    drawPattern(context, walk, kNearest);
}

void drawTranslucentNearestPattern(MMContext2D& context)
{
    if (context.refined != 0) return drawRefinedPattern(context, kNearest, true);
    PatternWalk walk = walkOf(context);
    drawTranslucentPattern(context, walk, kNearest);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
