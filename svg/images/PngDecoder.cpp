// SPDX-License-Identifier: MIT
// PNG files, through libpng.
#include "svg/images/Decoders.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <png.h>

namespace KAVO {
namespace Svg {

namespace {

// What a read in progress holds, released on every way out.
struct Reader {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::string_view bytes;
    std::string problem;
    std::vector<png_bytep> rows;

    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

void readBytes(png_structp png, png_bytep out, size_t count)
{
    auto& reader = *static_cast<Reader*>(png_get_io_ptr(png));
    if (count > reader.bytes.size()) png_error(png, "breaks off");
    std::memcpy(out, reader.bytes.data(), count);
    reader.bytes.remove_prefix(count);
}

void onError(png_structp png, png_const_charp message)
{
    auto& reader = *static_cast<Reader*>(png_get_error_ptr(png));
    if (reader.problem.empty()) reader.problem = message;
    png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

// Eight bits a channel with alpha, in the byte order of our pixels.
void requestPixels(Reader& reader)
{
    png_set_expand(reader.png);
    png_set_scale_16(reader.png);
    png_set_gray_to_rgb(reader.png);
    if (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__) {
        png_set_bgr(reader.png);
        png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_AFTER);
    } else {
        png_set_swap_alpha(reader.png);
        png_set_add_alpha(reader.png, 0xFF, PNG_FILLER_BEFORE);
    }
    png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
}

// Nothing here has a destructor that a jump would pass over.
void readPicture(Reader& reader, uint64_t mostPixels, Picture& picture)
{
    if (setjmp(png_jmpbuf(reader.png))) return;
    png_read_info(reader.png, reader.info);
    const uint64_t width = png_get_image_width(reader.png, reader.info);
    const uint64_t height = png_get_image_height(reader.png, reader.info);
    if (width > kLargestSide || height > kLargestSide || width * height > mostPixels)
        png_error(reader.png, "is too large");
    requestPixels(reader);
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.assign(width * height, 0);
    reader.rows.resize(height);
    for (size_t y = 0; y < height; ++y)
        reader.rows[y] = reinterpret_cast<png_bytep>(&picture.pixels[y * width]);
    png_read_image(reader.png, reader.rows.data());
}

} // namespace

std::string decodePng(std::string_view bytes, uint64_t mostPixels, Picture& picture)
{
    Reader reader;
    reader.bytes = bytes;
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, onError, onWarning);
    reader.info = reader.png ? png_create_info_struct(reader.png) : nullptr;
    if (!reader.info) return "out of memory";
    png_set_read_fn(reader.png, &reader, readBytes);
    readPicture(reader, mostPixels, picture);
    picture.hasAlpha = std::any_of(picture.pixels.begin(), picture.pixels.end(),
                                   [](uint32_t pixel) { return pixel >> 24 != 255; });
    return reader.problem;
}

} // namespace Svg
} // namespace KAVO
