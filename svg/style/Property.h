// SPDX-License-Identifier: MIT
// The properties that elements can set, by attributes and in style sheets.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

enum class Property : uint8_t {
    AlignmentBaseline,
    BaselineShift,
    Clip,
    ClipPath,
    ClipRule,
    Color,
    ColorInterpolation,
    ColorInterpolationFilters,
    Cx,
    Cy,
    D,
    Direction,
    Display,
    DominantBaseline,
    Fill,
    FillOpacity,
    FillRule,
    Filter,
    FloodColor,
    FloodOpacity,
    FontFamily,
    FontSize,
    FontStretch,
    FontStyle,
    FontVariant,
    FontWeight,
    Height,
    ImageRendering,
    Isolation,
    LetterSpacing,
    LightingColor,
    MarkerEnd,
    MarkerMid,
    MarkerStart,
    Mask,
    MaskType,
    MixBlendMode,
    Opacity,
    Overflow,
    PaintOrder,
    R,
    Rotate,
    Rx,
    Ry,
    Scale,
    ShapeRendering,
    StopColor,
    StopOpacity,
    Stroke,
    StrokeDasharray,
    StrokeDashoffset,
    StrokeLinecap,
    StrokeLinejoin,
    StrokeMiterlimit,
    StrokeOpacity,
    StrokeWidth,
    TextAnchor,
    TextDecoration,
    TextTransform,
    Transform,
    TransformBox,
    TransformOrigin,
    Translate,
    UnicodeBidi,
    VectorEffect,
    Visibility,
    WhiteSpace,
    Width,
    WordSpacing,
    WritingMode,
    X,
    XmlSpace,
    Y,
    Count
};

constexpr size_t kPropertyCount = static_cast<size_t>(Property::Count);

// By the name of an attribute or of a declaration; nothing for names that mean nothing to us.
std::optional<Property> findProperty(std::string_view name);

} // namespace Svg
} // namespace KAVO
