// Plain models of the gradient and pattern strip fillers: one pixel at a time, every quantity
// stepped or computed as it is defined, nothing shared with the library but the 16.16 functions.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"
#include "math/Vector2D.h"

#include <algorithm>

namespace PaintModel {

using KAVO::Graphics2D::MMContext2D;

inline int byteOf(Pixel p, int k)
{
    return (p >> (8 * k)) & 0xFF;
}

inline Pixel moved(Pixel from, Pixel to, int w)
{
    Pixel p = 0;
    for (int k = 0; k < 4; ++k) {
        const int d = byteOf(to, k) - byteOf(from, k);
        p |= static_cast<Pixel>(byteOf(from, k) + ((d * w + (d > 128 ? w : 0)) >> 8)) << 8 * k;
    }
    return p;
}

// What all models have: the pixel to draw next, how many are left, and the opacity.
struct Run {
    MMContext2D& context;
    const MMPaint& paint;
    bool translucent;
    Pixel* pixel;
    int n;
    Coverage o;

    Run(MMContext2D& c, bool t)
        : context(c), paint(c.currentPaint), translucent(t),
          pixel(c.spanPixels + (c.spanStart >> 16)),
          n(std::max(0, (c.spanEnd >> 16) - (c.spanStart >> 16))), o(c.spanCoverage)
    {
    }
    bool startTail()
    {
        if (!translucent || context.spanTailCoverage <= 0) return false;
        o = context.spanTailCoverage;
        context.spanTailCoverage = 0;
        n = 1;
        return true;
    }
    void put(Pixel source, int w)
    {
        const MMPixmap& t = context.target;
        const Pixel* end = t.pixels + (t.height - 1) * t.rowBytes / 4 + t.width;
        *pixel = translucent ? moved(pixel[pixel + 1 == end ? 0 : 1], source, w) : source;
        if (translucent) {
            o = context.spanCoverageNext;
            context.spanCoverageNext = wrapAdd(o, context.spanCoverageStep);
        }
        ++pixel;
        --n;
    }
    int gradientWeight(int32_t alpha) const
    {
        const int w = fixMulSHR(o, alpha, 24) & 0xFF;
        return (w >= 128 ? w + 1 : w) & 0xFF;
    }
    void putStop(Pixel c) { put(c, gradientWeight(byteOf(c, 3) << 16)); }
};

// Channels 0 to 3 are blue, green, red, alpha in 8.16.
inline Pixel opaque(const int32_t (&v)[4])
{
    Pixel p = 0xFF000000;
    for (int k = 0; k < 3; ++k)
        p |= static_cast<Pixel>((wrapAdd(v[k], 0x8000) >> 16) & 0xFF) << (8 * k);
    return p;
}

// The colour between two stops and its change over all of the segment.
struct Segment {
    Fixed span;
    int32_t v[4], d[4];

    Segment(const MMPaint& p, uint32_t i, Fixed at)
    {
        const Fixed* o = p.gradientStopOffsets + i;
        const Pixel* c = p.gradientStopColors + i;
        span = wrapSub(o[1], o[0]);
        const Fixed f = fixDiv(wrapSub(at, o[0]), span);
        for (int k = 0; k < 4; ++k) {
            d[k] = (byteOf(c[1], k) - byteOf(c[0], k)) * 65536;
            v[k] = wrapAdd(fixMul(f, d[k]), byteOf(c[0], k) << 16);
        }
    }
    void step(const int32_t (&change)[4], int shift = 0)
    {
        for (int k = 0; k < 4; ++k)
            v[k] = wrapAdd(v[k], change[k] >> shift);
    }
};

inline int32_t raised(int32_t x)
{
    return x >= 0x00800000 ? wrapAdd(x, 0x10000) : x;
}

inline void linear(MMContext2D& context, bool translucent)
{
    Run run(context, translucent);
    const MMPaint& p = run.paint;
    const Fixed* o = p.gradientStopOffsets;
    const Pixel* c = p.gradientStopColors;
    const uint32_t last = p.gradientStopCount - 1;
    Fixed t = wrapAdd(
        fixMul(p.gradientStepY, wrapSub(wrapShl(context.spanRow, 16), p.gradientOriginY)),
        fixMul(p.gradientStepX, wrapSub(wrapShl(context.spanStart >> 16, 16), p.gradientOriginX)));
    uint32_t i = 0;
    const auto step = [&] { t = wrapAdd(t, p.gradientStepX); };
    do {
        while (run.n > 0) {
            for (; run.n > 0 && t <= o[0]; step())
                run.putStop(c[0]);
            for (; run.n > 0 && t >= o[last]; step())
                run.putStop(c[last]);
            while (run.n > 0 && o[0] < t && t < o[last]) {
                while (i + 1 < p.gradientStopCount && o[i + 1] <= t)
                    ++i;
                while (i != 0 && o[i] >= t)
                    --i;
                Segment at(p, i, t);
                auto& v = at.v;
                int32_t e[4];
                for (int k = 0; k < 4; ++k)
                    e[k] = fixMul(fixDiv(p.gradientStepX, at.span), at.d[k]);
                const Coverage R = context.spanCoverageNext;
                const Coverage S = context.spanCoverageStep;
                const int32_t w1 = raised(fixMulSHR(R, wrapAdd(v[3], e[3]), 8));
                const int32_t w2 =
                    raised(fixMulSHR(wrapAdd(R, S), wrapAdd(v[3], wrapMul(2, e[3])), 8));
                int32_t w = raised(fixMulSHR(run.o, v[3], 8));
                for (int k = 0; run.n > 0 && o[i] < t && t <= o[i + 1]; ++k, step()) {
                    run.put(opaque(v), (wrapAdd(w, 0x8000) >> 16) & 0xFF);
                    w = wrapAdd(w1, wrapMul(k, wrapSub(w2, w1)));
                    at.step(e);
                }
            }
        }
    } while (run.startTail());
}

inline void radial(MMContext2D& context, bool translucent)
{
    constexpr Fixed one = 0x10000;
    Run run(context, translucent);
    const MMPaint& p = run.paint;
    const Fixed* o = p.gradientStopOffsets;
    const Pixel* c = p.gradientStopColors;
    const uint32_t last = p.gradientStopCount - 1;
    const Fixed dy = wrapSub(wrapShl(context.spanRow, 16), p.radialCenterY);
    Fixed dx = wrapSub(wrapShl(context.spanStart >> 16, 16), p.radialCenterX);
    const auto dot = [](Fixed ax, Fixed ay, Fixed bx, Fixed by) {
        return wrapAdd(fixMul(ax, bx), fixMul(ay, by));
    };
    const Fixed A = dot(p.radialXToU, p.radialXToV, p.radialXToU, p.radialXToV);
    const Fixed B =
        fixMul(dot(p.radialXToU, p.radialXToV, p.radialYToU, p.radialYToV), wrapMul(2, dy));
    const Fixed Q = dot(p.radialYToU, p.radialYToV, p.radialYToU, p.radialYToV);
    const Fixed xv = fixDiv(wrapNeg(B), wrapMul(2, A));
    Fixed r = 0;
    const auto exact = [&] {
        MMPoint2D uv = {dot(dx, dy, p.radialXToU, p.radialYToU),
                        dot(dx, dy, p.radialXToV, p.radialYToV)};
        r = v2dNorm(&uv);
    };
    bool grows = false; // r is not computed any more
    const auto padTo = [&](Pixel colour, Fixed end) {
        for (; dx <= end && run.n > 0; dx = wrapAdd(dx, one))
            run.putStop(colour);
        if (!grows) exact();
    };
    const auto padOne = [&](bool needed, Pixel colour) {
        if (needed && run.n > 0) padTo(colour, dx);
    };
    Fixed disc = 0;
    const auto root = [&](Fixed k, int side) {
        const Fixed g = fixDiv(dy, k);
        const Fixed h = fixDiv(xv, k);
        disc = wrapSub(fixMul(h, h), fixDiv(wrapSub(fixMul(fixMul(g, g), Q), one), A));
        const Fixed x = wrapAdd(xv, wrapMul(side, fixMul(k, fixSqrt(disc))));
        return wrapAdd(x, 0xFFFF) & ~0xFFFF;
    };
    exact();
    Fixed s = -one, E = 0;
    int32_t m = 0;
    uint32_t i = last > 0 ? last - 1 : 0;
    do {
        while (run.n > 0) {
            if (r >= o[last]) {
                grows = s > 0;
                const Fixed entry = root(o[last], -1);
                padTo(c[last], grows || disc < 0 ? 0x7FFFFFFF : entry);
                grows = false;
                padOne(r >= o[last], c[last]);
                if (dx >= xv) s = one;
            }
            if (r < o[0] && run.n > 0) {
                const int before = run.n;
                padTo(c[0], root(o[0], 1));
                padOne(r >= o[last], c[last]);
                padOne(run.n == before && r < o[0], c[0]);
                s = one;
            }
            while (o[0] <= r && r < o[last] && run.n > 0) {
                while (i != 0 && o[i] >= r)
                    --i;
                while (o[i + 1] <= r)
                    ++i;
                Segment at(p, i, r);
                const bool before = dx < xv;
                const Fixed divisor = wrapAdd(at.span, 0x8000);
                int32_t q[4];
                for (int k = 0; k < 4; ++k)
                    q[k] =
                        before ? wrapAdd(fixDiv(at.d[k], ~divisor), 1) : fixDiv(at.d[k], divisor);
                if (!before) {
                    m = -1;
                    s = one;
                }
                int32_t t = 0;
                // One step of r, or half a one, when it leads nearer to the true radius.
                const auto nearer = [&](int halves) {
                    const int32_t K = wrapAdd(m ^ wrapMul(halves, r), t);
                    const int32_t length = halves == 2 ? one : one / 4;
                    const bool closer = E > 0 || (wrapSub(length, K) >= E && s < 0);
                    if (wrapAdd(r, s) <= 0 || !closer) return false;
                    E = wrapAdd(E, wrapSub(K, length));
                    r = wrapAdd(r, s / 2 * halves);
                    at.step(q, halves == 2 ? 0 : 1);
                    return true;
                };
                bool crossed = false;
                while (!crossed && o[i] <= r && r < o[i + 1] && run.n > 0) {
                    run.put(opaque(at.v), run.gradientWeight(at.v[3]));
                    E = wrapAdd(E, wrapAdd(fixMul(wrapAdd(wrapMul(2, dx), one), A), B));
                    dx = wrapAdd(dx, one);
                    crossed = dx >= xv && m == 0;
                    if (crossed) {
                        s = one;
                        m = -1;
                    }
                    t = m & 1;
                    while (nearer(2)) {
                    }
                    nearer(1);
                }
            }
        }
    } while (run.startTail());
}

// One axis of the texel pointer, stepped by whole texels and a sign-magnitude fraction.
struct Axis {
    Fixed position, step;
    int64_t size, index, whole, sign;
    uint16_t fraction, fractionStep;

    Axis(Fixed start, Fixed s, int64_t n)
        : position(start), step(s), size(n), index(start >> 16), whole(s / 65536),
          sign(s < 0 ? -1 : 1), fraction(static_cast<uint16_t>(s < 0 ? wrapNeg(start) : start)),
          fractionStep(static_cast<uint16_t>(s < 0 ? wrapNeg(s) : s))
    {
    }
    void advance()
    {
        position = wrapAdd(position, step);
        const uint16_t before = fraction;
        fraction = static_cast<uint16_t>(fraction + fractionStep);
        index += whole + (fraction < before ? sign : 0);
    }
    int fractionOf() const { return static_cast<uint16_t>(step < 0 ? -fraction : fraction); }
    int64_t clamp(int64_t last) const
    {
        const int64_t at = position >> 16;
        return at < 0 ? -at : at >= last ? last - at : 0;
    }
};

struct Sampler {
    const Pixel* pixels;
    Axis u, v;

    Sampler(const MMContext2D& c, Fixed x, Fixed y, MMPoint2D p = {})
        : pixels(c.currentPaint.patternImage.pixels),
          u((p = {x, y}, c.currentPaint.patternTransform.transform(&p, &p, 1), p.x),
            c.currentPaint.patternTransform.a, c.currentPaint.patternImage.width),
          v(p.y, c.currentPaint.patternTransform.b, c.currentPaint.patternImage.height)
    {
    }
    Pixel texel(int64_t column, int64_t row) const
    {
        int64_t i = (v.index + row) * u.size + u.index + column;
        const int64_t count = u.size * v.size;
        if (i < 0 && i + u.size >= 0) i += u.size;
        if (i >= count && i - u.size < count) i -= u.size;
        return pixels[std::clamp<int64_t>(i, 0, count - 1)];
    }
    Pixel nearest() const { return texel(u.clamp(u.size - 1), v.clamp(v.size - 1)); }
    static bool between(const Axis& a) { return a.position >= 0 && a.position >> 16 < a.size - 1; }
    Pixel bilinear() const
    {
        const int64_t x0 = u.clamp(u.size - 1), x1 = between(u) ? 1 : x0;
        const int64_t y0 = v.clamp(v.size - 1), y1 = between(v) ? 1 : y0;
        const int fx = u.fractionOf() >> 8, fy = v.fractionOf() >> 8;
        return moved(moved(texel(x0, y0), texel(x1, y0), fx),
                     moved(texel(x0, y1), texel(x1, y1), fx), fy);
    }
    static void cubicTaps(const Axis& a, int64_t (&tap)[4])
    {
        const int64_t p = a.position, one = 0x10000, R = (a.size - 2) * one;
        const int64_t first = -(p >> 16), last = a.size - (p >> 16) - 2;
        for (int i = 0; i < 4; ++i)
            tap[i] = p < (1 - i) * one ? first : p > R + (3 - i) * one ? last : i - 1;
    }
    void cubicSums(int32_t (&sum)[4]) const
    {
        const Fixed one = 0x10000, f = u.fractionOf(), F = one - f, d = 2 * one - f;
        const Fixed g = v.fractionOf(), G = g - one, e = g + one;
        const auto tail = [](Fixed z) {
            return fixMul(fixMul(0x10000 - fixMul(0x2AAA, z), z) - 0x20000, z) + 0x15555;
        };
        const auto cube = [](Fixed z) { return fixMul(0x2AAA, fixMul(fixMul(z, z), z)); };
        const Fixed wx[4] = {cube(F), fixMul(fixMul(-((-f) / 2) - one, f), f) + 0xAAAA,
                             fixMul(fixMul((F >> 1) - one, F), F) + 0xAAAA, tail(d)};
        const Fixed wy[4] = {tail(e), fixMul(fixMul((g >> 1) - one, g), g) + 0xAAAA,
                             fixMul(fixMul(-one - ((G + 1) >> 1), G), G) + 0xAAAA, cube(g)};
        int64_t x[4], y[4];
        cubicTaps(u, x);
        cubicTaps(v, y);
        for (int k = 0; k < 4; ++k)
            for (int j = 0; j < 4; ++j)
                for (int ch = 0; ch < 4; ++ch)
                    sum[ch] += fixMul(byteOf(texel(x[j], y[k]), ch) << 16, fixMul(wx[j], wy[k]));
    }
};

inline int roundedWeight(int32_t q)
{
    const int w = wrapAdd(q, 0x8000) >> 16;
    return (q >= 0x007F8000 ? w + 1 : w) & 0xFF;
}

inline void pattern(MMContext2D& context, bool translucent, int filter)
{
    Run run(context, translucent);
    const Fixed x = filter == 0 ? (context.spanStart & ~0xFFFF) | 0x8000 : context.spanStart;
    const Fixed y = wrapShl(context.spanRow, 16) | (filter == 0 ? 0x8000 : 0);
    Sampler sampler(context, x, y);
    do {
        while (run.n > 0) {
            if (filter == 2) {
                int32_t sum[4] = {};
                sampler.cubicSums(sum);
                run.put(opaque(sum), roundedWeight(fixMulSHR(sum[3], run.o, 8)));
            } else {
                const Pixel p = filter == 0 ? sampler.nearest() : sampler.bilinear();
                const uint32_t product = (p >> 24) * static_cast<uint32_t>(run.o);
                run.put(p, roundedWeight(static_cast<int32_t>(product >> 8)));
            }
            sampler.u.advance();
            sampler.v.advance();
        }
    } while (run.startTail());
}

} // namespace PaintModel
