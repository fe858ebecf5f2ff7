// SPDX-License-Identifier: MIT
// Filter primitives as operations on images. All of them count in device pixels.
#pragma once

#include "graphics2d/layers/MMBlendMode.h"
#include "svg/filters/FilterImage.h"
#include "svg/geometry/Affine.h"

#include <memory>
#include <vector>

namespace KAVO {
namespace Svg {

class Effect {
public:
    virtual ~Effect() = default;

    // What it must know of each of its inputs for the wanted pixels of its result.
    virtual PixelArea needs(const PixelArea& wanted) const { return wanted; }

    // Outside of which its result is transparent, when its inputs fill these areas, as
    // far as it is wanted.
    virtual PixelArea fills(const std::vector<PixelArea>&, const PixelArea& wanted) const
    {
        return wanted;
    }

    // Work for a pixel of the result, in that of a simple primitive.
    virtual double cost() const { return 1; }

    // It only moves pixels, so that any space of colours will do.
    virtual bool keepsColours() const { return false; }

    // Fills a transparent image; the inputs are in the same space of colours.
    virtual void apply(const std::vector<const FilterImage*>& inputs,
                       FilterImage& result) const = 0;
};

using EffectPointer = std::unique_ptr<Effect>;

// No radius or deviation is larger than this, so that what an effect needs stays near its result.
constexpr double kLargestDeviation = 500;

// With standard deviations: a true Gaussian below 2 pixels, else three boxes one after the other,
// which are near it.
EffectPointer makeBlur(double deviationX, double deviationY);

// By whole pixels.
EffectPointer makeOffset(int dx, int dy);

// One upon the other, the first one lowest. With a single input: a copy.
EffectPointer makeMerge();

// One colour all over, 0xAARRGGBB, not premultiplied.
EffectPointer makeFlood(uint32_t argb);

// The alpha with black.
EffectPointer makeAlpha();

// Repeats what the input has in the tile. When its sides lie between pixels, each pixel shows the
// one that is nearest in the tile.
EffectPointer makeTile(const Box& tile);

// Of the colours and the alpha, not premultiplied: rows for red, green, blue and alpha, each with
// factors of these four and a constant.
using ColourMatrix = std::array<double, 20>;
EffectPointer makeColourMatrix(const ColourMatrix& matrix);
ColourMatrix saturating(double share); // 0: greys, 1: as it is
ColourMatrix turningHue(double degrees);
ColourMatrix alphaFromLuminance();

// The first input upon the second, by one of the modes of CSS.
EffectPointer makeBlend(Graphics2D::MMBlendMode mode);

// The first input upon the second.
enum class CompositeOperator { Over, In, Out, Atop, Xor, Lighter, Arithmetic };
EffectPointer makeComposite(CompositeOperator composite, const std::array<double, 4>& k = {});

// A function of one channel that is not premultiplied, 0 to 1.
struct TransferFunction {
    enum Kind { Identity, Table, Discrete, Linear, Gamma };
    Kind kind = Identity;
    std::vector<double> values; // of a table or of steps
    double slope = 1;
    double intercept = 0; // also of gamma, whose offset it is
    double amplitude = 1;
    double exponent = 1;

    double operator()(double value) const;
};
EffectPointer makeComponentTransfer(std::array<TransferFunction, 4> functions);

// The least or the greatest of each channel in a rectangle that reaches so far on all sides.
EffectPointer makeMorphology(bool dilates, int radiusX, int radiusY);

// The first input, whose pixels are taken from where two channels (0 red to 3 alpha) of the second
// one say, as vectors from -1/2 to 1/2 under a transform, to whole pixels.
EffectPointer makeDisplacement(const Affine& scale, size_t channelX, size_t channelY);

} // namespace Svg
} // namespace KAVO
