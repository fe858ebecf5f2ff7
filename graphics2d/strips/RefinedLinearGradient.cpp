// SPDX-License-Identifier: MIT
// The linear gradient by the refined rules.
//
// The parameter t is taken at the pixels' centres, in 64 bits: it neither wraps nor drifts. Along a
// row t(x) = t(0) + x * step, so each segment between two stops covers a run of columns whose ends
// are found by one division. Within it the channels are stepped from the run's first column, or
// from column 0 when the run begins left of it, never from where the span begins: a pixel's colour
// does not depend on how its row is cut into spans.
#include "graphics2d/strips/RefinedLinearGradient.h"

#include "graphics2d/strips/GradientTarget.h"
#include "graphics2d/strips/StopList.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// A quotient of 2.30, of a part and a whole below 2^32.
constexpr int32_t kShareBits = 30;

// v / 2^14, rounded: from a byte times 2.30 to 8.16.
constexpr int32_t toChannel(int64_t v)
{
    return static_cast<int32_t>((v + (1 << 13)) >> 14);
}

// The stops in the order in which a row meets them from left to right, as a parameter that grows.
class StopsAlongRow {
public:
    StopsAlongRow(const StopList& stops, bool backward) : stops_(stops), backward_(backward) {}

    uint32_t count() const { return stops_.count; }
    Pixel colour(uint32_t i) const { return stops_.colours[place(i)]; }
    int64_t offset(uint32_t i) const
    {
        const int64_t offset = stops_.offsets[place(i)];
        return backward_ ? -offset : offset;
    }

private:
    uint32_t place(uint32_t i) const { return backward_ ? stops_.count - 1 - i : i; }

    StopList stops_;
    bool backward_;
};

// A row of the target and, as one row after the other is drawn, the rows below.
class RowOfGradient {
public:
    RowOfGradient(const MMPaint& paint, int32_t row)
        : stops_(StopList(paint), paint.gradientStepX < 0), step_(paint.gradientStepX),
          rowStep_(paint.gradientStepY), atZero_(parameterAtColumnZero(paint, row))
    {
        if (step_ >= 0) return;
        step_ = -step_;
        rowStep_ = -rowStep_;
        atZero_ = -atZero_;
    }

    void goDown() { atZero_ += rowStep_; }

    // Draws count columns from the first on.
    void draw(RefinedGradientTarget& target, int32_t first, int32_t count)
    {
        const int32_t end = first + count;
        int32_t column = first;
        // The segment ends at stop i and begins at low; stops out of order are moved up to their
        // predecessor. What lies left of the one that was drawn last need not be looked at again.
        const bool goesOn = segment_ != 0 && parameter(column) >= segmentLow_;
        int64_t low = goesOn ? segmentLow_ : INT64_MIN;
        for (uint32_t i = goesOn ? segment_ : 0; column < end; ++i) {
            if (i == stops_.count()) return target.pad(stops_.colour(i - 1), end - column);
            const int64_t offset = stops_.offset(i);
            const int64_t high = offset > low ? offset : low;
            if (parameter(column) < high) {
                const int32_t next = columnOf(high, column, end);
                if (i == 0)
                    target.pad(stops_.colour(0), next - column);
                else
                    drawSegment(target, i, low, high, column, next - column);
                column = next;
            }
            low = high;
        }
    }

private:
    // Each product is halved, so that the sum fits.
    static int64_t parameterAtColumnZero(const MMPaint& paint, int32_t row)
    {
        const int64_t dx = int64_t{kFixedHalf} - paint.gradientOriginX;
        const int64_t dy = int64_t{kFixedHalf} - paint.gradientOriginY;
        const int64_t atRowZero =
            ((paint.gradientStepX * dx >> 1) + (paint.gradientStepY * dy >> 1)) >> 15;
        return atRowZero + int64_t{paint.gradientStepY} * row;
    }

    int64_t parameter(int32_t column) const { return atZero_ + step_ * column; }

    // The first column from least on, at most end, whose parameter reaches the offset.
    int32_t columnOf(int64_t offset, int32_t least, int32_t end) const
    {
        if (parameter(end) < offset) return end; // also when all columns are alike
        const int64_t column = (offset - atZero_ + step_ - 1) / step_;
        return column < least ? least : column < end ? static_cast<int32_t>(column) : end;
    }

    // Makes the segment that ends at stop i the current one, unless it is.
    void enter(uint32_t i, int64_t low, int64_t length)
    {
        if (segment_ == i) return;
        segment_ = i;
        segmentLow_ = low;
        const bool isStepped = step_ < length; // or else there is only one column
        const int64_t shareStep = isStepped ? (step_ << kShareBits) / length : 0;
        start_ = channelsOf(stops_.colour(i - 1));
        difference_ = (Channels)((I32x4)(channelsOf(stops_.colour(i)) - start_) >> 16);
        channelStep_ = part(shareStep);
    }

    // Of the segment's difference.
    Channels part(int64_t share) const
    {
        return mapChannels(difference_, [=](int32_t d) { return toChannel(d * share); });
    }

    // Between stop i - 1 at low and stop i at high.
    void drawSegment(RefinedGradientTarget& target, uint32_t i, int64_t low, int64_t high,
                     int32_t column, int32_t count)
    {
        const int64_t length = high - low;
        enter(i, low, length);
        const int32_t anchor = parameter(0) >= low ? 0 : columnOf(low, 0, column);
        const int64_t share = ((parameter(anchor) - low) << kShareBits) / length;
        const Channels step = channelStep_;
        const Channels first = start_ + part(share) + step * static_cast<uint32_t>(column - anchor);
        ColourRamp colours(target.level(), first, step);
        if (!target.isTranslucent()) return target.rampOpaque(colours, count);
        target.ramp(count, [&](Pixel* pixels, uint32_t* weights, int32_t pixelCount) {
            colours.write(pixels, weights, pixelCount);
        });
    }

    StopsAlongRow stops_;
    int64_t step_;    // of t per column, not negative
    int64_t rowStep_; // and per row
    int64_t atZero_;  // t at the centre of column 0

    // The segment that was drawn last.
    uint32_t segment_ = 0; // the stop that ends it, or 0: none
    int64_t segmentLow_;   // t where it begins
    Channels start_;
    Channels difference_; // to its end, whole units
    Channels channelStep_;
};

} // namespace

void drawRefinedLinearGradient(MMContext2D& context, bool translucent, const SpanRows& rows)
{
    if (StopList(context.currentPaint).isEmpty()) return;
    RefinedGradientTarget target(context, translucent);
    RowOfGradient row(context.currentPaint, context.spanRow);
    const int32_t first = fixFloor(context.spanStart);
    const int32_t count = spanLength(context);
    row.draw(target, first, count);
    if (target.takeTail()) row.draw(target, first + count, 1);
    for (int32_t i = 1; i < rows.count; ++i) {
        row.goDown();
        target.goTo(spanFirstPixel(context) + i * rows.pixels);
        row.draw(target, first, count);
    }
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
