// SPDX-License-Identifier: MIT
// Images drawn by the refined rules, against the same rules in double precision.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/strips/StripDispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

using Colour = std::array<double, 4>; // blue, green, red, alpha; premultiplied

struct Image {
    int width, height;
    std::vector<Pixel> texels;
    bool hasAlpha = true;

    // Beyond the edges the outermost texels repeat.
    Colour at(int column, int row) const
    {
        const int x = std::clamp(column, 0, width - 1), y = std::clamp(row, 0, height - 1);
        const Pixel p = texels[static_cast<size_t>(y * width + x)];
        const double alpha = hasAlpha ? (p >> 24) / 255.0 : 1;
        Colour colour;
        for (int k = 0; k < 3; ++k)
            colour[k] = (p >> (8 * k) & 0xFF) * alpha;
        colour[3] = 255 * alpha;
        return colour;
    }

    MMPixmap pixmap()
    {
        return {static_cast<uint16_t>(width),
                static_cast<uint16_t>(height),
                static_cast<uint32_t>(width) * 4,
                0,
                texels.data(),
                hasAlpha ? 1u : 0u};
    }
};

// The weights of the texels from floor(position) - 1 on that count at a position.
std::array<double, 4> tapWeights(MMPatternFilter filter, double t)
{
    if (filter == kFilterNearest) return {0, 1, 0, 0};
    if (filter == kFilterBilinear) return {0, 1 - t, t, 0};
    const auto spline = [](double d) {
        d = std::abs(d);
        return d < 1 ? 2.0 / 3 - d * d + d * d * d / 2 : std::pow(2 - d, 3) / 6;
    };
    return {spline(1 + t), spline(t), spline(1 - t), spline(2 - t)};
}

// The colour where the centre of a pixel falls.
Colour sampled(const Image& image, MMPatternFilter filter, const Matrix2D& m, double x, double y)
{
    const double offset = filter == kFilterNearest ? 0 : 0.5;
    const double u = (m.a * x + m.c * y + m.e) / 65536 - offset;
    const double v = (m.b * x + m.d * y + m.f) / 65536 - offset;
    const int column = static_cast<int>(std::floor(u)), row = static_cast<int>(std::floor(v));
    const auto wx = tapWeights(filter, u - column), wy = tapWeights(filter, v - row);
    Colour sum = {};
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            for (int k = 0; k < 4; ++k)
                sum[k] += image.at(column + i - 1, row + j - 1)[k] * wx[i] * wy[j];
    return sum;
}

bool isNearlyWhole(int64_t fixed)
{
    return std::abs(std::remainder(fixed / 65536.0, 1)) < 1e-4;
}

class RefinedPattern : public testing::TestWithParam<MMPatternFilter> {
protected:
    std::mt19937 random{77};
    static constexpr int kWidth = 96, kHeight = 24;
    std::vector<Pixel> pixels;
    MMContext2D context;

    int within(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    double between(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(random);
    }

    void SetUp() override
    {
        context.refined = 1;
        context.patternFilter = GetParam();
    }
    void clear(Pixel ground)
    {
        pixels.assign(kWidth * kHeight, ground);
        setTarget(context, pixels.data(), kWidth, kHeight);
    }
    void drawAll(int from)
    {
        for (int y = 0; y < kHeight; ++y) {
            context.spanRow = y;
            context.spanPixels = pixels.data() + y * kWidth;
            context.spanStart = from << 16;
            context.spanEnd = kWidth << 16;
            drawSpan(context, chooseSpanFiller(context));
        }
    }
    Image randomImage(int width, int height)
    {
        Image image = {width, height, {}, within(0, 2) != 0};
        for (int i = 0; i < width * height; ++i) {
            const Pixel p = static_cast<Pixel>(random());
            image.texels.push_back(within(0, 2) == 0   ? p | 0xFF000000
                                   : within(0, 2) == 0 ? p & 0xFFFFFF
                                                       : p);
        }
        return image;
    }
};

TEST_P(RefinedPattern, ComesCloseToDoublePrecision)
{
    double sum = 0, samples = 0;
    for (int round = 0; round < 1500; ++round) {
        Image image = randomImage(within(1, 60), within(1, 60));
        // Scaled and turned about the middle of the canvas.
        const double scale = round % 4 == 0   ? 0.37
                             : round % 4 == 1 ? 2.6
                                              : std::exp(between(-1.2, 2.5));
        const double turn = round % 3 == 0 ? 0 : round % 3 == 1 ? M_PI / 6 : between(-M_PI, M_PI);
        const auto fixed = [](double v) { return static_cast<Fixed>(std::lround(v * 65536)); };
        Matrix2D m = {fixed(scale * std::cos(turn)),
                      fixed(scale * std::sin(turn)),
                      fixed(-scale * std::sin(turn)),
                      fixed(scale * std::cos(turn)),
                      0,
                      0};
        const double x0 = between(0, kWidth), y0 = between(0, kHeight);
        m.e = fixed(x0 - (m.a * image.width + m.c * image.height) / 131072.0);
        m.f = fixed(y0 - (m.b * image.width + m.d * image.height) / 131072.0);
        MMPaint& paint = context.currentPaint;
        paint.paintOpacity = static_cast<uint8_t>(round % 2 == 0 ? 255 : within(0, 255));
        setPattern(paint, image.pixmap(), m, GetParam(), true);
        const Pixel ground = round % 5 == 0 ? 0 : static_cast<Pixel>(random()) | 0xFF000000;
        clear(ground);
        const int first = within(0, 40);
        drawAll(first);
        const Matrix2D& t = paint.patternTransform;
        for (int y = 0; y < kHeight; ++y)
            for (int x = first; x < kWidth; ++x) {
                const int64_t u = int64_t{t.a} * (2 * x + 1) / 2 + int64_t{t.c} * (2 * y + 1) / 2;
                const int64_t v = int64_t{t.b} * (2 * x + 1) / 2 + int64_t{t.d} * (2 * y + 1) / 2;
                if (GetParam() == kFilterNearest &&
                    (isNearlyWhole(u + t.e) || isNearlyWhole(v + t.f)))
                    continue; // on the border of two texels
                const Colour source = sampled(image, GetParam(), t, x + 0.5, y + 0.5);
                const double opacity = paint.paintOpacity / 255.0;
                const Pixel drawn = pixels[static_cast<size_t>(y * kWidth + x)];
                for (int k = 0; k < 4; ++k) {
                    const double before = ground >> (8 * k) & 0xFF;
                    const double ideal = before + (source[k] - before * source[3] / 255) * opacity;
                    const double error = std::abs((drawn >> (8 * k) & 0xFF) - ideal);
                    sum += error;
                    ++samples;
                    ASSERT_LE(error, GetParam() == kFilterNearest ? 1.5 : 3)
                        << "round " << round << " at " << x << ',' << y << " channel " << k;
                }
                for (int k = 0; k < 3; ++k)
                    ASSERT_TRUE(ground != 0 || (drawn >> (8 * k) & 0xFF) <= drawn >> 24)
                        << "round " << round << " at " << x << ',' << y;
            }
    }
    EXPECT_LE(sum / samples, 0.6);
}

TEST_P(RefinedPattern, CopiesAnImageAtItsOwnSize)
{
    if (GetParam() == kFilterBicubic) return; // which smooths
    for (int round = 0; round < 100; ++round) {
        Image image = randomImage(kWidth, kHeight);
        image.hasAlpha = false;
        clear(0x12345678);
        context.currentPaint.paintOpacity = 255;
        setPattern(context.currentPaint, image.pixmap(), kIdentityMatrix, GetParam(), true);
        const int first = within(0, 40);
        drawAll(first);
        for (int i = 0; i < kWidth * kHeight; ++i) {
            const Pixel expected = i % kWidth < first ? 0x12345678 : image.texels[i] | 0xFF000000;
            ASSERT_EQ(pixels[i], expected) << round << " at " << i;
        }
    }
}

// A texel nobody sees, next to white ones: whatever its colour, the picture is the same.
TEST_P(RefinedPattern, HidesTheColourOfInvisibleTexels)
{
    std::vector<Pixel> drawn;
    for (const Pixel hidden : {0x00000000u, 0x00FF00FFu}) {
        Image image = {4, 4, std::vector<Pixel>(16, 0xFFFFFFFF)};
        image.texels[5] = image.texels[6] = hidden;
        clear(0xFF204060);
        context.currentPaint.paintOpacity = 255;
        setPattern(context.currentPaint, image.pixmap(),
                   {5 << 16, 1 << 16, -(1 << 16), 5 << 16, 9 << 16, 0}, GetParam(), true);
        drawAll(0);
        if (hidden == 0) drawn = pixels;
    }
    EXPECT_EQ(pixels, drawn);
}

constexpr const char* kFilterNames[] = {"Nearest", "Bilinear", "Bicubic"};
INSTANTIATE_TEST_SUITE_P(All, RefinedPattern,
                         testing::Values(kFilterNearest, kFilterBilinear, kFilterBicubic),
                         [](const auto& info) { return kFilterNames[info.param]; });

} // namespace
