// SPDX-License-Identifier: MIT
// Strip fillers of the image pattern with the nearest texel.
//
// The sample point is the pixel's centre. Beyond the image its outermost texels repeat.
#include "graphics2d/strips/PatternSampling.h"

namespace KAVO {
namespace Graphics2D {

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

// All texels from one row.
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
        store4(out, U32x4{first, second, third, fourth});
    }
    for (; count > 0; --count, u = wrapAdd(u, step))
        *out++ = row[fixFloor(u)];
}

// The nearest texel within the axis.
int64_t clamped(const TexelAxis& axis)
{
    const int32_t texel = axis.texel();
    const int32_t last = axis.size() - 1;
    return axis.indexOffset() + (texel < 0 ? 0 : texel < last ? texel : last);
}

void sampleNearest(const PatternWalk& walk, bool inside, Pixel* out, uint32_t*, int32_t count)
{
    if (!inside) {
        PatternWalk at = walk;
        for (int32_t i = 0; i < count; ++i, at.advance(1))
            out[i] = at.texelAt(clamped(at.u), clamped(at.v));
        return;
    }
    Fixed u = walk.u.indexPosition();
    Fixed v = walk.v.indexPosition();
    if (isRowCopy(walk, count)) {
        std::memcpy(out, walk.row(v) + fixFloor(u), static_cast<size_t>(count) * sizeof(Pixel));
        return;
    }
    if (walk.v.step() == 0) return scaleRow(walk, out, count);
    for (int32_t i = 0; i < count; ++i) {
        out[i] = walk.row(v)[fixFloor(u)];
        u = wrapAdd(u, walk.u.step());
        v = wrapAdd(v, walk.v.step());
    }
}

constexpr PatternFilter kNearest = {0, 0, sampleNearest, nullptr};

PatternWalk walkOf(const MMContext2D& context)
{
    return PatternWalk(context.currentPaint,
                       wrapAdd(fixFromInt(fixFloor(context.spanStart)), kFixedHalf),
                       wrapAdd(fixFromInt(context.spanRow), kFixedHalf));
}

} // namespace

void MMContext2D::drawPatternStrip()
{
    PatternWalk walk = walkOf(*this);
    drawPattern(*this, walk, kNearest);
}

void MMContext2D::drawPatternTStrip()
{
    PatternWalk walk = walkOf(*this);
    drawTranslucentPattern(*this, walk, kNearest);
}

} // namespace Graphics2D
} // namespace KAVO
