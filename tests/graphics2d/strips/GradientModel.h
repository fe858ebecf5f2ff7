// SPDX-License-Identifier: MIT
// Plain models of the classic gradients' strip fillers, one pixel at a time.
#pragma once

#include "PaintModel.h"

#include "math/Vector2D.h"

#include <cstdlib>

namespace PaintModel {

using KAVO::Fixed;
using KAVO::wrapAdd;
using KAVO::wrapNeg;
using KAVO::wrapSub;

inline int raised(int w)
{
    return ((w & 0xFF) >= 128 ? w + 1 : w) & 0xFF;
}

// The colours between stops i and i + 1, from the parameter t on.
struct Blend {
    int32_t value[4], difference[4], step[4], halfStep[4];

    Blend(const MMPaint& g, uint32_t i, Fixed t)
    {
        const Fixed from = g.gradientStopOffsets[i], to = g.gradientStopOffsets[i + 1];
        const Fixed f = fixDiv(wrapSub(t, from), wrapSub(to, from));
        for (int k = 0; k < 4; ++k) {
            const int32_t start = byteOf(g.gradientStopColors[i], k) << 16;
            difference[k] = (byteOf(g.gradientStopColors[i + 1], k) << 16) - start;
            value[k] = wrapAdd(fixMul(f, difference[k]), start);
        }
    }
    void add(const int32_t (&change)[4])
    {
        for (int k = 0; k < 4; ++k)
            value[k] = wrapAdd(value[k], change[k]);
    }
};

struct Gradient {
    Run run;
    const MMPaint& g = run.paint;
    const Fixed* const o = g.gradientStopOffsets;
    const KAVO::Pixel* const c = g.gradientStopColors;
    const uint32_t last = g.gradientStopCount - 1;
    uint32_t i = 0;

    Gradient(MMContext2D& context, bool translucent) : run(context, translucent) {}

    void pad(KAVO::Pixel colour)
    {
        run.put(colour, raised(fixMulSHR(run.o, byteOf(colour, 3) << 16, 24)));
    }
};

inline void linear(MMContext2D& context, bool translucent)
{
    Gradient at(context, translucent);
    const MMPaint& g = at.g;
    const Fixed* const o = at.o;
    const uint32_t last = at.last;
    uint32_t& i = at.i;
    int& n = at.run.n;
    const Fixed x = wrapSub(context.spanStart & ~0xFFFF, g.gradientOriginX);
    const Fixed y = wrapSub(KAVO::wrapShl(context.spanRow, 16), g.gradientOriginY);
    Fixed t = wrapAdd(fixMul(g.gradientStepY, y), fixMul(g.gradientStepX, x));
    const auto pad = [&](uint32_t k) {
        at.pad(at.c[k]);
        t = wrapAdd(t, g.gradientStepX);
    };
    const auto adjusted = [](int32_t w) { return w >= 0x800000 ? wrapAdd(w, 0x10000) : w; };
    do {
        while (n > 0) {
            while (n > 0 && t <= o[0])
                pad(0);
            while (n > 0 && t >= o[last])
                pad(last);
            while (n > 0 && o[0] < t && t < o[last]) {
                while (i + 1 < g.gradientStopCount && o[i + 1] <= t)
                    ++i;
                while (i != 0 && o[i] >= t)
                    --i;
                Blend blend(g, i, t);
                const Fixed q = fixDiv(g.gradientStepX, wrapSub(o[i + 1], o[i]));
                for (int k = 0; k < 4; ++k)
                    blend.step[k] = fixMul(q, blend.difference[k]);
                const int32_t R = context.spanCoverageNext, S = context.spanCoverageStep;
                const int32_t a1 = wrapAdd(blend.value[3], blend.step[3]);
                const int32_t a2 = wrapAdd(a1, blend.step[3]);
                const int32_t second = adjusted(fixMulSHR(R, a1, 8));
                const int32_t delta = wrapSub(adjusted(fixMulSHR(wrapAdd(R, S), a2, 8)), second);
                int32_t w = adjusted(fixMulSHR(at.run.o, blend.value[3], 8)), next = second;
                while (n > 0 && o[i] < t && t <= o[i + 1]) {
                    at.run.put(opaque(blend.value), (wrapAdd(w, 0x8000) >> 16) & 0xFF);
                    w = next;
                    next = wrapAdd(next, delta);
                    t = wrapAdd(t, g.gradientStepX);
                    blend.add(blend.step);
                }
            }
        }
    } while (at.run.startTail());
}

struct RadialModel : Gradient {
    const Fixed dy = wrapSub(KAVO::wrapShl(run.context.spanRow, 16), g.radialCenterY);
    Fixed dx = wrapSub(run.context.spanStart & ~0xFFFF, g.radialCenterX);
    const Fixed A = wrapAdd(fixMul(g.radialXToU, g.radialXToU), fixMul(g.radialXToV, g.radialXToV));
    const Fixed B =
        fixMul(wrapAdd(fixMul(g.radialXToU, g.radialYToU), fixMul(g.radialXToV, g.radialYToV)),
               wrapAdd(dy, dy));
    const Fixed Q = wrapAdd(fixMul(g.radialYToU, g.radialYToU), fixMul(g.radialYToV, g.radialYToV));
    const Fixed xv = fixDiv(wrapNeg(B), wrapAdd(A, A));
    Fixed r = exactR(), s = -0x10000, E = 0;
    int32_t m = 0;

    RadialModel(MMContext2D& context, bool translucent) : Gradient(context, translucent)
    {
        i = last - 1;
    }
    Fixed exactR() const
    {
        const MMPoint2D p = {wrapAdd(fixMul(dx, g.radialXToU), fixMul(dy, g.radialYToU)),
                             wrapAdd(fixMul(dx, g.radialXToV), fixMul(dy, g.radialYToV))};
        return v2dNorm(&p);
    }
    Fixed discriminant(Fixed k) const
    {
        const Fixed q = fixDiv(dy, k), h = fixDiv(xv, k);
        const Fixed c2 = fixDiv(wrapSub(fixMul(fixMul(q, q), Q), 0x10000), A);
        return wrapSub(fixMul(h, h), c2);
    }
    Fixed root(Fixed k, int side) const
    {
        const Fixed half = fixMul(k, fixSqrt(discriminant(k)));
        return wrapAdd(side < 0 ? wrapSub(xv, half) : wrapAdd(xv, half), 0xFFFF) & ~0xFFFF;
    }
    void padOne(KAVO::Pixel colour)
    {
        pad(colour);
        dx = wrapAdd(dx, 0x10000);
    }

    void outside()
    {
        if (s > 0) {
            while (run.n > 0)
                padOne(c[last]);
            return;
        }
        const Fixed entry = discriminant(o[last]) < 0 ? 0x7FFFFFFF : root(o[last], -1);
        while (dx <= entry && run.n > 0)
            padOne(c[last]);
        r = exactR();
        if (r >= o[last] && run.n > 0) {
            padOne(c[last]);
            r = exactR();
        }
        if (dx >= xv) s = 0x10000;
    }
    void inside()
    {
        const Fixed exit = root(o[0], 1);
        const bool late = dx > exit;
        while (dx <= exit && run.n > 0)
            padOne(c[0]);
        r = exactR();
        if (r >= o[last] && run.n > 0) {
            padOne(c[last]);
            r = exactR();
        }
        if (late && r < o[0]) { // or it would not go on
            padOne(c[0]);
            r = exactR();
        }
        s = 0x10000;
    }
    void ramp()
    {
        while (i != 0 && o[i] >= r)
            --i;
        while (i < last && o[i + 1] <= r)
            ++i;
        Blend blend(g, i, r);
        const Fixed half = wrapAdd(wrapSub(o[i + 1], o[i]), 0x8000);
        const bool falling = dx < xv;
        if (!falling) {
            m = -1;
            s = 0x10000;
        }
        for (int k = 0; k < 4; ++k) {
            blend.step[k] = falling ? wrapAdd(fixDiv(blend.difference[k], ~half), 1)
                                    : fixDiv(blend.difference[k], half);
            blend.halfStep[k] = blend.step[k] >> 1;
        }
        bool crossed = false;
        while (o[i] <= r && r < o[i + 1] && run.n > 0 && !crossed) {
            run.put(opaque(blend.value), raised(fixMulSHR(run.o, blend.value[3], 24)));
            E = wrapAdd(E, wrapAdd(fixMul(wrapAdd(wrapAdd(dx, dx), 0x10000), A), B));
            dx = wrapAdd(dx, 0x10000);
            crossed = dx >= xv && m == 0;
            if (crossed) {
                s = 0x10000;
                m = -1;
            }
            const int32_t t = m & 1;
            const bool F = s < 0;
            while (wrapAdd(r, s) > 0) {
                const int32_t K = wrapAdd(m ^ wrapAdd(r, r), t);
                if (!(E > 0 || (wrapSub(0x10000, K) >= E && F))) break;
                r = wrapAdd(r, s);
                E = wrapAdd(E, wrapSub(K, 0x10000));
                blend.add(blend.step);
            }
            const int32_t K = wrapAdd(r ^ m, t);
            if (wrapAdd(r, s) > 0 && (E > 0 || (wrapSub(0x4000, K) >= E && F))) {
                E = wrapAdd(E, wrapSub(K, 0x4000));
                r = wrapAdd(r, s >> 1);
                blend.add(blend.halfStep);
            }
        }
    }
};

inline void radial(MMContext2D& context, bool translucent)
{
    RadialModel at(context, translucent);
    do {
        while (at.run.n > 0) {
            if (at.r >= at.o[at.last]) at.outside();
            if (at.r < at.o[0] && at.run.n > 0) at.inside();
            while (at.o[0] <= at.r && at.r < at.o[at.last] && at.run.n > 0)
                at.ramp();
        }
    } while (at.run.startTail());
}

} // namespace PaintModel
