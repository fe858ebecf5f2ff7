// Strip fillers of the image pattern with the nearest texel.
//
// The sample point is the pixel's centre. Beyond the image its outermost texels repeat.
#include "graphics2d/PatternSampling.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// From the index to the nearest texel within the axis.
int32_t clampOffset(const TexelAxis& axis)
{
    const int32_t texel = axis.texel();
    if (texel < 0) return -texel;
    if (texel >= axis.size() - 1) return axis.size() - texel - 1;
    return 0;
}

struct NearestFilter {
    static constexpr int32_t kBefore = 0;
    static constexpr int32_t kAfter = 0;

    explicit NearestFilter(const MMContext2D& context)
        : walk(context.currentPaint, wrapAdd(fixFromInt(fixFloor(context.spanStart)), kFixedHalf),
               wrapAdd(fixFromInt(context.spanRow), kFixedHalf))
    {
    }

    void writeOne(int32_t i)
    {
        out[i] = walk.texelAt(int64_t{walk.u.index()} + clampOffset(walk.u),
                              int64_t{walk.v.index()} + clampOffset(walk.v));
    }

    void writeInside(InsideWalk at, int32_t first, int32_t count)
    {
        Pixel* to = out + first;
        if (at.vStep == 0 && copyRow(at, to, count)) return;
        if (at.vStep == 0) return scaleRow(at, to, count);
        for (int32_t i = 0; i < count; ++i) {
            to[i] = *at.texel();
            at.advance();
        }
    }

    PatternWalk walk;
    Pixel* out = nullptr;

private:
    // One texel per pixel, or so little less that the run stays on consecutive texels: an inverted
    // identity comes out as 0xFFFF. False when the texels do not follow each other.
    static bool copyRow(const InsideWalk& at, Pixel* to, int32_t count)
    {
        if (at.uStep != kFixedOne && at.uStep != kFixedOne - 1) return false;
        const uint32_t shortfall =
            static_cast<uint32_t>(kFixedOne - at.uStep) * static_cast<uint32_t>(count - 1);
        if (shortfall > fixFraction(at.u)) return false;
        std::memcpy(to, at.texel(), static_cast<size_t>(count) * sizeof(Pixel));
        return true;
    }

    // All texels from one row.
    static void scaleRow(const InsideWalk& at, Pixel* to, int32_t count)
    {
        Fixed u = wrapAdd(at.u, at.uBias);
        const Pixel* row = at.texel() - fixFloor(u);
        const auto next = [&] {
            const Pixel texel = row[fixFloor(u)];
            u = wrapAdd(u, at.uStep);
            return texel;
        };
        int32_t i = 0;
        for (; i + 4 <= count; i += 4) {
            const U32x4 texels = {next(), next(), next(), next()};
            store4(to + i, texels);
        }
        for (; i < count; ++i)
            to[i] = next();
    }
};

} // namespace

void MMContext2D::drawPatternStrip()
{
    NearestFilter filter(*this);
    if (filter.walk.isEmpty()) return;
    filter.out = spanFirstPixel(*this);
    walkPattern(filter, spanLength(*this));
}

void MMContext2D::drawPatternTStrip()
{
    NearestFilter filter(*this);
    if (!filter.walk.isEmpty()) drawByAlpha(*this, filter);
}

} // namespace Graphics2D
} // namespace KAVO
