// SPDX-License-Identifier: MIT
// How a layer meets what lies below it.
#pragma once

#include <cstdint>

namespace KAVO {
namespace Graphics2D {

// Below, S and as are a channel and the alpha of the layer's pixel, B and ab those of the target's,
// all premultiplied, from 0 to 1.
enum MMBlendMode : uint8_t {
    // The modes of CSS, with their formulas. A mode mixes the colours where both are: the result is
    // S * (1 - ab) + as * ab * mixed(B / ab, S / as) + B * (1 - as). So where the target's alpha
    // byte is 0, also over pixels that are meant to be opaque but do not say so, each of them is
    // kBlendNormal.
    kBlendNormal = 0,
    kBlendMultiply,
    kBlendScreen,
    kBlendOverlay,
    kBlendDarken,
    kBlendLighten,
    kBlendColourDodge,
    kBlendColourBurn,
    kBlendHardLight,
    kBlendSoftLight,
    kBlendDifference,
    kBlendExclusion,
    kBlendHue,        // of the layer, with the saturation and the luminosity of the target
    kBlendSaturation, // and so on
    kBlendColour,     // hue and saturation
    kBlendLuminosity,

    // The operators of Porter and Duff. Those marked with * change the target also where the layer
    // is transparent, within its rectangle.
    kBlendClear,           // * 0
    kBlendCopy,            // * S
    kBlendDestination,     //   B
    kBlendDestinationOver, //   S * (1 - ab) + B
    kBlendSourceIn,        // * S * ab
    kBlendDestinationIn,   // * B * as
    kBlendSourceOut,       // * S * (1 - ab)
    kBlendDestinationOut,  //   B * (1 - as)
    kBlendSourceAtop,      //   S * ab + B * (1 - as)
    kBlendDestinationAtop, // * S * (1 - ab) + B * as
    kBlendXor,             //   S * (1 - ab) + B * (1 - as)
    kBlendPlus             //   S + B, at most 1
};

} // namespace Graphics2D
} // namespace KAVO
