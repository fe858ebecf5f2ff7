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

// All texels from one row, with the bits of an opaque pixel's alpha or without.
void scaleRow(const PatternWalk& walk, Pixel* out, int32_t count, Pixel alphaBits)
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
        store4(out, U32x4{first, second, third, fourth} | alphaBits);
    }
    for (; count > 0; --count, u = wrapAdd(u, step))
        *out++ = row[fixFloor(u)] | alphaBits;
}

void sampleNearest(const PatternWalk& walk, bool inside, Pixel* out, uint32_t*, int32_t count)
{
    const Pixel alphaBits = walk.alpha == TexelAlpha::kMadeWhole ? kOpaque : 0;
    if (!inside) {
        PatternWalk at = walk;
        for (int32_t i = 0; i < count; ++i, at.advance(1))
            out[i] = at.texelAt(at.u.tap(0), at.v.tap(0)) | alphaBits;
        return;
    }
    Fixed u = walk.u.indexPosition();
    Fixed v = walk.v.indexPosition();
    if (walk.v.step() == 0) return scaleRow(walk, out, count, alphaBits);
    for (int32_t i = 0; i < count; ++i) {
        out[i] = walk.row(v)[fixFloor(u)] | alphaBits;
        u = wrapAdd(u, walk.u.step());
        v = wrapAdd(v, walk.v.step());
    }
}

constexpr PatternFilter kNearest = {0, 0, 0, sampleNearest, nullptr, sampleNearest, 0, 0};

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
