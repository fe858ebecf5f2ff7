// SPDX-License-Identifier: MIT
// Rows of upright, magnified images with bilinear sampling.
//
// Four texels are mixed first along their rows, then across. All rows of such a span lie between
// the same columns of texels, and several of them between the same rows: what was mixed along a row
// of texels is kept for those that follow.
#include "graphics2d/strips/MagnifiedRows.h"

#include "graphics2d/strips/PatternSampling.h"
#include "graphics2d/strips/PixelMixing.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

constexpr int32_t kColumns = 64; // that are drawn at once

// Where pixels lie between the texels of an axis, one after the other.
struct ForwardAxis {
    Fixed at;
    Fixed step;   // 0 or more
    int32_t last; // texel

    ForwardAxis(const TexelAxis& axis, Fixed pixelStep)
        : at(axis.position()), step(pixelStep), last(axis.size() - 1)
    {
    }
    int32_t before() const { return std::clamp(fixFloor(at), 0, last); }
    int32_t behind() const { return std::clamp(fixFloor(at) + 1, 0, last); }
    uint32_t weights() const { return weightsOf(fixFraction(at)); }
    void advance() { at = wrapAdd(at, step); }
};

// Some pixels of a row and the columns of texels between which they lie.
class Columns {
public:
    Columns(ForwardAxis& u, int32_t count) : count_(count)
    {
        for (int32_t i = 0; i < count; ++i, u.advance()) {
            left_[i] = static_cast<uint16_t>(u.before());
            right_[i] = static_cast<uint16_t>(u.behind());
            weights_[i] = u.weights();
        }
    }

    // The texels of a row mixed along it.
    void mix(MixPixels mixPixels, const Pixel* texels, Pixel* out) const
    {
        Pixel lefts[kColumns], rights[kColumns];
        for (int32_t i = 0; i < count_; ++i) {
            lefts[i] = texels[left_[i]];
            rights[i] = texels[right_[i]];
        }
        mixPixels(lefts, rights, weights_, kLanes, 0, out, count_);
    }

    int32_t count() const { return count_; }

private:
    int32_t count_;
    uint16_t left_[kColumns];
    uint16_t right_[kColumns];
    uint32_t weights_[kColumns];
};

// Draws the columns in all rows of the span.
void drawColumns(const MMContext2D& context, const Columns& columns, ForwardAxis v, Pixel* out)
{
    const MixPixels mixPixels = mixerOf(context.refined != 0);
    const MMPixmap& image = context.currentPaint.patternImage;
    const Pixel alphaBits = context.refined != 0 ? kOpaque : 0;
    Pixel mixed[2][kColumns]; // of an even and an odd row of texels
    int32_t held[2] = {-1, -1};
    for (uint32_t rows = context.spanRows; rows > 0; --rows) {
        const int32_t taps[2] = {v.before(), v.behind()};
        for (const int32_t row : taps) {
            if (held[row & 1] == row) continue;
            held[row & 1] = row;
            columns.mix(mixPixels, image.pixels + static_cast<ptrdiff_t>(row) * image.width,
                        mixed[row & 1]);
        }
        uint32_t weights[kLanes];
        store(weights, all<PixelVector>(v.weights()));
        mixPixels(mixed[taps[0] & 1], mixed[taps[1] & 1], weights, 0, alphaBits, out,
                  columns.count());
        v.advance();
        out = pixelBelow(out, context.target.rowBytes);
    }
}

// Whether that many pixels keep to coordinates in short numbers.
bool isShort(const TexelAxis& axis, Fixed step, uint32_t pixels)
{
    const int64_t end = axis.distance() + int64_t{step} * (pixels - 1);
    return axis.position() == axis.distance() && end <= INT32_MAX;
}

} // namespace

bool drawMagnifiedRows(MMContext2D& context, const PatternFilter& filter)
{
    const Matrix2D& m = context.currentPaint.patternTransform;
    // Inverted identities come out one unit short of 1.0, and are copied.
    const auto magnifies = [](Fixed scale) { return 0 <= scale && scale < kFixedOne - 1; };
    if (context.spanRows < 2 || (m.b | m.c) != 0 || !magnifies(m.a) || !magnifies(m.d))
        return false;
    const PatternWalk walk = walkOf(context, filter);
    if (walk.isEmpty()) return true;
    int32_t count = spanLength(context);
    if (!isShort(walk.u, m.a, static_cast<uint32_t>(count)) ||
        !isShort(walk.v, m.d, context.spanRows))
        return false;

    ForwardAxis u(walk.u, m.a);
    const ForwardAxis v(walk.v, m.d);
    Pixel* out = spanFirstPixel(context);
    for (int32_t length; count > 0; count -= length, out += length) {
        length = std::min(count, kColumns);
        const Columns columns(u, length);
        drawColumns(context, columns, v, out);
    }
    return true;
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
