// SPDX-License-Identifier: MIT
// Pointing a context at pixels, and keeping its state over a scope.
#pragma once

#include "../MMContext2D.h"

namespace KAVO {
namespace Graphics2D {

#pragma GCC visibility push(default)

// Makes the context draw into these pixels, all of them, and by the refined rules: sets target (but
// its backgroundColour), clip and refined. rowBytes is the distance between rows, a multiple of 4;
// 0 means that they touch. Sides beyond 32,767 are cut to it, negative ones count as 0.
void setTarget(MMContext2D& context, Pixel* pixels, int32_t width, int32_t height,
               uint32_t rowBytes = 0);

#pragma GCC visibility pop

// Remembers how shapes and images are drawn, and brings it back at the end of its scope:
//
//     {
//         const MMContextState state(context);
//         context.transform.rotate(30_fx);
//         context.fillPaint.paintColour = 0xFF2060C0;
//         context.drawPath(path.words());
//     } // transform and paint are as before
//
// That is the transform, the clip rectangle, both paints, the fill rule, the stroke style,
// patternFilter, imageOpacity, antiAlias, refined and clipMask. The arrays of gradients, images and
// dashes are not copied, nor is the mask: they stay where they are.
class MMContextState {
public:
    explicit MMContextState(MMContext2D& context)
        : context_(context), transform_(context.transform), strokePaint_(context.strokePaint),
          fillPaint_(context.fillPaint), dashArray_(context.dashArray),
          strokeHalfWidth_(context.strokeHalfWidth), miterLimit_(context.miterLimit),
          dashOffset_(context.dashOffset), clipLeft_(context.clipLeft), clipTop_(context.clipTop),
          clipRight_(context.clipRight), clipBottom_(context.clipBottom),
          dashCount_(context.dashCount), joinStyle_(context.joinStyle), capStyle_(context.capStyle),
          fillRule_(context.fillRule), patternFilter_(context.patternFilter),
          imageOpacity_(context.imageOpacity), antiAlias_(context.antiAlias),
          refined_(context.refined), clipMask_(context.clipMask)
    {
    }
    ~MMContextState()
    {
        context_.transform = transform_;
        context_.strokePaint = strokePaint_;
        context_.fillPaint = fillPaint_;
        context_.dashArray = dashArray_;
        context_.strokeHalfWidth = strokeHalfWidth_;
        context_.miterLimit = miterLimit_;
        context_.dashOffset = dashOffset_;
        context_.clipLeft = clipLeft_;
        context_.clipTop = clipTop_;
        context_.clipRight = clipRight_;
        context_.clipBottom = clipBottom_;
        context_.dashCount = dashCount_;
        context_.joinStyle = joinStyle_;
        context_.capStyle = capStyle_;
        context_.fillRule = fillRule_;
        context_.patternFilter = patternFilter_;
        context_.imageOpacity = imageOpacity_;
        context_.antiAlias = antiAlias_;
        context_.refined = refined_;
        context_.clipMask = clipMask_;
    }
    MMContextState(const MMContextState&) = delete;
    MMContextState& operator=(const MMContextState&) = delete;

private:
    MMContext2D& context_;
    const Matrix2D transform_;
    const MMPaint strokePaint_;
    const MMPaint fillPaint_;
    const Fixed* const dashArray_;
    const Fixed strokeHalfWidth_;
    const Fixed miterLimit_;
    const Fixed dashOffset_;
    const int16_t clipLeft_;
    const int16_t clipTop_;
    const int16_t clipRight_;
    const int16_t clipBottom_;
    const uint16_t dashCount_;
    const uint8_t joinStyle_;
    const uint8_t capStyle_;
    const uint8_t fillRule_;
    const uint8_t patternFilter_;
    const uint8_t imageOpacity_;
    const uint8_t antiAlias_;
    const uint8_t refined_;
    const MMMask* const clipMask_;
};

} // namespace Graphics2D
} // namespace KAVO
