// SPDX-License-Identifier: MIT
// A context that comes back as it was.
#pragma once

#include "graphics2d/MMContext2D.h"

namespace KAVO {
namespace Svg {

// Restores everything that drawing a document changes, but for bounds, memory and caches.
class ContextGuard {
public:
    explicit ContextGuard(Graphics2D::MMContext2D& context);
    ~ContextGuard();
    ContextGuard(const ContextGuard&) = delete;
    ContextGuard& operator=(const ContextGuard&) = delete;

private:
    // Writes the fields of one record to another.
    template <class To, class From>
    static void copy(To& to, const From& from);

    struct Fields {
        MMPaint strokePaint, fillPaint, currentPaint;
        Fixed lineHeight, fontSize;
        uint32_t fontStyle, textAnchor;
        uint8_t fontWeight, newLineFlag;
        Fixed penX, penY;
        uint8_t preserveSpace;
        Fixed wrapWidth, wrapOffsetX, wrapOffsetY;
        uint32_t textDecoration;
        Matrix2D transform;
        int16_t clipLeft, clipTop, clipRight, clipBottom;
        Fixed strokeHalfWidth, miterLimit;
        uint8_t joinStyle, capStyle;
        const Fixed* dashArray;
        Fixed dashOffset;
        uint16_t dashCount;
        uint8_t patternFilter, imageOpacity, accumulateBounds, antiAlias, fillRule, refined;
        MMPixmap target;
        Fixed pickX, pickY;
        uint8_t pickHit;
        const Fixed* charX;
        const Fixed* charY;
        uint32_t charXCount, charYCount, charRotateCount;
    };
    Graphics2D::MMContext2D& context_;
    Fields fields_;
};

} // namespace Svg
} // namespace KAVO
