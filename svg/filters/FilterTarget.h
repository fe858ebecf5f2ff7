// SPDX-License-Identifier: MIT
// What a filter must know of the element that it is applied to.
#pragma once

#include "svg/document/SvgDocument.h"
#include "svg/filters/Effect.h"

#include <functional>

namespace KAVO {
namespace Svg {

// A region without end.
constexpr Box kEverywhere{-1e9, -1e9, 1e9, 1e9};

inline bool isWithinLimit(const Point& radii)
{
    return radii.x <= kLargestDeviation && radii.y <= kLargestDeviation;
}

struct FilterTarget {
    const SvgDocument& document;
    const Style& style;
    Affine toDevice;
    Box bounds; // user space
    Viewport viewport;
    // What an feImage element draws in its subregion, a box of user space.
    std::function<EffectPointer(pugi::xml_node, const Box&)> image;

    // The paint of the fill, or of the stroke, all over a box of user space.
    std::function<EffectPointer(bool, const Box&)> paint;

    PixelArea areaOf(const Box& box) const { return areaAround(toDevice.mapBox(box)); }

    // Standard deviations along the axes of the device. Exact for what is scaled, mirrored or
    // turned by right angles, and for a blur that is the same in all directions; else the turned
    // bell is taken by its width and height.
    Point deviations(double x, double y) const
    {
        return {std::hypot(toDevice.a * x, toDevice.c * y),
                std::hypot(toDevice.b * x, toDevice.d * y)};
    }

    // To whole pixels.
    EffectPointer offset(double dx, double dy) const
    {
        const Point moved = toDevice.mapVector({dx, dy});
        const auto pixels = [](double v) {
            return static_cast<int>(std::lround(std::clamp(v, -1e6, 1e6)));
        };
        return makeOffset(pixels(moved.x), pixels(moved.y));
    }
};

} // namespace Svg
} // namespace KAVO
