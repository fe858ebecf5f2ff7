// SPDX-License-Identifier: MIT
// JPEG files, through libjpeg-turbo.
#include "svg/images/Decoders.h"

#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>

namespace KAVO {
namespace Svg {

namespace {

// What a read in progress holds, released on every way out.
struct Reader {
    jpeg_decompress_struct jpeg = {};
    jpeg_error_mgr errors = {};
    jmp_buf failed;
    char message[JMSG_LENGTH_MAX] = "";

    ~Reader() { jpeg_destroy_decompress(&jpeg); }
};

void onError(j_common_ptr common)
{
    auto& reader = *static_cast<Reader*>(common->client_data);
    common->err->format_message(common, reader.message);
    std::longjmp(reader.failed, 1);
}

void onMessage(j_common_ptr) {}

// The order in which the library writes channels so that they are our pixels in memory.
constexpr J_COLOR_SPACE orderOfPixels()
{
    return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? JCS_EXT_BGRA : JCS_EXT_ARGB;
}

// Inks as they are printed: without a profile, less light for each.
uint32_t fromInks(const JSAMPLE* inks, bool inverted)
{
    uint32_t pixel = 0xFF;
    const auto level = [&](int i) {
        return static_cast<uint32_t>(inverted ? inks[i] : 255 - inks[i]);
    };
    for (int i = 0; i < 3; ++i)
        pixel = pixel << 8 | (level(i) * level(3) + 127) / 255;
    return pixel;
}

// Nothing here has a destructor that a jump would pass over.
void readPicture(Reader& reader, std::string_view bytes, uint64_t mostPixels, Picture& picture)
{
    jpeg_decompress_struct& jpeg = reader.jpeg;
    if (setjmp(reader.failed)) return;
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    jpeg_read_header(&jpeg, TRUE);
    const uint64_t width = jpeg.image_width;
    const uint64_t height = jpeg.image_height;
    if (width > kLargestSide || height > kLargestSide || width * height > mostPixels) {
        std::snprintf(reader.message, sizeof reader.message, "is too large");
        return;
    }
    const bool inks = jpeg.num_components == 4;
    jpeg.out_color_space = inks ? JCS_CMYK : orderOfPixels();
    jpeg_start_decompress(&jpeg);
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.assign(width * height, 0xFF000000);
    while (jpeg.output_scanline < jpeg.output_height) {
        uint32_t* row = &picture.pixels[jpeg.output_scanline * width];
        auto* samples = reinterpret_cast<JSAMPROW>(row);
        jpeg_read_scanlines(&jpeg, &samples, 1);
        if (!inks) continue;
        for (size_t x = 0; x < width; ++x)
            row[x] = fromInks(samples + 4 * x, jpeg.saw_Adobe_marker);
    }
    jpeg_finish_decompress(&jpeg);
}

} // namespace

std::string decodeJpeg(std::string_view bytes, uint64_t mostPixels, Picture& picture)
{
    Reader reader;
    reader.jpeg.err = jpeg_std_error(&reader.errors);
    reader.jpeg.client_data = &reader;
    reader.errors.error_exit = onError;
    reader.errors.output_message = onMessage;
    readPicture(reader, bytes, mostPixels, picture);
    return reader.message;
}

} // namespace Svg
} // namespace KAVO
