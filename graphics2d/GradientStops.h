// The colour stops of a gradient as its strip fillers read them. Internal.
#pragma once

#include "graphics2d/StripMachinery.h"

namespace KAVO {
namespace Graphics2D {

// Stops of the current paint. Offsets should ascend, but any values are safe.
struct StopList {
    const Pixel* colours;
    const Fixed* offsets;
    uint32_t count;

    explicit StopList(const MMPaint& paint)
        : colours(paint.gradientStopColors), offsets(paint.gradientStopOffsets),
          count(paint.gradientStopCount)
    {
    }
    bool isEmpty() const { return count == 0 || colours == nullptr || offsets == nullptr; }
    Pixel firstColour() const { return colours[0]; }
    Pixel lastColour() const { return colours[count - 1]; }
    Fixed firstOffset() const { return offsets[0]; }
    Fixed lastOffset() const { return offsets[count - 1]; }
};

// Four 8.16 channels, or differences or steps of them.
struct Channels {
    int32_t red;
    int32_t green;
    int32_t blue;
    int32_t alpha;

    static Channels of(Pixel colour)
    {
        return {redOf(colour), greenOf(colour), blueOf(colour), alphaOf(colour)};
    }
    // op is called with the channels of the two operands, or of the one.
    template <class Op>
    static Channels combine(const Channels& a, const Channels& b, Op op)
    {
        return {op(a.red, b.red), op(a.green, b.green), op(a.blue, b.blue), op(a.alpha, b.alpha)};
    }
    template <class Op>
    Channels map(Op op) const
    {
        return {op(red), op(green), op(blue), op(alpha)};
    }
    Channels& operator+=(const Channels& other)
    {
        *this = combine(*this, other, wrapAdd);
        return *this;
    }
};

// The colours between two neighbouring stops.
struct Segment {
    Channels start;
    Channels difference;
    Fixed offset;
    Fixed length;

    Segment(const StopList& stops, uint32_t i)
        : start(Channels::of(stops.colours[i])),
          difference(Channels::combine(Channels::of(stops.colours[i + 1]), start, wrapSub)),
          offset(stops.offsets[i]), length(wrapSub(stops.offsets[i + 1], stops.offsets[i]))
    {
    }
    // The colour at a position of the gradient.
    Channels at(Fixed position) const
    {
        const Fixed fraction = fixDiv(wrapSub(position, offset), length);
        return Channels::combine(start, difference, [fraction](int32_t from, int32_t change) {
            return wrapAdd(fixMul(fraction, change), from);
        });
    }
};

// Where a gradient's walk along a span goes. Runs of one colour lie outside the ramp; each gradient
// adds how it draws its ramp.
class OpaqueGradientTarget {
public:
    explicit OpaqueGradientTarget(const MMContext2D& context) : pixels_(spanFirstPixel(context)) {}

    void pad(Pixel colour, int32_t count)
    {
        fillPixels(pixels_, count, colour);
        pixels_ += count;
    }

protected:
    Pixel* pixels_;
};

class TranslucentGradientTarget {
public:
    explicit TranslucentGradientTarget(MMContext2D& context) : run_(context) {}

    bool takeTail() { return run_.takeTail(); }
    void pad(Pixel colour, int32_t count) { run_.drawColour(colour, count); }

protected:
    TranslucentRun run_;
};

} // namespace Graphics2D
} // namespace KAVO
