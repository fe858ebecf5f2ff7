// SPDX-License-Identifier: MIT
// The arithmetic of blend modes. Channels are whole numbers from 0 to 255, and a mode answers its
// result times 255: a number of 16 bits, whose share and that of the target are added before the
// one rounding. Sums of products wrap on the way and are right in the end.
#include "graphics2d/layers/BlendRow.h"

#include "graphics2d/strips/Blending.h"

#include <algorithm>

namespace KAVO {
namespace Graphics2D {

namespace {

// Two pixels, four channels each: blue, green, red, alpha.
struct Pair {
    explicit Pair(U16x8 lanes)
        : alpha(__builtin_shufflevector(lanes, lanes, 3, 3, 3, 3, 7, 7, 7, 7)), channels(lanes)
    {
    }
    U16x8 alpha; // of each channel's pixel
    U16x8 channels;
};

inline U16x8 smaller(U16x8 a, U16x8 b)
{
    return a < b ? a : b;
}

inline U16x8 larger(U16x8 a, U16x8 b)
{
    return a < b ? b : a;
}

constexpr U16x8 kAlphaLanes = {0, 0, 0, 0xFFFF, 0, 0, 0, 0xFFFF};

// --- Porter and Duff ----------------------------------------------------------------------------
// s is the layer, b the target; answers are times 255.

inline U16x8 sourceShare(const Pair& s, const Pair& b) // S * (1 - ab)
{
    return s.channels * (255 - b.alpha);
}

inline U16x8 targetShare(const Pair& s, const Pair& b) // B * (1 - as)
{
    return b.channels * (255 - s.alpha);
}

struct Clear {
    static U16x8 of(const Pair&, const Pair&) { return U16x8{}; }
};
struct Copy {
    static U16x8 of(const Pair& s, const Pair&) { return s.channels * 255; }
};
struct Destination {
    static U16x8 of(const Pair&, const Pair& b) { return b.channels * 255; }
};
struct DestinationOver {
    static U16x8 of(const Pair& s, const Pair& b) { return sourceShare(s, b) + b.channels * 255; }
};
struct SourceIn {
    static U16x8 of(const Pair& s, const Pair& b) { return s.channels * b.alpha; }
};
struct DestinationIn {
    static U16x8 of(const Pair& s, const Pair& b) { return b.channels * s.alpha; }
};
struct SourceOut {
    static U16x8 of(const Pair& s, const Pair& b) { return sourceShare(s, b); }
};
struct DestinationOut {
    static U16x8 of(const Pair& s, const Pair& b) { return targetShare(s, b); }
};
struct SourceAtop {
    static U16x8 of(const Pair& s, const Pair& b)
    {
        return s.channels * b.alpha + targetShare(s, b);
    }
};
struct DestinationAtop {
    static U16x8 of(const Pair& s, const Pair& b)
    {
        return sourceShare(s, b) + b.channels * s.alpha;
    }
};
struct Xor {
    static U16x8 of(const Pair& s, const Pair& b) { return sourceShare(s, b) + targetShare(s, b); }
};
struct Plus {
    static U16x8 of(const Pair& s, const Pair& b)
    {
        return smaller(s.channels + b.channels, U16x8{} + 255) * 255;
    }
};
// --- Modes that mix colours ---------------------------------------------------------------------
// A mixture is as * ab * mixed(B / ab, S / as), times 255 * 255; mixed is 1 for the alpha. Each has
// as * B and ab * S at hand.

struct Mixing {
    Mixing(const Pair& s, const Pair& b)
        : source(s), target(b), both(s.alpha * b.alpha), asB(s.alpha * b.channels),
          abS(b.alpha * s.channels)
    {
    }
    const Pair& source;
    const Pair& target;
    U16x8 both;
    U16x8 asB;
    U16x8 abS;

    U16x8 product() const { return source.channels * target.channels; }
    U16x8 screen() const { return asB + abS - product(); }
    // Twice the product below the middle, the screen of twice the lighter half above.
    U16x8 hardLight(U16x8 isDark) const
    {
        const U16x8 dark = product() * 2;
        return isDark != 0 ? dark : asB * 2 + abS * 2 - dark - both;
    }
};

struct Multiply {
    static U16x8 mix(const Mixing& m) { return m.product(); }
};
struct Screen {
    static U16x8 mix(const Mixing& m) { return m.screen(); }
};
struct Overlay {
    static U16x8 mix(const Mixing& m)
    {
        return m.hardLight((U16x8)(m.target.channels * 2 <= m.target.alpha));
    }
};
struct HardLight {
    static U16x8 mix(const Mixing& m)
    {
        return m.hardLight((U16x8)(m.source.channels * 2 <= m.source.alpha));
    }
};
struct Darken {
    static U16x8 mix(const Mixing& m) { return smaller(m.asB, m.abS); }
};
struct Lighten {
    static U16x8 mix(const Mixing& m) { return larger(m.asB, m.abS); }
};
struct Difference {
    static U16x8 mix(const Mixing& m) { return larger(m.asB, m.abS) - smaller(m.asB, m.abS); }
};
struct Exclusion {
    static U16x8 mix(const Mixing& m) { return m.screen() - m.product(); }
};

// The rest goes channel by channel, in whole numbers.
struct Channel {
    uint32_t s;
    uint32_t as;
    uint32_t b;
    uint32_t ab;
};

inline uint32_t quotient(uint64_t dividend, uint32_t divisor)
{
    return static_cast<uint32_t>((dividend + divisor / 2) / divisor);
}

uint32_t dodge(const Channel& c)
{
    const uint32_t both = c.as * c.ab;
    if (c.b == 0) return 0;
    if (c.s >= c.as) return both;
    return std::min(both, quotient(c.as * c.as * c.b, c.as - c.s));
}

uint32_t burn(const Channel& c)
{
    const uint32_t both = c.as * c.ab;
    if (c.b >= c.ab) return both;
    if (c.s == 0) return 0;
    return both - std::min(both, quotient(c.as * c.as * (c.ab - c.b), c.s));
}

uint32_t squareRoot(uint32_t square)
{
    uint32_t root = 0;
    for (uint32_t bit = 0x8000; bit != 0; bit >>= 1) {
        const uint32_t next = root | bit;
        if (next * next <= square) root = next;
    }
    return root;
}

uint32_t softLight(const Channel& c)
{
    const uint32_t asB = c.as * c.b;
    if (2 * c.s <= c.as) return asB - quotient(uint64_t{c.as - 2 * c.s} * c.b * (c.ab - c.b), c.ab);
    // ab times the lighter curve, 24.8: its root, or near black a cubic.
    uint32_t lighter = squareRoot(c.b * c.ab << 16);
    if (4 * c.b <= c.ab) {
        const uint64_t cubic = uint64_t{4 * c.ab * c.ab + 16 * c.b * c.b - 12 * c.ab * c.b} * c.b;
        lighter = quotient(cubic << 8, c.ab * c.ab);
    }
    return asB + quotient(uint64_t{2 * c.s - c.as} * (lighter - (c.b << 8)), 256);
}

// Calls each(channel, its place) for the colours of both pixels where layer and target are.
template <class Each>
inline void forColours(const Mixing& m, Each each)
{
    for (int i = 0; i < 8; ++i) {
        const Channel c = {m.source.channels[i], m.source.alpha[i], m.target.channels[i],
                           m.target.alpha[i]};
        if (i % 4 != 3 && c.as != 0 && c.ab != 0) each(c, i);
    }
}

template <uint32_t (*mixed)(const Channel&)>
struct ByChannel {
    static U16x8 mix(const Mixing& m)
    {
        U16x8 mixture = {};
        forColours(m,
                   [&](const Channel& c, int i) { mixture[i] = static_cast<uint16_t>(mixed(c)); });
        return mixture;
    }
};

// A colour whose white is as * ab, red first. On the way channels leave their range.
struct Colour {
    int32_t channels[3];

    int32_t least() const { return std::min({channels[0], channels[1], channels[2]}); }
    int32_t most() const { return std::max({channels[0], channels[1], channels[2]}); }
    int32_t saturation() const { return most() - least(); }
    int32_t luminosity() const
    {
        return (30 * channels[0] + 59 * channels[1] + 11 * channels[2] + 50) / 100;
    }
};

int32_t share(int32_t value, int32_t part, int32_t whole)
{
    return static_cast<int32_t>(int64_t{value} * part / whole);
}

Colour withSaturation(Colour colour, int32_t saturation)
{
    const int32_t least = colour.least();
    const int32_t range = colour.saturation();
    for (int32_t& c : colour.channels)
        c = range == 0 ? 0 : share(c - least, saturation, range);
    return colour;
}

// Colours that leave their range move toward their grey until they fit.
Colour withLuminosity(Colour colour, int32_t luminosity, int32_t white)
{
    const int32_t change = luminosity - colour.luminosity();
    for (int32_t& c : colour.channels)
        c += change;
    const int32_t grey = std::clamp(colour.luminosity(), 0, white);
    const int32_t least = colour.least();
    if (least < 0)
        for (int32_t& c : colour.channels)
            c = grey + share(c - grey, grey, grey - least);
    const int32_t most = colour.most();
    if (most > white)
        for (int32_t& c : colour.channels)
            c = grey + share(c - grey, white - grey, most - grey);
    for (int32_t& c : colour.channels)
        c = std::clamp(c, 0, white);
    return colour;
}

// What is taken from the target: its hue, saturation, luminosity. The rest is the layer's.
struct HueOfLayer {
    static Colour mixed(const Colour& s, const Colour& b, int32_t white)
    {
        return withLuminosity(withSaturation(s, b.saturation()), b.luminosity(), white);
    }
};
struct SaturationOfLayer {
    static Colour mixed(const Colour& s, const Colour& b, int32_t white)
    {
        return withLuminosity(withSaturation(b, s.saturation()), b.luminosity(), white);
    }
};
struct ColourOfLayer {
    static Colour mixed(const Colour& s, const Colour& b, int32_t white)
    {
        return withLuminosity(s, b.luminosity(), white);
    }
};
struct LuminosityOfLayer {
    static Colour mixed(const Colour& s, const Colour& b, int32_t white)
    {
        return withLuminosity(b, s.luminosity(), white);
    }
};

template <class Mode>
struct ByColour {
    static U16x8 mix(const Mixing& m)
    {
        U16x8 mixture = {};
        for (int i = 0; i < 8; i += 4) {
            const int32_t white = m.both[i];
            if (white == 0) continue;
            const Colour s = {{m.abS[i + 2], m.abS[i + 1], m.abS[i]}};
            const Colour b = {{m.asB[i + 2], m.asB[i + 1], m.asB[i]}};
            const Colour mixed = Mode::mixed(s, b, white);
            for (int k = 0; k < 3; ++k)
                mixture[i + k] = static_cast<uint16_t>(mixed.channels[2 - k]);
        }
        return mixture;
    }
};

template <class Mode>
struct Mixed {
    static U16x8 of(const Pair& s, const Pair& b)
    {
        // Targets may have been given channels above their alpha.
        const Pair known(smaller(b.channels, b.alpha));
        const Mixing mixing(s, known);
        const U16x8 mixture = (Mode::mix(mixing) & ~kAlphaLanes) | (mixing.both & kAlphaLanes);
        return sourceShare(s, b) + mixture + targetShare(s, b);
    }
};

// --- The loop -----------------------------------------------------------------------------------

// 16 bits of the share that a result takes, of the first or last two of four pixels.
class Shares {
public:
    explicit Shares(uint32_t opacity) : opacity_(all8(opacity)) {}

    // Reads four levels.
    void take(const uint8_t* levels)
    {
        uint32_t four;
        std::memcpy(&four, levels, sizeof four);
        U32x4 spread = {four, 0, 0, 0};
        spread = zipLowBytes(spread, spread);
        spread = zipLowBytes(spread, spread); // each level four times
        low_ = widenLow(spread);
        high_ = widenHigh(spread);
    }
    U16x8 low() const { return shareOf(low_); }
    U16x8 high() const { return shareOf(high_); }

private:
    // From 255 * 255 to nearly 65536.
    U16x8 shareOf(U16x8 levels) const
    {
        const U16x8 product = levels * opacity_;
        return product + (product >> 7);
    }

    U16x8 opacity_;
    U16x8 low_ = all8(255);
    U16x8 high_ = all8(255);
};

// Times 255 to times 256.
inline U16x8 widened(U16x8 product)
{
    return product + (product >> 8) + (product >> 15);
}

// What a mode makes of two pixels, times 255. Called rather than compiled into a loop for each
// mode: there are many modes, and each call does the work of eight channels.
using PairBlender = U16x8 (*)(U16x8 target, U16x8 layer);

template <class Mode>
U16x8 blendPair(U16x8 target, U16x8 layer)
{
    Pair s(layer);
    s.channels = smaller(s.channels, s.alpha);
    return Mode::of(s, Pair(target));
}

inline U16x8 moved(U16x8 target, U16x8 result, U16x8 share)
{
    return mulHigh(widened(result), share) + mulHigh(target << 8, ~share) + 128;
}

// blender(target, layer) is asked for two pixels at a time.
inline void blendFour(PairBlender blender, Pixel* target, const Pixel* layer, const Shares& shares)
{
    const U32x4 below = load4(target);
    const U32x4 above = load4(layer);
    const U16x8 low = widenLow(below), high = widenHigh(below);
    const U16x8 lowResult = blender(low, widenLow(above));
    const U16x8 highResult = blender(high, widenHigh(above));
    store4(target, narrowHighBytes(moved(low, lowResult, shares.low()),
                                   moved(high, highResult, shares.high())));
}

void blendPixels(PairBlender blender, Pixel* target, const Pixel* layer, const uint8_t* levels,
                 uint32_t opacity, int32_t count)
{
    Shares shares(opacity);
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) {
        if (levels != nullptr) shares.take(levels + i);
        blendFour(blender, target + i, layer + i, shares);
    }
    if (i == count) return;
    Pixel lastTarget[4] = {}, lastLayer[4] = {};
    uint8_t lastLevels[4] = {};
    const size_t rest = static_cast<size_t>(count - i);
    std::copy_n(target + i, rest, lastTarget);
    std::copy_n(layer + i, rest, lastLayer);
    if (levels != nullptr) {
        std::copy_n(levels + i, rest, lastLevels);
        shares.take(lastLevels);
    }
    blendFour(blender, lastTarget, lastLayer, shares);
    std::copy_n(lastTarget, rest, target + i);
}

// --- The normal mode ----------------------------------------------------------------------------
// By the arithmetic that premultiplied paints are blended with, its weights rounded to 1/256.

// Of four levels.
inline U32x4 weightsOf(const uint8_t* levels, U16x8 opacity)
{
    uint32_t four;
    std::memcpy(&four, levels, sizeof four);
    const U32x4 bytes = zipLowBytes(U32x4{four, 0, 0, 0}, U32x4{});
    return (U32x4)refinedWeights((U16x8)zipLow((U16x8)bytes, U16x8{}) << 8, opacity);
}

inline U16x8 cutToAlpha(const Pair& s)
{
    return (U16x8)((I16x8)s.channels < (I16x8)s.alpha ? s.channels : s.alpha);
}

// All of the layer's pixels counts: S + B * (1 - as), rounded to nearest.
struct CoverWhole {
    static U16x8 two(U16x8 from, U16x8 colour)
    {
        const Pair s(colour);
        const U16x8 sum = cutToAlpha(s) * 255 + from * (255 - s.alpha) + 128;
        return sum + (sum >> 8); // / 255, in the high bytes
    }
    void operator()(Pixel* target, const Pixel* layer, const uint8_t*) const
    {
        const U32x4 below = load4(target), above = load4(layer);
        store4(target, narrowHighBytes(two(widenLow(below), widenLow(above)),
                                       two(widenHigh(below), widenHigh(above))));
    }
};

inline void coverByWeights(Pixel* target, const Pixel* layer, U32x4 weights)
{
    const auto move = [](U16x8 from, U16x8 colour, U16x8 weight) {
        return movePremultiplied(from, cutToAlpha(Pair(colour)), weight);
    };
    store4(target, blendLanes(load4(target), load4(layer), weights, move));
}

struct CoverByOpacity {
    U32x4 weights;
    void operator()(Pixel* target, const Pixel* layer, const uint8_t*) const
    {
        coverByWeights(target, layer, weights);
    }
};

struct CoverByLevels {
    U16x8 opacity;
    void operator()(Pixel* target, const Pixel* layer, const uint8_t* levels) const
    {
        coverByWeights(target, layer, weightsOf(levels, opacity));
    }
};

// Sixteen pixels that are all transparent are skipped, and opaque ones copied where all of them
// counts. coverFour(target, layer, levels) blends four.
template <class Cover>
void coverPixels(Pixel* target, const Pixel* layer, const uint8_t* levels, int32_t count,
                 bool copies, Cover coverFour)
{
    constexpr int32_t kBlock = 16;
    int32_t i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        U32x4 all = load4(layer + i), any = all;
        for (int32_t k = 4; k < kBlock; k += 4) {
            const U32x4 four = load4(layer + i + k);
            all &= four;
            any |= four;
        }
        if ((any[0] | any[1] | any[2] | any[3]) >> 24 == 0) continue;
        if (copies && (all[0] & all[1] & all[2] & all[3]) >> 24 == 255) {
            std::copy_n(layer + i, kBlock, target + i);
            continue;
        }
        for (int32_t k = 0; k < kBlock; k += 4)
            coverFour(target + i + k, layer + i + k, levels == nullptr ? nullptr : levels + i + k);
    }
    for (; i < count; i += 4) {
        const size_t few = static_cast<size_t>(std::min(4, count - i));
        Pixel lastTarget[4] = {}, lastLayer[4] = {};
        uint8_t lastLevels[4] = {};
        std::copy_n(target + i, few, lastTarget);
        std::copy_n(layer + i, few, lastLayer);
        if (levels != nullptr) std::copy_n(levels + i, few, lastLevels);
        coverFour(lastTarget, lastLayer, lastLevels);
        std::copy_n(lastTarget, few, target + i);
    }
}

void coverRow(Pixel* target, const Pixel* layer, const uint8_t* levels, uint32_t opacity,
              int32_t count)
{
    const U16x8 opacities = all8(opacity << 8);
    const uint8_t whole[4] = {255, 255, 255, 255};
    if (levels != nullptr)
        coverPixels(target, layer, levels, count, false, CoverByLevels{opacities});
    else if (opacity != 255)
        coverPixels(target, layer, nullptr, count, false,
                    CoverByOpacity{weightsOf(whole, opacities)});
    else
        coverPixels(target, layer, nullptr, count, true, CoverWhole{});
}

// ------------------------------------------------------------------------------------------------

// In the order of MMBlendMode.
constexpr PairBlender kBlenders[] = {
    nullptr, // has a loop of its own
    blendPair<Mixed<Multiply>>,
    blendPair<Mixed<Screen>>,
    blendPair<Mixed<Overlay>>,
    blendPair<Mixed<Darken>>,
    blendPair<Mixed<Lighten>>,
    blendPair<Mixed<ByChannel<dodge>>>,
    blendPair<Mixed<ByChannel<burn>>>,
    blendPair<Mixed<HardLight>>,
    blendPair<Mixed<ByChannel<softLight>>>,
    blendPair<Mixed<Difference>>,
    blendPair<Mixed<Exclusion>>,
    blendPair<Mixed<ByColour<HueOfLayer>>>,
    blendPair<Mixed<ByColour<SaturationOfLayer>>>,
    blendPair<Mixed<ByColour<ColourOfLayer>>>,
    blendPair<Mixed<ByColour<LuminosityOfLayer>>>,
    blendPair<Clear>,
    blendPair<Copy>,
    blendPair<Destination>,
    blendPair<DestinationOver>,
    blendPair<SourceIn>,
    blendPair<DestinationIn>,
    blendPair<SourceOut>,
    blendPair<DestinationOut>,
    blendPair<SourceAtop>,
    blendPair<DestinationAtop>,
    blendPair<Xor>,
    blendPair<Plus>,
};
static_assert(sizeof kBlenders / sizeof *kBlenders == kBlendPlus + 1, "one for each mode");

} // namespace

void blendRow(MMBlendMode mode, Pixel* target, const Pixel* layer, const uint8_t* levels,
              uint32_t opacity, int32_t count)
{
    if (mode == kBlendNormal || mode > kBlendPlus)
        return coverRow(target, layer, levels, opacity, count);
    blendPixels(kBlenders[mode], target, layer, levels, opacity, count);
}

} // namespace Graphics2D
} // namespace KAVO
