// SPDX-License-Identifier: MIT
#include "common/Picture.h"

#include <algorithm>
#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <png.h>

namespace {

// libpng's simplified interface with the byte order of our pixels in memory.
constexpr bool kAlphaComesLast = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
constexpr png_uint_32 formatOfPixels()
{
    return kAlphaComesLast ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
}

// Releases what libpng holds on every way out.
struct PngImage {
    png_image image{};
    PngImage() { image.version = PNG_IMAGE_VERSION; }
    ~PngImage() { png_image_free(&image); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
};

bool isOpaque(const Picture& picture)
{
    return std::all_of(picture.pixels.begin(), picture.pixels.end(),
                       [](uint32_t pixel) { return pixel >> 24 == 255; });
}

std::string finishReading(PngImage& png, Picture& picture)
{
    if (png.image.width > static_cast<png_uint_32>(kLargestSide) ||
        png.image.height > static_cast<png_uint_32>(kLargestSide))
        return "image is too large";
    png.image.format = formatOfPixels();
    Picture result(static_cast<int>(png.image.width), static_cast<int>(png.image.height), 0);
    if (!png_image_finish_read(&png.image, nullptr, result.pixels.data(), 0, nullptr))
        return png.image.message;
    result.hasAlpha = !isOpaque(result);
    picture = std::move(result);
    return "";
}

// What a file that is being written holds, released on every way out.
struct Writer {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::FILE* file = nullptr;
    std::string problem;

    ~Writer()
    {
        png_destroy_write_struct(&png, &info);
        if (file != nullptr) std::fclose(file);
    }
};

void onWritingError(png_structp png, png_const_charp message)
{
    auto& writer = *static_cast<Writer*>(png_get_error_ptr(png));
    writer.problem = errno != 0 ? std::strerror(errno) : message;
    png_longjmp(png, 1);
}

void onWritingWarning(png_structp, png_const_charp) {}

// Nothing here has a destructor that a jump would pass over.
void writePicture(Writer& writer, const Picture& picture, bool opaque)
{
    if (setjmp(png_jmpbuf(writer.png))) return;
    png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(picture.width),
                 static_cast<png_uint_32>(picture.height), 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Areas of one colour are smaller without filters, and written in half the time.
    png_set_filter(writer.png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_write_info(writer.png, writer.info);
    if (kAlphaComesLast) png_set_bgr(writer.png);
    if (opaque)
        png_set_filler(writer.png, 0, kAlphaComesLast ? PNG_FILLER_AFTER : PNG_FILLER_BEFORE);
    else if (!kAlphaComesLast)
        png_set_swap_alpha(writer.png);
    const auto* row = reinterpret_cast<png_const_bytep>(picture.pixels.data());
    for (int y = 0; y < picture.height; ++y, row += 4 * picture.width)
        png_write_row(writer.png, row);
    png_write_end(writer.png, writer.info);
}

std::string writeFile(const std::string& fileName, const Picture& picture)
{
    Writer writer;
    errno = 0;
    writer.file = std::fopen(fileName.c_str(), "wb");
    if (writer.file == nullptr) return std::strerror(errno);
    writer.png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer, onWritingError, onWritingWarning);
    writer.info = writer.png != nullptr ? png_create_info_struct(writer.png) : nullptr;
    if (writer.info == nullptr) return "out of memory";
    png_init_io(writer.png, writer.file);
    writePicture(writer, picture, isOpaque(picture));
    if (!writer.problem.empty()) return writer.problem;
    const bool isWritten = std::fclose(writer.file) == 0;
    writer.file = nullptr;
    return isWritten ? "" : std::strerror(errno);
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
    const std::string problem = writeFile(fileName, picture);
    std::error_code ignored;
    if (!problem.empty() && std::filesystem::is_regular_file(fileName, ignored))
        std::filesystem::remove(fileName, ignored); // not half a picture
    return problem;
}

void makeOpaque(Picture& picture)
{
    for (uint32_t& pixel : picture.pixels)
        pixel |= 0xFF000000;
}
