// SPDX-License-Identifier: MIT
// The command words of encoded paths. Internal.
//
// The format stands at MMContext2D::drawPath and in MMPathWords.h.
#pragma once

#include "graphics2d/MMPathWords.h"
#include "math/MMPoint2D.h"

namespace KAVO {
namespace Graphics2D {

// A command word of an encoded path.
struct PathCommand {
    uint32_t word;

    constexpr uint32_t itemCount() const { return word & kPathItemMask; }
    constexpr uint32_t kind() const { return word & kPathKindMask; }
    constexpr bool endsSubpath() const { return (word & kPathEnd) != 0; }
    constexpr bool closes() const { return (word & kPathClose) != 0; }

    // Words of one item behind the command; the ignored kinds have none.
    constexpr uint32_t wordsPerItem() const
    {
        return kind() == kPathPoints ? 2 : kind() == kPathCurves ? 6 : 0;
    }
    constexpr uint32_t itemWords() const { return itemCount() * wordsPerItem(); }
};

constexpr uint32_t subpathCountOf(uint32_t header)
{
    return header & kPathSubpathMask;
}

// Pairs of words as points. The strokers take segments that are not const but do not write them.
inline MMPoint2D* pathPoints(const uint32_t* words)
{
    return reinterpret_cast<MMPoint2D*>(const_cast<uint32_t*>(words));
}

// The first command with points; there must be one.
inline const uint32_t* firstPoints(const uint32_t* command)
{
    while (PathCommand{*command}.kind() != kPathPoints || PathCommand{*command}.itemCount() == 0)
        command += 1 + PathCommand{*command}.itemWords();
    return command;
}

// What comes behind the subpath.
inline const uint32_t* nextSubpath(const uint32_t* command)
{
    while (!PathCommand{*command}.endsSubpath())
        command += 1 + PathCommand{*command}.itemWords();
    return command + 1 + PathCommand{*command}.itemWords();
}

} // namespace Graphics2D
} // namespace KAVO
