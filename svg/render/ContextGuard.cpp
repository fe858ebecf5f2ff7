// SPDX-License-Identifier: MIT
#include "svg/render/ContextGuard.h"

namespace KAVO {
namespace Svg {

template <class To, class From>
void ContextGuard::copy(To& to, const From& from)
{
    to.strokePaint = from.strokePaint;
    to.fillPaint = from.fillPaint;
    to.currentPaint = from.currentPaint;
    to.lineHeight = from.lineHeight;
    to.fontSize = from.fontSize;
    to.fontStyle = from.fontStyle;
    to.textAnchor = from.textAnchor;
    to.fontWeight = from.fontWeight;
    to.newLineFlag = from.newLineFlag;
    to.penX = from.penX;
    to.penY = from.penY;
    to.preserveSpace = from.preserveSpace;
    to.wrapWidth = from.wrapWidth;
    to.wrapOffsetX = from.wrapOffsetX;
    to.wrapOffsetY = from.wrapOffsetY;
    to.textDecoration = from.textDecoration;
    to.transform = from.transform;
    to.clipLeft = from.clipLeft;
    to.clipTop = from.clipTop;
    to.clipRight = from.clipRight;
    to.clipBottom = from.clipBottom;
    to.strokeHalfWidth = from.strokeHalfWidth;
    to.miterLimit = from.miterLimit;
    to.joinStyle = from.joinStyle;
    to.capStyle = from.capStyle;
    to.dashArray = from.dashArray;
    to.dashOffset = from.dashOffset;
    to.dashCount = from.dashCount;
    to.patternFilter = from.patternFilter;
    to.imageOpacity = from.imageOpacity;
    to.accumulateBounds = from.accumulateBounds;
    to.antiAlias = from.antiAlias;
    to.fillRule = from.fillRule;
    to.refined = from.refined;
    to.target = from.target;
    to.pickX = from.pickX;
    to.pickY = from.pickY;
    to.pickHit = from.pickHit;
    to.charX = from.charX;
    to.charY = from.charY;
    to.charXCount = from.charXCount;
    to.charYCount = from.charYCount;
    to.charRotateCount = from.charRotateCount;
}

ContextGuard::ContextGuard(Graphics2D::MMContext2D& context) : context_(context)
{
    copy(fields_, context);
    // What a caller may have set for text of its own does not place ours.
    context.charXCount = context.charYCount = context.charRotateCount = 0;
    context.textAnchor = Graphics2D::kAnchorStart;
}

ContextGuard::~ContextGuard()
{
    copy(context_, fields_);
    context_.updateFont();
    context_.lineHeight = fields_.lineHeight; // which updateFont sets
}

} // namespace Svg
} // namespace KAVO
