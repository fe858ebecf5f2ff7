// SPDX-License-Identifier: MIT
// A colour that changes by a constant per pixel. Internal.
#pragma once

#include "graphics2d/LevelTable.h"
#include "graphics2d/strips/Channels.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

// Writes count colours as opaque pixels, and unless alphas is null their 8.8 alphas, with the last
// of which come some that mean nothing, to the end of a vector.
void writeRamp(const RampStart& ramp, Pixel* out, uint32_t* alphas, int32_t count);

// Written piece by piece by a level's code.
class ColourRamp {
public:
    ColourRamp(const LevelTable& level, Channels first, Channels step) : level_(level), step_(step)
    {
        store4(start_.channels, first);
        store4(start_.steps, step);
    }

    // Writes the next count pixels, as writeRamp does.
    void write(Pixel* out, uint32_t* alphas, int32_t count)
    {
        level_.writeRamp(start_, out, alphas, count);
        const Channels next = load4(start_.channels) + step_ * static_cast<uint32_t>(count);
        store4(start_.channels, next);
    }

private:
    const LevelTable& level_;
    RampStart start_;
    Channels step_;
};

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
