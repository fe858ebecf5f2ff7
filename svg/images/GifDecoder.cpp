// SPDX-License-Identifier: MIT
// GIF files, through giflib: the first picture of each.
#include "svg/images/Decoders.h"

#ifdef MM2D_WITH_GIF
#include <algorithm>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <optional>
#endif

namespace KAVO {
namespace Svg {

#ifdef MM2D_WITH_GIF

namespace {

struct Closer {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, Closer>;

int readBytes(GifFileType* gif, GifByteType* to, int count)
{
    auto& rest = *static_cast<std::string_view*>(gif->UserData);
    const size_t given = std::min(rest.size(), static_cast<size_t>(std::max(0, count)));
    std::memcpy(to, rest.data(), given);
    rest.remove_prefix(given);
    return static_cast<int>(given);
}

// Reads on to the first picture; transparent gets the colour that shows nothing. False when there
// is none.
bool findPicture(GifFileType* gif, std::optional<uint32_t>& transparent)
{
    GifRecordType record = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(gif, &record) == GIF_OK) {
        if (record == IMAGE_DESC_RECORD_TYPE) return DGifGetImageDesc(gif) == GIF_OK;
        if (record != EXTENSION_RECORD_TYPE) return false;
        int code = 0;
        GifByteType* block = nullptr; // its first byte is its length
        if (DGifGetExtension(gif, &code, &block) != GIF_OK) return false;
        GraphicsControlBlock control;
        if (code == GRAPHICS_EXT_FUNC_CODE && block &&
            DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK &&
            control.TransparentColor != NO_TRANSPARENT_COLOR)
            transparent = static_cast<uint32_t>(control.TransparentColor);
        while (block) {
            if (DGifGetExtensionNext(gif, &block) != GIF_OK) return false;
        }
    }
    return false;
}

// The rows in the order in which the file has them.
std::vector<int> rowsInOrder(int height, bool interlaced)
{
    std::vector<int> rows;
    const auto take = [&](int from, int step) {
        for (int y = from; y < height; y += step)
            rows.push_back(y);
    };
    if (!interlaced) {
        take(0, 1);
        return rows;
    }
    take(0, 8);
    take(4, 8);
    take(2, 4);
    take(1, 2);
    return rows;
}

} // namespace

std::string decodeGif(std::string_view bytes, uint64_t mostPixels, Picture& picture)
{
    const Gif gif(DGifOpen(&bytes, readBytes, nullptr));
    if (!gif) return "is damaged";
    const int width = gif->SWidth;
    const int height = gif->SHeight;
    if (width <= 0 || height <= 0) return "is empty";
    if (width > kLargestSide || height > kLargestSide ||
        static_cast<uint64_t>(width) * static_cast<uint64_t>(height) > mostPixels)
        return "is too large";
    std::optional<uint32_t> transparent;
    if (!findPicture(gif.get(), transparent)) return "is damaged";
    const GifImageDesc& part = gif->Image;
    const ColorMapObject* colours = part.ColorMap ? part.ColorMap : gif->SColorMap;
    if (!colours || part.Width <= 0 || part.Height <= 0 || part.Width > kLargestSide ||
        part.Height > kLargestSide)
        return "is damaged";

    picture = Picture(width, height, 0);
    picture.hasAlpha = true;
    std::vector<GifPixelType> indices(static_cast<size_t>(part.Width));
    for (const int row : rowsInOrder(part.Height, part.Interlace)) {
        if (DGifGetLine(gif.get(), indices.data(), part.Width) != GIF_OK) return "breaks off";
        const int y = part.Top + row;
        for (int i = 0; i < part.Width; ++i) {
            const int x = part.Left + i;
            const uint32_t index = indices[static_cast<size_t>(i)];
            const bool shown = x >= 0 && x < width && y >= 0 && y < height &&
                               index < static_cast<uint32_t>(colours->ColorCount) &&
                               index != transparent;
            if (!shown) continue;
            const GifColorType& c = colours->Colors[index];
            picture.at(x, y) = 0xFF000000 | static_cast<uint32_t>(c.Red) << 16 |
                               static_cast<uint32_t>(c.Green) << 8 | c.Blue;
        }
    }
    return "";
}

#else

std::string decodeGif(std::string_view, uint64_t, Picture&)
{
    return "is gif";
}

#endif

} // namespace Svg
} // namespace KAVO
