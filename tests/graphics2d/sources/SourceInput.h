// SPDX-License-Identifier: MIT
// Random input for sources, and asking them for pixels as the fillers do.
#pragma once

#include "graphics2d/MMPaint.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <vector>

struct Random {
    std::mt19937 engine;

    explicit Random(uint32_t seed) : engine(seed) {}
    double between(double low, double high) { return low + engine() / 4294967296.0 * (high - low); }
    double ratio(double low, double high) { return low * std::pow(high / low, between(0, 1)); }
    int whole(int low, int high) { return low + static_cast<int>(engine() % (high - low + 1u)); }
    std::complex<double> direction() { return std::polar(1.0, between(-M_PI, M_PI)); }

    // Of any size, and the extremes.
    int32_t any()
    {
        const int kind = whole(0, 5);
        if (kind == 0) return whole(-3, 3);
        if (kind == 1) return whole(0, 1) ? INT32_MAX : INT32_MIN;
        if (kind == 2) return whole(-9, 9) * KAVO::kFixedOne;
        return static_cast<int32_t>(engine()) >> whole(0, 31);
    }
};

inline std::vector<KAVO::Pixel> rowOf(const MMPaint& paint, int y, int x, int count)
{
    std::vector<KAVO::Pixel> pixels(static_cast<size_t>(count) + 1, 0x12345678);
    paint.sourceFunction(paint.sourceState, y, x, count, pixels.data());
    EXPECT_EQ(pixels.back(), 0x12345678u) << "written past the end";
    pixels.pop_back();
    return pixels;
}

// That no pixel changes when a row is asked for in pieces that begin anywhere.
inline void expectSameInPieces(const MMPaint& paint, int y, int x, Random& random,
                               const std::string& what)
{
    const std::vector<KAVO::Pixel> whole = rowOf(paint, y, x, 128);
    for (int first = 0; first < 128;) {
        const int count = std::min(random.whole(1, 20), 128 - first);
        const std::vector<KAVO::Pixel> part = rowOf(paint, y, x + first, count);
        ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + first))
            << what << " row " << y << " column " << x << " from " << first;
        first += count;
    }
}

inline bool isPremultiplied(KAVO::Pixel pixel)
{
    for (int shift = 0; shift < 24; shift += 8)
        if ((pixel >> shift & 255) > pixel >> 24) return false;
    return true;
}

inline std::string text(const Matrix2D& m)
{
    std::string result = "matrix";
    for (const KAVO::Fixed v : {m.a, m.b, m.c, m.d, m.e, m.f})
        result += " " + std::to_string(v);
    return result;
}
