// SPDX-License-Identifier: MIT
#include "common/Picture.h"

#include <algorithm>
#include <png.h>

namespace {

// libpng's simplified interface with the byte order of our pixels in memory.
constexpr png_uint_32 formatOfPixels()
{
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    return PNG_FORMAT_BGRA;
#else
    return PNG_FORMAT_ARGB;
#endif
}

// Releases what libpng holds on every way out.
struct PngImage {
    png_image image{};
    PngImage() { image.version = PNG_IMAGE_VERSION; }
    ~PngImage() { png_image_free(&image); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
};

std::string finishReading(PngImage& png, Picture& picture)
{
    if (png.image.width > static_cast<png_uint_32>(kLargestSide) ||
        png.image.height > static_cast<png_uint_32>(kLargestSide))
        return "image is too large";
    png.image.format = formatOfPixels();
    Picture result(static_cast<int>(png.image.width), static_cast<int>(png.image.height), 0);
    if (!png_image_finish_read(&png.image, nullptr, result.pixels.data(), 0, nullptr))
        return png.image.message;
    result.hasAlpha = std::any_of(result.pixels.begin(), result.pixels.end(),
                                  [](uint32_t pixel) { return pixel >> 24 != 255; });
    picture = std::move(result);
    return "";
}

} // namespace

std::string readPng(const std::string& fileName, Picture& picture)
{
    PngImage png;
    if (!png_image_begin_read_from_file(&png.image, fileName.c_str())) return png.image.message;
    return finishReading(png, picture);
}

std::string readPng(const uint8_t* data, size_t size, Picture& picture)
{
    PngImage png;
    if (!png_image_begin_read_from_memory(&png.image, data, size)) return png.image.message;
    return finishReading(png, picture);
}

std::string writePng(const std::string& fileName, const Picture& picture)
{
    PngImage png;
    png.image.width = static_cast<png_uint_32>(picture.width);
    png.image.height = static_cast<png_uint_32>(picture.height);
    png.image.format = formatOfPixels();
    if (!png_image_write_to_file(&png.image, fileName.c_str(), 0, picture.pixels.data(), 0,
                                 nullptr))
        return png.image.message;
    return "";
}

void makeOpaque(Picture& picture)
{
    for (uint32_t& pixel : picture.pixels)
        pixel |= 0xFF000000;
}
