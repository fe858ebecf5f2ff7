// SPDX-License-Identifier: MIT
// The bits of an encoded path's words. MMContext2D::drawPath tells how the words follow each other;
// graphics2d/convenience/MMPathBuilder.h writes them.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// The header: how many subpaths there are, and how many segments (a hint).
constexpr uint32_t kPathSubpathMask = 0xFFFF;
constexpr uint32_t kPathSegmentShift = 16;

// A command: how many items follow it and of what kind they are. The other two kinds are ignored
// and have no words of their own.
constexpr uint32_t kPathItemMask = 0x0FFFFFFF;
constexpr uint32_t kPathKindMask = 3u << 28;
constexpr uint32_t kPathPoints = 0u << 28; // x, y
constexpr uint32_t kPathCurves = 1u << 28; // two control points and the end

constexpr uint32_t kPathEnd = 1u << 30;   // the subpath ends with this command
constexpr uint32_t kPathClose = 1u << 31; // and is closed; counts only together with kPathEnd

} // namespace Graphics2D
} // namespace KAVO
