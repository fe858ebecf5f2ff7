// A plain model of strokes in double precision: the union of the ideal pieces of a stroke, each
// mapped to the device and cut with horizontal lines.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "tests/support/PolygonModel.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <utility>
#include <vector>

namespace model {

using Vector = std::complex<double>;

inline double dot(Vector a, Vector b)
{
    return (std::conj(a) * b).real();
}

inline double cross(Vector a, Vector b)
{
    return (std::conj(a) * b).imag();
}

// The pieces of the stroke that a context draws of a line in user space.
class Stroke {
public:
    Stroke(const KAVO::Graphics2D::MMContext2D& context, std::vector<Vector> line, bool closed)
        : m_(context.transform), halfWidth_(toDouble(context.strokeHalfWidth))
    {
        using namespace KAVO::Graphics2D;
        const std::size_t n = line.size(), edges = closed ? n : n - 1;
        const auto direction = [&](std::size_t i) {
            const Vector v = line[(i + 1) % n] - line[i % n];
            return v / std::abs(v);
        };
        for (std::size_t i = 0; i < edges; ++i) {
            Vector from = line[i], to = line[(i + 1) % n];
            const Vector along = direction(i) * halfWidth_;
            if (!closed && context.capStyle == kCapSquare && i == 0) from -= along;
            if (!closed && context.capStyle == kCapSquare && i + 1 == edges) to += along;
            const Vector side = along * Vector(0, 1);
            addPolygon({from - side, to - side, to + side, from + side});
        }
        for (std::size_t i = closed ? 0 : 1; i < (closed ? n : n - 1); ++i)
            addJoin(context, line[i], direction(i + n - 1), direction(i));
        if (!closed && context.capStyle == kCapRound) {
            discs_.push_back(line.front());
            discs_.push_back(line.back());
        }
    }

    // The share of every pixel inside, 0 to 1; pixel (c, r) is the unit square around (c, r).
    // Lines at fine steps in y, exact in x.
    std::vector<double> areas(int width, int height, int lines = 128) const
    {
        std::vector<double> area;
        for (int row = 0; row < height; ++row) {
            std::vector<double> partial(std::size_t(width) + 1), whole(std::size_t(width) + 2);
            for (int line = 0; line < lines; ++line) {
                double done = 0;
                for (auto [left, right] : spans(row - 0.5 + (line + 0.5) / lines)) {
                    left = std::clamp(left + 0.5, done, double(width));
                    right = std::clamp(right + 0.5, left, double(width));
                    done = right;
                    // All from the left column on, less what lies left of the ends.
                    const std::size_t first = std::size_t(left), last = std::size_t(right);
                    whole[first] += 1;
                    whole[last] -= 1;
                    partial[first] -= left - double(first);
                    partial[last] += right - double(last);
                }
            }
            double inside = 0;
            for (std::size_t c = 0; c < std::size_t(width); ++c) {
                inside += whole[c];
                area.push_back((inside + partial[c]) / lines);
            }
        }
        return area;
    }

private:
    struct Piece {
        std::vector<Vector> outline; // convex, device space
        double top, bottom;
    };

    Vector linear(Vector v) const
    {
        return {toDouble(m_.a) * v.real() + toDouble(m_.c) * v.imag(),
                toDouble(m_.b) * v.real() + toDouble(m_.d) * v.imag()};
    }
    Vector mapped(Vector v) const { return linear(v) + Vector(toDouble(m_.e), toDouble(m_.f)); }

    void addPolygon(std::vector<Vector> polygon)
    {
        Piece piece = {{}, 1e9, -1e9};
        for (Vector v : polygon) {
            v = mapped(v);
            piece.outline.push_back(v);
            piece.top = std::min(piece.top, v.imag());
            piece.bottom = std::max(piece.bottom, v.imag());
        }
        pieces_.push_back(piece);
    }

    void addJoin(const KAVO::Graphics2D::MMContext2D& context, Vector p, Vector d1, Vector d2)
    {
        using namespace KAVO::Graphics2D;
        const Vector out = Vector(0, cross(d1, d2) > 0 ? -1 : 1) * halfWidth_;
        const double half = std::abs(std::arg(d2 / d1)) / 2;
        std::vector<Vector> wedge{p, p + d1 * out};
        // Smooth turns are never beveled.
        if (context.joinStyle == kJoinRound ||
            (context.joinStyle == kJoinBevel && half * 2 < 15 * M_PI / 180)) {
            const int steps = 1 + int(half * 80);
            for (int i = 1; i < steps; ++i)
                wedge.push_back(
                    p +
                    d1 * out * std::polar(1.0, (cross(d1, d2) > 0 ? 2 : -2) * half * i / steps));
        } else if (context.joinStyle == kJoinMiter &&
                   1 / std::cos(half) <= toDouble(context.miterLimit)) {
            const Vector middle = (d1 + d2) * out;
            wedge.push_back(p + middle / std::abs(middle) * halfWidth_ / std::cos(half));
        }
        wedge.push_back(p + d2 * out);
        addPolygon(wedge);
    }

    // Where the line at y is inside any piece, in order of their left ends.
    std::vector<std::pair<double, double>> spans(double y) const
    {
        std::vector<std::pair<double, double>> result;
        for (const auto& [polygon, top, bottom] : pieces_) {
            if (y < top || y > bottom) continue;
            double left = 1e9, right = -1e9;
            for (std::size_t i = 0; i < polygon.size(); ++i) {
                const Vector a = polygon[i], b = polygon[(i + 1) % polygon.size()];
                if ((a.imag() > y) == (b.imag() > y)) continue;
                const double x = a.real() + (b - a).real() * (y - a.imag()) / (b - a).imag();
                left = std::min(left, x);
                right = std::max(right, x);
            }
            if (left < right) result.emplace_back(left, right);
        }
        for (Vector centre : discs_) {
            // b cos t + d sin t reaches y at two angles t.
            const Vector c = mapped(centre);
            const Vector rise(toDouble(m_.b), toDouble(m_.d));
            const double share = (y - c.imag()) / halfWidth_ / std::abs(rise);
            if (std::abs(share) >= 1) continue;
            double x[2];
            for (int i = 0; i < 2; ++i)
                x[i] = (c + linear(std::polar(halfWidth_, std::arg(rise) + (i == 0 ? 1 : -1) *
                                                                               std::acos(share))))
                           .real();
            result.emplace_back(std::min(x[0], x[1]), std::max(x[0], x[1]));
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    Matrix2D m_;
    double halfWidth_;
    std::vector<Piece> pieces_;
    std::vector<Vector> discs_; // of the half width, user space
};

} // namespace model
