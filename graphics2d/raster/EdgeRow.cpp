// SPDX-License-Identifier: MIT
// Where the edges touch different columns the row is three pieces: the ramp of the left edge, whole
// pixels, the ramp of the right edge. Where they share columns, or leave the visible part of the
// row, each column gets the difference of the two ramps.
#include "graphics2d/raster/EdgeRow.h"

#include "graphics2d/Redirection.h"
#include "math/FixedMath.h"

namespace KAVO {
namespace Graphics2D {

namespace {

// Whether the pieces lie inside the visible columns and apart from each other.
bool isPlain(const EdgeRamp& left, const EdgeRamp& right, const PixelBox& visible)
{
    return left.firstColumn() >= visible.left && left.endColumn() <= right.firstColumn() &&
           right.endColumn() <= visible.right;
}

// The share of a row's height that an edge alpha stands for.
Area heightOf(uint8_t alpha)
{
    return (alpha + (alpha >> 7)) << 8;
}

// Each column by the difference of the two ramps. A column that only one ramp passes through takes
// this edge's height, the others the lesser one.
void addDifference(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right,
                   Area leftHeight, Area rightHeight)
{
    const int32_t first = std::max(left.firstColumn(), painter.visible().left);
    const int32_t end = std::min(right.endColumn(), painter.visible().right);
    const Area lesserHeight = std::min(leftHeight, rightHeight);
    for (int32_t column = first; column < end;) {
        const bool inLeft = column < left.endColumn();
        const bool inRight = column >= right.firstColumn();
        // Nothing changes between the ramps.
        const int32_t next = inLeft || inRight ? column + 1 : std::min(end, right.firstColumn());
        const Area height = inLeft == inRight ? lesserHeight : inLeft ? leftHeight : rightHeight;
        const Area area =
            (inLeft ? left.areaOf(column) : kWholeArea) - (inRight ? right.areaOf(column) : 0);
        painter.addConstant(column, next,
                            static_cast<Area>(static_cast<int64_t>(area) * height >> 16));
        column = next;
    }
    painter.flush();
}

// The columns of a ramp in one run. Columns whose weight rounds to 0 are left alone: a filler that
// takes the background from the right would change them.
void drawRamp(RowPainter& painter, int32_t first, int32_t columns, Area start, Area second,
              int32_t step, Area last)
{
    if (last < kLeastArea) last = 0;
    if (columns == 1) {
        if (start >= kLeastArea) painter.drawPartial(first, 1, start, 0, 0, 0);
        return;
    }
    if (start >= kLeastArea) {
        painter.drawPartial(first, columns - 1, start, second, step, last);
        return;
    }
    if (columns > 2)
        painter.drawPartial(first + 1, columns - 2, second, second + step / 256, step, last);
    else if (last != 0)
        painter.drawPartial(first + 1, 1, last, 0, 0, 0);
}

void drawLeftRamp(RowPainter& painter, const EdgeRamp& ramp)
{
    const int32_t columns = ramp.columns();
    if (columns <= 0) return;
    const Area last = columns > 1 ? ramp.lastArea() : 0;
    if (columns <= 2)
        drawRamp(painter, ramp.firstColumn(), columns, ramp.firstArea(), 0, 0, last);
    else
        drawRamp(painter, ramp.firstColumn(), columns, ramp.firstArea(), ramp.secondArea(),
                 ramp.step(), last);
}

void drawRightRamp(RowPainter& painter, const EdgeRamp& ramp)
{
    const int32_t columns = ramp.columns();
    if (columns <= 0) return;
    const Area first = kWholeArea - ramp.firstArea();
    const Area last = columns > 1 ? kWholeArea - ramp.lastArea() : 0;
    if (columns <= 2)
        drawRamp(painter, ramp.firstColumn(), columns, first, 0, 0, last);
    else
        drawRamp(painter, ramp.firstColumn(), columns, first, kWholeArea - ramp.secondArea(),
                 -ramp.step(), last);
}

// The ramp of an edge whose coverage slope is that of its height.
EdgeRamp rampBetween(Fixed topX, Fixed bottomX, Fixed coverageSlope, uint8_t alpha)
{
    const Fixed travel = static_cast<Fixed>(magnitudeOf(wrapSub(bottomX, topX)));
    if (alpha != 255 && travel != 0) coverageSlope = fixDiv(kFixedOne, travel);
    return EdgeRamp(topX, bottomX, coverageSlope);
}

} // namespace

void storeEdges(MMContext2D& context, const RowEdge& left, const RowEdge& right)
{
    context.leftPreviousX = left.topX;
    context.rightPreviousX = right.topX;
    context.spanStart = left.bottomX;
    context.spanEnd = right.bottomX;
    context.leftSlope = left.slope;
    context.rightSlope = right.slope;
    context.leftCoverageSlope = left.coverageSlope;
    context.rightCoverageSlope = right.coverageSlope;
    context.leftEdgeAlpha = 255;
    context.rightEdgeAlpha = 255;
}

void drawEdgeRow(RowPainter& painter, const EdgeRamp& left, const EdgeRamp& right)
{
    if (!isPlain(left, right, painter.visible())) {
        addDifference(painter, left, right, kWholeArea, kWholeArea);
        return;
    }
    drawLeftRamp(painter, left);
    painter.drawWhole(left.endColumn(), right.firstColumn());
    drawRightRamp(painter, right);
}

void MMContext2D::smoothEdges()
{
    const PixelBox visible = drawableBox(*this);
    if (visible.empty()) return;
    // Masks and layers have no rows beyond these.
    if (isRedirected(*this) && (spanRow < visible.top || spanRow >= visible.bottom)) return;
    RowPainter painter(*this, visible);
    const Fixed leftX = spanStart;
    const Fixed rightX = spanEnd;
    const EdgeRamp left = rampBetween(leftPreviousX, leftX, leftCoverageSlope, leftEdgeAlpha);
    const EdgeRamp right = rampBetween(rightPreviousX, rightX, rightCoverageSlope, rightEdgeAlpha);
    if (leftEdgeAlpha == 255 && rightEdgeAlpha == 255)
        drawEdgeRow(painter, left, right);
    else
        addDifference(painter, left, right, heightOf(leftEdgeAlpha), heightOf(rightEdgeAlpha));
    spanStart = leftX;
    spanEnd = rightX;
}

} // namespace Graphics2D
} // namespace KAVO
