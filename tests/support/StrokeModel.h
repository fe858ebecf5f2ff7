// SPDX-License-Identifier: MIT
// A plain model of strokes in double precision: the union of a rectangle for each segment and the
// pieces of joins and caps, each mapped to the device.
#pragma once

#include "graphics2d/MMContext2D.h"
#include "tests/support/PolygonModel.h"

namespace model {

// The pieces' edges, to be filled by the non-zero rule.
class StrokeModel {
public:
    StrokeModel(const KAVO::Graphics2D::MMContext2D& context, const std::vector<Vector>& line,
                bool closed)
        : context_(context), halfWidth_(toDouble(context.strokeHalfWidth))
    {
        using namespace KAVO::Graphics2D;
        const std::size_t n = line.size(), segments = closed ? n : n - 1;
        const auto direction = [&](std::size_t i) {
            const Vector v = line[(i + 1) % n] - line[i % n];
            return v / std::abs(v);
        };
        for (std::size_t i = 0; i < segments; ++i) {
            Vector from = line[i], to = line[(i + 1) % n];
            const Vector along = direction(i) * halfWidth_, side = along * Vector(0, 1);
            if (!closed && context.capStyle == kCapSquare && i == 0) from -= along;
            if (!closed && context.capStyle == kCapSquare && i + 1 == segments) to += along;
            addPiece({from - side, to - side, to + side, from + side});
        }
        for (std::size_t i = closed ? 0 : 1; i < segments; ++i)
            addJoin(line[i], direction(i + n - 1), direction(i));
        if (!closed && context.capStyle == kCapRound) {
            addDisc(line.front());
            addDisc(line.back());
        }
    }

    const Edges& edges() const { return edges_; }

private:
    void addPiece(std::vector<Vector> corners)
    {
        const Matrix2D& m = context_.transform;
        for (Vector& v : corners)
            v = {toDouble(m.a) * v.real() + toDouble(m.c) * v.imag() + toDouble(m.e),
                 toDouble(m.b) * v.real() + toDouble(m.d) * v.imag() + toDouble(m.f)};
        double area = 0;
        for (std::size_t i = 2; i < corners.size(); ++i)
            area += cross(corners[i - 1] - corners[0], corners[i] - corners[0]);
        for (std::size_t i = 0; i < corners.size(); ++i)
            addEdge(edges_, corners[i], corners[(i + 1) % corners.size()], area < 0 ? -1 : 1);
    }

    void addDisc(Vector centre)
    {
        std::vector<Vector> circle;
        for (int i = 0; i < 200; ++i)
            circle.push_back(centre + std::polar(halfWidth_, i * M_PI / 100));
        addPiece(circle);
    }

    void addJoin(Vector p, Vector before, Vector after)
    {
        using namespace KAVO::Graphics2D;
        const double turn = std::abs(std::arg(after / before));
        const double side = cross(before, after) > 0 ? 1 : -1;
        const Vector out = Vector(0, -side) * halfWidth_;
        const bool smooth = turn < 15 * M_PI / 180; // such turns are never bevelled
        const bool round =
            context_.joinStyle == kJoinRound || (context_.joinStyle == kJoinBevel && smooth);
        const int steps = round ? 1 + int(turn * 40) : 1;
        std::vector<Vector> corners{p};
        for (int i = 0; i <= steps; ++i)
            corners.push_back(p + before * out * std::polar(1.0, side * turn * i / steps));
        const double middle = std::cos(turn / 2);
        if (context_.joinStyle == kJoinMiter && 1 / middle <= toDouble(context_.miterLimit))
            corners.insert(corners.begin() + 2, p + (before + after) * out / (2 * middle * middle));
        addPiece(corners);
    }

    const KAVO::Graphics2D::MMContext2D& context_;
    const double halfWidth_;
    Edges edges_;
};

} // namespace model
