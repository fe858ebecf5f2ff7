// SPDX-License-Identifier: MIT
// Image files of a few bytes, as data URIs in drawings.
#include "tests/svg/Drawing.h"

using KAVO::Svg::MMSvgDocument;
using KAVO::Svg::Picture;

namespace {

#ifdef MM2D_WITH_GIF
constexpr bool kHasGif = true;
#else
constexpr bool kHasGif = false;
#endif
#ifdef MM2D_WITH_WEBP
constexpr bool kHasWebp = true;
#else
constexpr bool kHasWebp = false;
#endif

struct Image {
    const char* kind;
    bool known;
    std::string base64;
};

// A picture of 40 by 9 that lies pixel on pixel. Where its format is not known, that is said.
Picture drawnImage(const Image& image)
{
    MMSvgDocument document;
    EXPECT_TRUE(document.loadBytes("<svg width='40' height='9'><image href='data:;base64," +
                                   image.base64 + "'/></svg>"));
    const Picture picture = drawn(document, 40, 9);
    EXPECT_EQ(document.shortcomings().empty(), image.known) << image.kind;
    for (const auto& shortcoming : document.shortcomings())
        EXPECT_EQ(shortcoming.what.rfind("image that is " + std::string(image.kind), 0), 0u);
    return picture;
}

// A header for one pixel with the colours red and white, a control block, and the pixel: 0.
const std::string kGifStart = "R0lGODlhAQABAIAAAP8AAP///yH5BA";
const std::string kGifEnd = "AAAAALAAAAAABAAEAAAICRAEAOw==";

TEST(SvgImageFormats, SinglePixels)
{
    const struct {
        Image image;
        uint32_t over; // white
    } cases[] = {
        {{"gif", kHasGif, kGifStart + "A" + kGifEnd}, 0xFF0000},
        // The colour 0 is transparent.
        {{"gif", kHasGif, kGifStart + "E" + kGifEnd}, 0xFFFFFF},
        {{"webp", kHasWebp, "UklGRh4AAABXRUJQVlA4TBEAAAAvAAAAAAdQwIIUuP+BiOh/AAA="}, 0x2080C0},
        // The same at 128/255 over white, by hand: 255 + 128/255 (c - 255).
        {{"webp", kHasWebp, "UklGRh4AAABXRUJQVlA4TBEAAAAvAUAAEAdQwIIUuICBiOh/AAA="}, 0x8FBFDF}};
    for (const auto& c : cases) {
        const uint32_t pixel = drawnImage(c.image).at(0, 0);
        const uint32_t expected = c.image.known ? c.over : 0xFFFFFFu;
        for (int shift = 0; shift < 24; shift += 8)
            EXPECT_NEAR(pixel >> shift & 255, expected >> shift & 255, 1) << c.image.kind;
    }
}

// Blue rows from 0 to 3 and white ones from 4 to 8, in the order 0, 8, 4, 2, 6, 1, 3, 5, 7.
TEST(SvgImageFormats, InterlacedRowsFindTheirPlace)
{
    const Picture picture = drawnImage(
        {"gif", kHasGif,
         "R0lGODlhKAAJAPABACCAwP///yH5BAAAAAAALAAAAAAoAAkAQAIahI+pyxgPo5y02ovza7xzDWreSJb"
         "mF6bqqhUAOw=="});
    for (int y = 0; y < 9 && kHasGif; ++y)
        EXPECT_EQ(picture.at(20, y) & 0xFFFFFF, y < 4 ? 0x2080C0u : 0xFFFFFFu) << y;
}

// Cut off and changed files draw something or are named.
TEST(SvgImageFormats, DamagedFilesDoNoHarm)
{
    const std::string files[] = {kGifStart + "A" + kGifEnd,
                                 "UklGRh4AAABXRUJQVlA4TBEAAAAvAAAAAAdQwIIUuP+BiOh/AAA="};
    for (const std::string& file : files)
        for (size_t i = 8; i < file.size(); ++i)
            for (const char* change : {"", "/", "AAAA"}) {
                const bool cut = *change == '\0';
                const std::string changed =
                    file.substr(0, i) + change + (cut ? "" : file.substr(i + 1));
                MMSvgDocument document;
                ASSERT_TRUE(
                    document.loadBytes("<svg width='40' height='9'><image href='data:;base64," +
                                       changed + "'/></svg>"));
                drawn(document, 40, 9);
            }
}

} // namespace
