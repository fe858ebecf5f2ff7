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

// A texel as it is, or opaque.
template <bool kMakeOpaque, class Pixels>
inline Pixels taken(Pixels texels)
{
    return kMakeOpaque ? texels | kOpaque : texels;
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

constexpr PatternFilter kNearest = {0, 0, 0, sampleNearest<false>, nullptr, sampleRefinedNearest,
                                    0, 0};

} // namespace

void drawNearestPattern(MMContext2D& context)
{
    drawPattern(context, kNearest, false);
}

void drawTranslucentNearestPattern(MMContext2D& context)
{
    drawPattern(context, kNearest, true);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
