// SPDX-License-Identifier: MIT
// Copies of images at half their size, for drawing them much smaller than they are.
//
// A filter mixes the texels next to a pixel's centre and no others, so an image drawn below half
// its size loses texels, and glitters when it moves. By the refined rules drawImage draws from a
// halved copy there; a pattern paint can do so with a copy made once:
//
//     std::vector<KAVO::Pixel> room(reducedImageRoom(image, transform));
//     reduceImage(image, transform, room.data());
//     setPattern(paint, image, transform, kFilterBilinear, true);
#pragma once

#include "../math/Matrix2D.h"
#include "MMPixmap.h"

namespace KAVO {
namespace Graphics2D {

#pragma GCC visibility push(default)

// The number of pixels that reduceImage needs; 0 when it would leave the image as it is.
uint32_t reducedImageRoom(const MMPixmap& image, const Matrix2D& transform);

// Replaces an image by a copy halved as often as it stays at least as large as it is drawn, in
// room, and the transform of its texels to match. Each texel of a halved image is the mean of 2 by
// 2, by their alpha when the image has one. An image without texels, one that is not drawn below
// half its size, and a null room change nothing.
void reduceImage(MMPixmap& image, Matrix2D& transform, Pixel* room);

#pragma GCC visibility pop

} // namespace Graphics2D
} // namespace KAVO
