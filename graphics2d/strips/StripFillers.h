// SPDX-License-Identifier: MIT
// The strip fillers that are compiled for each level of the processor. Internal.
//
// They are what the context's members of like names call; the colours' are chosen by mode before
// any span is drawn, the others ask for it.
#pragma once

#include "graphics2d/Level.h"
#include "graphics2d/LevelTable.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

void drawClassicColour(MMContext2D& context);
void drawRefinedColour(MMContext2D& context);
void drawTranslucentClassicColour(MMContext2D& context);
void drawTranslucentRefinedColour(MMContext2D& context);
void blendClassicRun(Pixel* pixels, int32_t count, Pixel colour, Coverage coverage, Coverage next,
                     Coverage step);
void blendRefinedRun(Pixel* pixels, int32_t count, Pixel colour, Coverage coverage, Coverage next,
                     Coverage step);

} // namespace MM2D_LEVEL

// They work on one pixel after the other, or on the four channels of one, or leave long runs to the
// loops of the context's level.
inline namespace MM2D_FILLER_LEVEL {

void drawLinearGradient(MMContext2D& context);
void drawTranslucentLinearGradient(MMContext2D& context);
void drawLinearGradientRows(MMContext2D& context, const SpanRows& rows); // opaque

void drawNearestPattern(MMContext2D& context);
void drawTranslucentNearestPattern(MMContext2D& context);
void drawSource(MMContext2D& context);
void drawTranslucentSource(MMContext2D& context);

void drawRadialGradient(MMContext2D& context);
void drawTranslucentRadialGradient(MMContext2D& context);

void drawBilinearPattern(MMContext2D& context);
void drawTranslucentBilinearPattern(MMContext2D& context);
void drawBicubicPattern(MMContext2D& context);
void drawTranslucentBicubicPattern(MMContext2D& context);

} // namespace MM2D_FILLER_LEVEL
} // namespace Graphics2D
} // namespace KAVO
