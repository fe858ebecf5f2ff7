// SPDX-License-Identifier: MIT
// A plain model of filled shapes in double precision, against which fills and strokes are held.
#pragma once

#include "math/MMPoint2D.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <initializer_list>
#include <numeric>
#include <utility>
#include <vector>

namespace model {

using Polygon = std::vector<MMPoint2D>;
using Vector = std::complex<double>;

inline double cross(Vector a, Vector b)
{
    return (std::conj(a) * b).imag();
}

inline KAVO::Fixed toFixed(double v)
{
    return static_cast<KAVO::Fixed>(std::lround(v * 65536));
}

inline double toDouble(KAVO::Fixed v)
{
    return v / 65536.0;
}

inline void add(Polygon& polygon, double x, double y)
{
    polygon.push_back({toFixed(x), toFixed(y)});
}

inline Polygon points(std::initializer_list<std::pair<double, double>> list)
{
    Polygon polygon;
    for (const auto& [x, y] : list)
        add(polygon, x, y);
    return polygon;
}

struct Edge {
    Vector top, bottom;
    int winding;
};
using Edges = std::vector<Edge>;

inline void addEdge(Edges& edges, Vector from, Vector to, int winding = 1)
{
    if (from.imag() < to.imag()) edges.push_back({from, to, winding});
    if (from.imag() > to.imag()) edges.push_back({to, from, -winding});
}

inline Edges edgesOf(const Polygon& polygon)
{
    Edges edges;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const MMPoint2D a = polygon[i], b = polygon[(i + 1) % polygon.size()];
        addEdge(edges, {toDouble(a.x), toDouble(a.y)}, {toDouble(b.x), toDouble(b.y)});
    }
    return edges;
}

using Spans = std::vector<std::pair<double, double>>;

// What of the horizontal line at y is inside, from left to right. An edge owns its lower end and
// not its upper one.
inline Spans spans(const Edges& edges, double y, bool evenOdd)
{
    std::vector<std::pair<double, int>> crossings;
    for (const auto& [top, bottom, winding] : edges) {
        if (y <= top.imag() || y > bottom.imag()) continue;
        const double share = (y - top.imag()) / (bottom.imag() - top.imag());
        crossings.emplace_back(top.real() + share * (bottom.real() - top.real()), winding);
    }
    std::sort(crossings.begin(), crossings.end());
    Spans result;
    bool wasInside = false;
    int sum = 0;
    for (const auto& [x, winding] : crossings) {
        sum += winding;
        const bool isInside = evenOdd ? sum % 2 != 0 : sum != 0;
        if (isInside && !wasInside) result.emplace_back(x, x);
        if (!isInside && wasInside) result.back().second = x;
        wasInside = isInside;
    }
    return result;
}

// The share of every pixel inside, 0 to 1. Pixel (c, r) is the unit square around the point (c, r).
// Exact along each of the given number of lines through a row.
inline std::vector<double> areas(const Edges& all, int width, int height, bool evenOdd, int lines)
{
    std::vector<double> result;
    for (int row = 0; row < height; ++row) {
        Edges edges;
        std::copy_if(all.begin(), all.end(), std::back_inserter(edges), [row](const Edge& edge) {
            return edge.top.imag() < row + 0.5 && edge.bottom.imag() > row - 0.5;
        });
        std::vector<double> change(std::size_t(width) + 2); // from each column to the next
        const auto addAllRightOf = [&](double x, double weight) {
            x = std::clamp(x + 0.5, 0.0, double(width));
            const std::size_t column = std::size_t(x);
            change[column] += weight * (double(column) + 1 - x);
            change[column + 1] += weight * (x - double(column));
        };
        for (int line = 0; line < lines; ++line) {
            for (const auto& [left, right] :
                 spans(edges, row - 0.5 + (line + 0.5) / lines, evenOdd)) {
                addAllRightOf(left, 1.0 / lines);
                addAllRightOf(right, -1.0 / lines);
            }
        }
        std::partial_sum(change.begin(), change.end() - 2, std::back_inserter(result));
    }
    return result;
}

} // namespace model
