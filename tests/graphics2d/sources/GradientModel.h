// SPDX-License-Identifier: MIT
// Gradients in double precision: from the definition, by the coordinates that a transform gives.
#pragma once

#include "graphics2d/sources/MMGradientSource.h"

#include <array>
#include <cmath>
#include <complex>
#include <optional>
#include <vector>

namespace model {

using Point = std::complex<double>;

constexpr double ofFixed(KAVO::Fixed v)
{
    return v / 65536.0;
}

inline Point ofPoint(MMPoint2D p)
{
    return {ofFixed(p.x), ofFixed(p.y)};
}

// Where the transform takes p to the device point.
inline Point inverse(const Matrix2D& m, Point device)
{
    const double a = m.a, b = m.b, c = m.c, d = m.d;
    const double x = device.real() - ofFixed(m.e), y = device.imag() - ofFixed(m.f);
    const double determinant = (a * d - b * c) / 65536;
    return {(d * x - c * y) / determinant, (a * y - b * x) / determinant};
}

inline double linearParameter(Point p, Point start, Point end)
{
    const Point way = end - start;
    return std::real((p - start) * std::conj(way)) / std::norm(way);
}

// The greatest t whose circle goes through p.
inline std::optional<double> radialParameter(Point p, Point start, double startRadius, Point end,
                                             double endRadius)
{
    const Point way = end - start;
    const double growth = endRadius - startRadius;
    const double a = std::norm(way) - growth * growth;
    const double b = std::real((p - start) * std::conj(way)) + startRadius * growth;
    const double c = std::norm(p - start) - startRadius * startRadius;
    std::array<double, 2> roots;
    if (a == 0) {
        if (b == 0) return {};
        roots[0] = roots[1] = c / (2 * b);
    } else {
        if (b * b - a * c < 0) return {};
        // Without cancellation.
        const double far = b + std::copysign(std::sqrt(b * b - a * c), b);
        roots[0] = far / a;
        roots[1] = far == 0 ? far / a : c / far;
    }
    std::optional<double> best;
    for (const double t : roots)
        if (startRadius + t * growth >= 0 && (!best || t > *best)) best = t;
    return best;
}

// start and end in degrees.
inline double conicParameter(Point p, Point centre, double start, double end)
{
    const double angle = std::arg(p - centre) * 180 / M_PI - start;
    const double turns = (end < start ? -angle : angle) / 360;
    return (turns - std::floor(turns)) * 360 / std::abs(end - start);
}

inline double spread(double t, KAVO::Graphics2D::MMSpread spread)
{
    using namespace KAVO::Graphics2D;
    if (spread == kSpreadRepeat) return t - std::floor(t);
    if (spread == kSpreadReflect) {
        const double within = t / 2 - std::floor(t / 2);
        return within <= 0.5 ? 2 * within : 2 - 2 * within;
    }
    return t;
}

// Premultiplied channels of the ramp from blue to alpha.
using Colour = std::array<double, 4>;

inline Colour rampColour(const KAVO::Graphics2D::GradientStops& stops, double t)
{
    uint32_t i = 0;
    while (i < stops.count && ofFixed(stops.offsets[i]) <= t)
        ++i;
    const uint32_t from = i == 0 ? 0 : i - 1, to = i == stops.count ? from : i;
    double share = 0;
    if (from != to)
        share =
            (t - ofFixed(stops.offsets[from])) / ofFixed(stops.offsets[to] - stops.offsets[from]);
    Colour colour;
    for (size_t k = 4; k-- > 0;) { // the alpha first
        const double a = stops.colours[from] >> (8 * k) & 255,
                     b = stops.colours[to] >> (8 * k) & 255;
        colour[k] = (a + (b - a) * share) * (k < 3 ? colour[3] / 255 : 1);
    }
    return colour;
}

} // namespace model
