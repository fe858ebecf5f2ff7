// SPDX-License-Identifier: MIT
#include "svg/geometry/MiterClip.h"

#include "svg/geometry/Vertices.h"

namespace KAVO {
namespace Svg {

namespace {

double dot(Point p, Point q)
{
    return p.x * q.x + p.y * q.y;
}

Point unit(double direction)
{
    return {std::cos(direction), std::sin(direction)};
}

void addMiter(const Joint& joint, double halfWidth, double limit, Outline& miters)
{
    const Point in = unit(joint.in);
    const Point out = unit(joint.out);
    const Point between = in - out;
    const double size = std::sqrt(dot(between, between));
    if (size == 0) return;
    const Point middle = between * (1 / size); // of the corner, outwards
    const double bevel = halfWidth * std::sqrt(std::max(0.0, (1 + dot(in, out)) / 2));
    const double reach = halfWidth * limit;
    if (halfWidth * halfWidth <= bevel * reach || reach <= bevel) return; // whole, or a bevel

    const bool turnsRight = in.x * out.y - in.y * out.x > 0;
    const double side = turnsRight ? -halfWidth : halfWidth;
    const Point vertex = joint.place;
    const Point start = vertex + Point{-in.y, in.x} * side;
    const Point end = vertex + Point{-out.y, out.x} * side;
    const double along = (reach - bevel) / dot(in, middle);
    const Point corners[] = {start, start + in * along, end - out * along, end};
    miters.moveTo(vertex);
    for (int i = 0; i < 4; ++i)
        miters.lineTo(corners[turnsRight ? i : 3 - i]);
    miters.close();
}

} // namespace

Outline clippedMiters(const Outline& outline, double width, double limit)
{
    Outline miters;
    for (const Joint& joint : jointsOf(outline))
        addMiter(joint, width / 2, limit, miters);
    return miters;
}

} // namespace Svg
} // namespace KAVO
