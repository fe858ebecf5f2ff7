// SPDX-License-Identifier: MIT
// Images that need no scaling arrive in the picture as they are.
#include "common/Picture.h"
#include "tests/svg/Drawing.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>

namespace {

constexpr int kSide = 40;

int channel(uint32_t pixel, int k)
{
    return static_cast<int>((pixel >> (8 * k)) & 0xFF);
}

// A picture of noise in a file, drawn by a document that places it by x and y or by a transform.
class PlacedNoise {
public:
    PlacedNoise()
    {
        std::mt19937 random(7);
        for (uint32_t& pixel : noise.pixels)
            pixel = static_cast<uint32_t>(random()) | 0xFF000000;
    }

    Picture drawn(const char* place, const char* filter, double opacity)
    {
        const std::string image = "svg2png-image-" + std::to_string(getpid());
        const std::string name = testing::TempDir() + image;
        EXPECT_EQ(writePng(name + ".png", noise), "");
        std::ofstream(name + ".svg")
            << "<svg width='40' height='40'><image "
            << "href='svg2png%2D" << image.substr(8) << ".png' " << place << " opacity='" << opacity
            << "' image-rendering='" << filter << "'/></svg>";
        KAVO::Svg::MMSvgDocument document;
        EXPECT_TRUE(document.loadFile(name + ".svg"));
        Picture picture(kSide, kSide, kWhite);
        picture.pixels = ::drawn(document, kSide, kSide).pixels;
        EXPECT_TRUE(document.shortcomings().empty());
        std::remove((name + ".png").c_str());
        std::remove((name + ".svg").c_str());
        return picture;
    }

    // The greatest difference of a channel from the image mixed into white; alpha is not compared.
    int worstDifference(const Picture& picture, double opacity) const
    {
        int worst = 0;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const bool inside = x >= 5 && y >= 9 && x < 5 + noise.width && y < 9 + noise.height;
                const uint32_t texel = inside ? noise.at(x - 5, y - 9) : kWhite;
                for (int k = 0; k < 3; ++k) {
                    const double expected = 255 + opacity * (channel(texel, k) - 255);
                    worst = std::max(
                        worst, static_cast<int>(std::abs(channel(picture.at(x, y), k) - expected)));
                }
            }
        return worst;
    }

private:
    Picture noise = Picture(23, 17, 0);
};

TEST(ImagePlacement, ImagesThatNeedNoScalingAreCopied)
{
    const struct {
        const char* filter;
        double opacity;
        int bound;
    } cases[] = {{"optimizeSpeed", 1, 0},
                 // The inverse of the identity is 1.0 less 1/65536, which moves the sample by at
                 // most 22/65536 of a texel here; a weight of 1/256 is the least that shows.
                 {"auto", 1, 2},
                 {"optimizeSpeed", 0.5, 1}};
    PlacedNoise noise;
    for (const char* place : {"x='5' y='9'", "transform='translate(5 9)'",
                              "x='10' y='18' width='46' height='34' transform='scale(.5)'"})
        for (const auto& c : cases)
            EXPECT_LE(noise.worstDifference(noise.drawn(place, c.filter, c.opacity), c.opacity),
                      c.bound)
                << place << ' ' << c.filter << ' ' << c.opacity;
}

} // namespace
