// SPDX-License-Identifier: MIT
// Between sRGB and the linear light that its values stand for.
#pragma once

#include <array>
#include <cstdint>

namespace KAVO {
namespace Svg {

// A curve from 16 bits to 16 bits, as chords between 4097 of its points: off by one at most, for
// the curve of sRGB is a straight line where the other is steep.
class LightCurve {
public:
    static const LightCurve& toLinear();
    static const LightCurve& toSrgb();

    uint16_t operator()(uint16_t value) const
    {
        const uint32_t low = points_[value >> 4];
        const uint32_t high = points_[(value >> 4) + 1];
        return static_cast<uint16_t>(low + (((high - low) * (value & 15u) + 8) >> 4));
    }

private:
    explicit LightCurve(double (*curve)(double));

    std::array<uint16_t, 4097> points_; // of the values 0, 16, 32 to 65536
};

} // namespace Svg
} // namespace KAVO
