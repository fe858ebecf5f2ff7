// SPDX-License-Identifier: MIT
// The paint record: what a shape is filled or stroked with.
#pragma once

#include "../math/Matrix2D.h"
#include "MMPixmap.h"

namespace KAVO {
namespace Graphics2D {

// Values of MMPaint::paintType. They are even: the strip dispatch adds 1 for a translucent paint.
enum MMPaintType : uint32_t {
    kPaintSolid = 0,          // paintColour
    kPaintNone = 2,           // nothing is drawn
    kPaintXOR = 4,            // exclusive-or with paintColour, alpha included; ignores the opacity
    kPaintLinearGradient = 6, // gradientStop..., gradientOrigin..., gradientStep...
    kPaintRadialGradient = 8, // gradientStop..., radial...
    kPaintPattern = 10,       // patternTransform, patternImage, patternHasAlpha
    kPaintPicking = 12,       // writes no pixel; reports whether pickX, pickY is covered
    kPaintSource = 256        // source...: the colours come from a function of the caller's
};

} // namespace Graphics2D
} // namespace KAVO

// Writes count pixels of a row of the target, 1 to 128 from a device column on, often a single one.
// Pixels are premultiplied; a channel above its alpha is cut down to it. The function is given the
// paint's sourceState and keeps nothing set up between calls: a shape makes many short ones. What
// stood in pixels before has no meaning. A paint of bars, eight columns each:
//
//     void bars(const void* state, int32_t, int32_t column, int32_t count, KAVO::Pixel* pixels)
//     {
//         const auto* colours = static_cast<const KAVO::Pixel*>(state);
//         for (int32_t i = 0; i < count; ++i)
//             pixels[i] = colours[(column + i) >> 3 & 1];
//     }
//     ...
//     paint.paintType = kPaintSource;
//     paint.sourceFunction = bars;
//     paint.sourceState = twoColours;
//     paint.sourceIsOpaque = 0;
using MMPaintFunction = void (*)(const void* state, int32_t row, int32_t column, int32_t count,
                                 KAVO::Pixel* pixels);

// The parameters share storage as the groups below show: with 4-byte pointers the record is
// fourteen words. paintColour, gradientStopCount and patternTransform.a are the same word on every
// host, so setting a paint up overwrites the parameters of the paint that was there before.
// graphics2d/PaintSetup.h fills gradients and patterns in from end points, radii and transforms.
#if defined(__clang__) // which warns of structs without a name in spite of __extension__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wnested-anon-types"
#endif
struct MMPaint {
    uint32_t paintType; // MMPaintType

    union {
        // Classic drawing writes its alpha as it is. By the refined rules it is an opacity, so that
        // 0x00RRGGBB draws nothing.
        KAVO::Pixel paintColour;

        __extension__ struct {
            uint32_t gradientStopCount;             // at least 1; 0 draws nothing
            const KAVO::Pixel* gradientStopColors;  // the caller's, read at every use
            const KAVO::Fixed* gradientStopOffsets; // ascending, in units of the gradient parameter
            uint8_t paintHasAlpha;                  // some stop is translucent

            union {
                // The gradient parameter is 0 at the origin and grows by a step per device pixel.
                __extension__ struct {
                    KAVO::Fixed gradientOriginX;
                    KAVO::Fixed gradientOriginY;
                    KAVO::Fixed gradientStepX;
                    KAVO::Fixed gradientStepY;
                };
                // The gradient parameter is the length of the device offset from the centre mapped
                // through this 2 by 2 matrix.
                __extension__ struct {
                    KAVO::Fixed radialXToU;
                    KAVO::Fixed radialXToV;
                    KAVO::Fixed radialYToU;
                    KAVO::Fixed radialYToV;
                    KAVO::Fixed radialCenterX;
                    KAVO::Fixed radialCenterY;
                };
            };
        };

        __extension__ struct {
            Matrix2D patternTransform; // device pixels to texels
            MMPixmap patternImage;     // rows are exactly width texels apart
        };

        // Blended over the pixel itself by the refined rules, whatever the context's mode.
        __extension__ struct {
            uint32_t sourceUnused;          // paintColour's word, which others may write
            MMPaintFunction sourceFunction; // null draws nothing
            const void* sourceState;        // the function's own
            uint8_t sourceIsOpaque;         // every alpha is 255: may write straight to the target
        };
    };

    alignas(uint32_t) uint8_t patternHasAlpha; // the image has translucent texels
    alignas(uint32_t) uint8_t paintOpacity;    // 0 to 255, 255 is opaque
};
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

static_assert(sizeof(void*) != 4 || sizeof(MMPaint) == 14 * sizeof(uint32_t),
              "the parameters share fourteen words");
