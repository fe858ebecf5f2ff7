// SPDX-License-Identifier: MIT
// Plain models of strip fillers: one pixel at a time, every quantity stepped or computed as it is
// defined, nothing shared with the library but the 16.16 functions.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "math/FixedMath.h"

#include <algorithm>

namespace PaintModel {

using KAVO::Graphics2D::MMContext2D;

inline int byteOf(KAVO::Pixel p, int k)
{
    return (p >> (8 * k)) & 0xFF;
}

inline KAVO::Pixel moved(KAVO::Pixel from, KAVO::Pixel to, int w)
{
    KAVO::Pixel p = 0;
    for (int k = 0; k < 4; ++k) {
        const int d = byteOf(to, k) - byteOf(from, k);
        p |= static_cast<KAVO::Pixel>(byteOf(from, k) + ((d * w + (d > 128 ? w : 0)) >> 8))
             << 8 * k;
    }
    return p;
}

// What all models have: the pixel to draw next, how many are left, and the opacity.
struct Run {
    MMContext2D& context;
    const MMPaint& paint;
    bool translucent;
    KAVO::Pixel* pixel;
    int n;
    KAVO::Coverage o;

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
    void put(KAVO::Pixel source, int w)
    {
        const MMPixmap& t = context.target;
        const KAVO::Pixel* end = t.pixels + (t.height - 1) * t.rowBytes / 4 + t.width;
        *pixel = translucent ? moved(pixel[pixel + 1 == end ? 0 : 1], source, w) : source;
        if (translucent) {
            o = context.spanCoverageNext;
            context.spanCoverageNext = KAVO::wrapAdd(o, context.spanCoverageStep);
        }
        ++pixel;
        --n;
    }
};

// Channels 0 to 3 are blue, green, red, alpha in 8.16.
inline KAVO::Pixel opaque(const int32_t (&v)[4])
{
    KAVO::Pixel p = 0xFF000000;
    for (int k = 0; k < 3; ++k)
        p |= static_cast<KAVO::Pixel>((KAVO::wrapAdd(v[k], 0x8000) >> 16) & 0xFF) << (8 * k);
    return p;
}

// One colour. Its weight is the coverage, rounded; the tail's coverage stays as it is.
inline void solid(MMContext2D& context, bool translucent)
{
    Run run(context, translucent);
    const KAVO::Pixel colour = run.paint.paintColour;
    const auto draw = [&](KAVO::Pixel& pixel, KAVO::Coverage coverage) {
        pixel = translucent ? moved(pixel, colour, (coverage + 0x8000) >> 16 & 0xFF) : colour;
    };
    for (; run.n > 0; --run.n) {
        draw(*run.pixel++, run.o);
        run.o = context.spanCoverageNext;
        if (translucent && run.n > 1) context.spanCoverageNext += context.spanCoverageStep;
    }
    if (translucent && context.spanTailCoverage > 0)
        draw(context.spanPixels[context.spanEnd >> 16], context.spanTailCoverage);
}

inline void exclusiveOr(MMContext2D& context, bool)
{
    for (Run run(context, false); run.n > 0; --run.n)
        *run.pixel++ ^= run.paint.paintColour;
}

// Colour and ground, each byte with its highest bit added, by the opacity.
inline void faded(MMContext2D& context, bool)
{
    for (Run run(context, false); run.n > 0; --run.n, ++run.pixel) {
        KAVO::Pixel sum = 0;
        for (int k = 0; k < 4; ++k) {
            const int to = byteOf(run.paint.paintColour, k), from = byteOf(*run.pixel, k);
            const int w = run.paint.paintOpacity;
            const int byte = ((to + (to >> 7)) * w >> 8) + ((from + (from >> 7)) * (255 - w) >> 8);
            sum |= static_cast<KAVO::Pixel>(byte) << 8 * k;
        }
        *run.pixel = sum;
    }
}

// A gradient of one stop.
inline void flat(MMContext2D& context, bool translucent)
{
    Run run(context, translucent);
    const KAVO::Pixel colour = run.paint.gradientStopColors[0];
    do {
        while (run.n > 0) {
            const int w = fixMulSHR(run.o, byteOf(colour, 3) << 16, 24) & 0xFF;
            run.put(colour, (w >= 128 ? w + 1 : w) & 0xFF);
        }
    } while (run.startTail());
}

// One axis of the texel pointer, stepped by whole texels and a sign-magnitude fraction.
struct Axis {
    KAVO::Fixed position, step;
    int64_t size, index, whole, sign;
    uint16_t fraction, fractionStep;

    Axis(KAVO::Fixed start, KAVO::Fixed s, int64_t n)
        : position(start), step(s), size(n), index(start >> 16), whole(s / 65536),
          sign(s < 0 ? -1 : 1),
          fraction(static_cast<uint16_t>(s < 0 ? KAVO::wrapNeg(start) : start)),
          fractionStep(static_cast<uint16_t>(s < 0 ? KAVO::wrapNeg(s) : s))
    {
    }
    void advance()
    {
        position = KAVO::wrapAdd(position, step);
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
    const KAVO::Pixel* pixels;
    Axis u, v;

    Sampler(const MMContext2D& c, KAVO::Fixed x, KAVO::Fixed y, MMPoint2D p = {})
        : pixels(c.currentPaint.patternImage.pixels),
          u((p = {x, y}, c.currentPaint.patternTransform.transform(&p, &p, 1), p.x),
            c.currentPaint.patternTransform.a, c.currentPaint.patternImage.width),
          v(p.y, c.currentPaint.patternTransform.b, c.currentPaint.patternImage.height)
    {
    }
    KAVO::Pixel texel(int64_t column, int64_t row) const
    {
        int64_t i = (v.index + row) * u.size + u.index + column;
        const int64_t count = u.size * v.size;
        if (i < 0 && i + u.size >= 0) i += u.size;
        if (i >= count && i - u.size < count) i -= u.size;
        return pixels[std::clamp<int64_t>(i, 0, count - 1)];
    }
    KAVO::Pixel nearest() const { return texel(u.clamp(u.size - 1), v.clamp(v.size - 1)); }
    static bool between(const Axis& a) { return a.position >= 0 && a.position >> 16 < a.size - 1; }
    KAVO::Pixel bilinear() const
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
        const KAVO::Fixed one = 0x10000, f = u.fractionOf(), F = one - f, d = 2 * one - f;
        const KAVO::Fixed g = v.fractionOf(), G = g - one, e = g + one;
        const auto tail = [](KAVO::Fixed z) {
            return fixMul(fixMul(0x10000 - fixMul(0x2AAA, z), z) - 0x20000, z) + 0x15555;
        };
        const auto cube = [](KAVO::Fixed z) { return fixMul(0x2AAA, fixMul(fixMul(z, z), z)); };
        const KAVO::Fixed wx[4] = {cube(F), fixMul(fixMul(-((-f) / 2) - one, f), f) + 0xAAAA,
                                   fixMul(fixMul((F >> 1) - one, F), F) + 0xAAAA, tail(d)};
        const KAVO::Fixed wy[4] = {tail(e), fixMul(fixMul((g >> 1) - one, g), g) + 0xAAAA,
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
    const int w = KAVO::wrapAdd(q, 0x8000) >> 16;
    return (q >= 0x007F8000 ? w + 1 : w) & 0xFF;
}

template <int filter>
void pattern(MMContext2D& context, bool translucent)
{
    Run run(context, translucent);
    const KAVO::Fixed x = filter == 0 ? (context.spanStart & ~0xFFFF) | 0x8000 : context.spanStart;
    const KAVO::Fixed y = KAVO::wrapShl(context.spanRow, 16) | (filter == 0 ? 0x8000 : 0);
    Sampler sampler(context, x, y);
    do {
        while (run.n > 0) {
            if (filter == 2) {
                int32_t sum[4] = {};
                sampler.cubicSums(sum);
                run.put(opaque(sum), roundedWeight(fixMulSHR(sum[3], run.o, 8)));
            } else {
                const KAVO::Pixel p = filter == 0 ? sampler.nearest() : sampler.bilinear();
                const uint32_t product = (p >> 24) * static_cast<uint32_t>(run.o);
                run.put(p, roundedWeight(static_cast<int32_t>(product >> 8)));
            }
            sampler.u.advance();
            sampler.v.advance();
        }
    } while (run.startTail());
}

} // namespace PaintModel
