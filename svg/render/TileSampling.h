// SPDX-License-Identifier: MIT
// Repeats one tile all over a picture.
#pragma once

#include "svg/geometry/Affine.h"
#include "svg/geometry/PixelArea.h"
#include "svg/images/Picture.h"

namespace KAVO {
namespace Svg {

// Samples along each side of a pixel. A tile is best drawn with as many texels in a pixel's length.
constexpr int kTileSamples = 4;

// Sets the pixels of the area to the mean of the texels at their samples. toTile maps device
// pixels to tiles: each is a square of side 1, the first at the origin. Both pictures are
// premultiplied.
void repeatTile(const Picture& tile, const Affine& toTile, const PixelArea& area, Picture& picture);

// The same for a tile whose pixels lie on those of the picture: one copy has its corner at the left
// and top.
void copyTile(const Picture& tile, int left, int top, const PixelArea& area, Picture& picture);

} // namespace Svg
} // namespace KAVO
