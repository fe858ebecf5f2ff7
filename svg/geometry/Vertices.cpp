// SPDX-License-Identifier: MIT
#include "svg/geometry/Vertices.h"

#include <optional>

namespace KAVO {
namespace Svg {

namespace {

// One segment between two vertices; arcs of several curves are one.
struct Piece {
    std::optional<double> in;  // radians, at its start; nothing when it has no length
    std::optional<double> out; // at its end
};

std::optional<double> directionOf(Point from, Point to)
{
    if (from.x == to.x && from.y == to.y) return std::nullopt;
    return std::atan2(to.y - from.y, to.x - from.x);
}

// A control point upon an end says nothing: the next one tells.
Piece pieceOf(Point from, const Outline::Segment& segment)
{
    if (segment.verb != Outline::Curve) {
        const std::optional<double> direction = directionOf(from, segment.points[0]);
        return {direction, direction};
    }
    const Point* p = segment.points;
    Piece piece;
    for (const Point& to : {p[0], p[1], p[2]}) {
        if (!piece.in) piece.in = directionOf(from, to);
    }
    for (const Point& back : {p[1], p[0], from}) {
        if (!piece.out) piece.out = directionOf(back, p[2]);
    }
    return piece;
}

// The vertices of one subpath.
class Subpath {
public:
    Subpath(Point start, bool isVertex) : places_{start}, startIsVertex_(isVertex) {}

    void add(const Outline::Segment& segment)
    {
        const Piece piece = pieceOf(end_.value_or(places_.front()), segment);
        end_ = segment.end();
        if (joining_)
            pieces_.back().out = piece.out ? piece.out : pieces_.back().out;
        else
            pieces_.push_back(piece);
        joining_ = segment.inside;
        if (!joining_) places_.push_back(segment.end());
        closed_ = segment.verb == Outline::Close;
    }
    void finish(std::vector<Vertex>& vertices)
    {
        spreadDirections();
        for (size_t i = startIsVertex_ ? 0 : 1; i < places_.size(); ++i)
            vertices.push_back({places_[i], directionAt(i) * 180 / std::acos(-1.0)});
    }

private:
    void spreadDirections();
    double directionAt(size_t vertex) const;

    std::vector<Point> places_;
    bool startIsVertex_;
    std::vector<Piece> pieces_; // piece i leads from place i to place i + 1
    std::optional<Point> end_;
    bool joining_ = false;
    bool closed_ = false;
};

// A piece without length continues the one before, or else leads into the one after.
void Subpath::spreadDirections()
{
    std::optional<double> last;
    for (Piece& piece : pieces_) {
        if (!piece.in) piece.in = piece.out = last;
        last = piece.out;
    }
    for (size_t i = pieces_.size(); i-- > 0;) {
        if (!pieces_[i].in) pieces_[i].in = pieces_[i].out = last;
        last = pieces_[i].in;
    }
}

double Subpath::directionAt(size_t vertex) const
{
    if (pieces_.empty() || !pieces_[0].in) return 0;
    const bool isFirst = vertex == 0;
    const bool isLast = vertex == pieces_.size();
    if (!closed_ && isFirst) return *pieces_.front().in;
    if (!closed_ && isLast) return *pieces_.back().out;
    const double in = *(isFirst ? pieces_.back() : pieces_[vertex - 1]).out;
    const double out = *(isLast ? pieces_.front() : pieces_[vertex]).in;
    return std::atan2(std::sin(in) + std::sin(out), std::cos(in) + std::cos(out));
}

} // namespace

std::vector<Vertex> verticesOf(const Outline& outline)
{
    std::vector<Vertex> vertices;
    std::optional<Subpath> subpath;
    for (const Outline::Segment& segment : outline.segments()) {
        if (segment.verb == Outline::Move) {
            if (subpath) subpath->finish(vertices);
            subpath.emplace(segment.points[0], !segment.inside);
        } else if (subpath) {
            subpath->add(segment);
        }
    }
    if (subpath) subpath->finish(vertices);
    return vertices;
}

std::vector<Joint> jointsOf(const Outline& outline)
{
    std::vector<Joint> joints;
    std::optional<double> first; // directions of the subpath
    std::optional<double> last;
    Point place;
    for (const Outline::Segment& segment : outline.segments()) {
        if (segment.verb == Outline::Move) {
            first = last = std::nullopt;
        } else if (const Piece piece = pieceOf(place, segment); piece.in) {
            if (last) joints.push_back({place, *last, *piece.in});
            if (!first) first = piece.in;
            last = piece.out;
        }
        place = segment.end();
        if (segment.verb == Outline::Close && last) joints.push_back({place, *last, *first});
    }
    return joints;
}

} // namespace Svg
} // namespace KAVO
