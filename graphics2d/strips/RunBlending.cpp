// SPDX-License-Identifier: MIT
#include "graphics2d/strips/RunBlending.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

// Replaces the pixels by the results of blended(backgrounds, i), a vector at a time.
template <class Rule, class Blended>
inline void blendBy(BlendedRun run, Blended blended)
{
    Pixel* const pixels = run.pixels;
    int32_t i = 0;
    for (; i + kLanes <= run.pairs; i += kLanes)
        store(pixels + i, blended(load<PixelVector>(pixels + i + Rule::kBackground), i));
    for (; i < run.count; i += kFewLanes) {
        const int32_t rest = std::min(run.count - i, kFewLanes);
        const bool isWhole = kLanes > kFewLanes && i + kFewLanes <= run.pairs;
        Pixel few[kFewLanes] = {};
        if (!isWhole)
            for (int32_t k = 0; k < rest; ++k)
                few[k] = pixels[i + k < run.pairs ? i + k + Rule::kBackground : i + k];
        const auto result =
            blended(load<FewPixels>(isWhole ? pixels + i + Rule::kBackground : few), i);
        isWhole ? store(pixels + i, result) : storeFew(pixels + i, result, rest);
    }
}

// The classic rule's weights. The products fit 16 bits; they are the exact weight times 256, and
// reach 0x7F80 just when the rounded weight reaches 128.
template <class Pixels>
inline Pixels blendedByAlpha(ClassicBlend, Pixels backgrounds, Pixels colours, uint32_t opacity)
{
    if constexpr (sizeof(Pixels) > sizeof(Pixel)) {
        using Lanes = decltype(widenLow(colours));
        const Lanes products =
            (Lanes)alphasInBothHalves(colours) * (Lanes{} + static_cast<uint16_t>(opacity));
        const Lanes weights = (products + 0x80) >> 8;
        return blendPairs<ClassicBlend>(backgrounds, colours, (Pixels)(weights + (weights >> 7)));
    } else {
        const uint32_t weight = ((colours >> 24) * opacity + 0x80) >> 8;
        return blendPixel<ClassicBlend>(backgrounds, colours, weight + (weight >> 7));
    }
}

template <class Pixels>
inline Pixels blendedByAlpha(RefinedBlend, Pixels backgrounds, Pixels colours, uint32_t opacity)
{
#if defined(__AVX2__)
    if constexpr (sizeof(Pixels) > sizeof(U32x4)) {
        using Lanes = decltype(widenLow(colours));
        const Lanes alphas = (Lanes)alphasInBothHalves(colours) << 8;
        const Lanes weights = refinedWeights(Lanes{} + static_cast<uint16_t>(opacity), alphas);
        return blendPairs<RefinedBlend>(backgrounds, colours | kOpaque, (Pixels)weights);
    }
#endif
    return blendPixels<RefinedBlend>(backgrounds, colours | kOpaque,
                                     weighedAlphas(colours >> 24 << 8, opacity));
}

template <class Rule>
inline void blendAllByAlpha(BlendedRun run, const Pixel* colours, uint32_t opacity)
{
    blendBy<Rule>(run, [=](auto backgrounds, int32_t i) {
        return blendedByAlpha(Rule{}, backgrounds, load<decltype(backgrounds)>(colours + i),
                              opacity);
    });
}

} // namespace

template <class Rule>
void blendByWeights(BlendedRun run, const Pixel* colours, const uint32_t* weights)
{
    blendBy<Rule>(run, [=](auto backgrounds, int32_t i) {
        using Pixels = decltype(backgrounds);
        return blendPixels<Rule>(backgrounds, load<Pixels>(colours + i), load<Pixels>(weights + i));
    });
}

template void blendByWeights<ClassicBlend>(BlendedRun, const Pixel*, const uint32_t*);
template void blendByWeights<RefinedBlend>(BlendedRun, const Pixel*, const uint32_t*);

template <>
void blendByAlpha<ClassicBlend>(BlendedRun run, const Pixel* colours, uint32_t opacity)
{
    blendAllByAlpha<ClassicBlend>(run, colours, opacity);
}

// Long stretches of many images are opaque, or transparent.
template <>
void blendByAlpha<RefinedBlend>(BlendedRun run, const Pixel* colours, uint32_t opacity)
{
    constexpr int32_t kStretch = 128; // a multiple of any vector's
    const bool isWhole = refinedWeight(opacity, kWholeAlpha) == 256;
    for (int32_t i = 0; i < run.count; i += kStretch) {
        const int32_t length = std::min(run.count - i, kStretch);
        if (isWhole && haveAlpha(colours + i, length, 0xFF))
            std::memcpy(run.pixels + i, colours + i, static_cast<size_t>(length) * sizeof(Pixel));
        else if (!haveAlpha(colours + i, length, 0))
            blendAllByAlpha<RefinedBlend>({run.pixels + i, length, length}, colours + i, opacity);
    }
}

void blendPremultipliedRun(BlendedRun run, const Pixel* colours, const uint32_t* weights)
{
    blendBy<RefinedBlend>(run, [=](auto backgrounds, int32_t i) {
        using Pixels = decltype(backgrounds);
        return blendPremultiplied(backgrounds, load<Pixels>(colours + i),
                                  load<Pixels>(weights + i));
    });
}

void weighAlphaRun(uint32_t* alphas, uint32_t opacity, int32_t count)
{
    for (int32_t i = 0; i < count; i += kLanes)
        store(alphas + i, weighedAlphas(load<PixelVector>(alphas + i), opacity));
}

bool haveAlpha(const Pixel* colours, int32_t count, uint32_t alpha)
{
    const Pixel first = colours[0];
    if (first >> 24 != alpha) return false;
    PixelVector differences = {};
    int32_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
        differences |= load<PixelVector>(colours + i) ^ first;
    Pixel difference = 0;
    for (; i < count; ++i)
        difference |= colours[i] ^ first;
    return difference >> 24 == 0 && isZero(differences >> 24);
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
