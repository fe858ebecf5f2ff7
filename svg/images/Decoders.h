// SPDX-License-Identifier: MIT
// Pictures from the bytes of image files.
#pragma once

#include "svg/images/Picture.h"

#include <string>
#include <string_view>

namespace KAVO {
namespace Svg {

// The kind of file that the first bytes show: "png", "jpeg", "gif", "webp", "svg" or "".
std::string_view kindOf(std::string_view bytes);

// Each returns an empty string, or what went wrong. A picture of more pixels than the limit is not
// decoded; one that breaks off is kept up to there.
std::string decodePng(std::string_view bytes, uint64_t mostPixels, Picture& picture);
std::string decodeJpeg(std::string_view bytes, uint64_t mostPixels, Picture& picture);
// Say that they are left out when the build found no library for them.
std::string decodeGif(std::string_view bytes, uint64_t mostPixels, Picture& picture);
std::string decodeWebp(std::string_view bytes, uint64_t mostPixels, Picture& picture);

} // namespace Svg
} // namespace KAVO
