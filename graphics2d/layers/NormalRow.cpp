// SPDX-License-Identifier: MIT
// The mode of nearly all layers, which alone is there for each level of the processor.
#include "graphics2d/layers/NormalRow.h"

#include "graphics2d/layers/BlendLoop.h"

namespace KAVO {
namespace Graphics2D {
inline namespace MM2D_LEVEL {

namespace {

struct Normal {
    static constexpr bool kHidesByAlpha = true;
    static constexpr bool kReplaces = true;

    static Lanes result(const Operands& of) { return of.layer * 255; }
};

} // namespace

void blendNormal(Pixel* target, const Pixel* layer, const uint8_t* levels, uint32_t opacity,
                 int32_t count)
{
    blendPadded({target, layer, levels, opacity, count, true},
                [](const Row& row) { blendVectors(Normal{}, row); });
}

} // namespace MM2D_LEVEL
} // namespace Graphics2D
} // namespace KAVO
