// SPDX-License-Identifier: MIT
// WebP files, through libwebp.
#include "svg/images/Decoders.h"

#ifdef MM2D_WITH_WEBP
#include <webp/decode.h>
#endif

namespace KAVO {
namespace Svg {

#ifdef MM2D_WITH_WEBP

std::string decodeWebp(std::string_view bytes, uint64_t mostPixels, Picture& picture)
{
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    WebPBitstreamFeatures features;
    if (WebPGetFeatures(data, bytes.size(), &features) != VP8_STATUS_OK) return "is damaged";
    if (features.has_animation) return "is an animated webp";
    if (features.width <= 0 || features.height <= 0) return "is empty";
    if (features.width > kLargestSide || features.height > kLargestSide ||
        static_cast<uint64_t>(features.width) * static_cast<uint64_t>(features.height) > mostPixels)
        return "is too large";
    picture = Picture(features.width, features.height, 0);
    picture.hasAlpha = features.has_alpha != 0;
    // Our pixels in memory.
    const auto decode =
        __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? WebPDecodeBGRAInto : WebPDecodeARGBInto;
    auto* pixels = reinterpret_cast<uint8_t*>(picture.pixels.data());
    const size_t size = picture.pixels.size() * sizeof(uint32_t);
    if (!decode(data, bytes.size(), pixels, size, features.width * 4)) return "is damaged";
    return "";
}

#else

std::string decodeWebp(std::string_view, uint64_t, Picture&)
{
    return "is webp";
}

#endif

} // namespace Svg
} // namespace KAVO
