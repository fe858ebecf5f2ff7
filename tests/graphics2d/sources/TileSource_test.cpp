// SPDX-License-Identifier: MIT
// Tiles against double precision under random transforms, and hostile ones.
#include "graphics2d/convenience/MMContextState.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "graphics2d/sources/MMTileSource.h"
#include "tests/graphics2d/sources/GradientModel.h"
#include "tests/graphics2d/sources/SourceInput.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace KAVO;
using namespace KAVO::Graphics2D;
using model::Point;

namespace {

constexpr MMTileMode kModes[] = {kTileRepeat, kTileMirror};

Pixel premultipliedColour(Random& random, bool opaque)
{
    const int alpha = opaque ? 255 : random.whole(0, 255);
    Pixel colour = static_cast<Pixel>(alpha) << 24;
    for (int shift = 0; shift < 24; shift += 8)
        colour |= static_cast<Pixel>(random.whole(0, alpha)) << shift;
    return colour;
}

struct Image {
    int width, height, rowLength;
    std::vector<Pixel> texels;
    bool opaque;

    Image(Random& random, int w, int h, bool isOpaque)
        : width(w), height(h), rowLength(w + random.whole(0, 1) * 3), opaque(isOpaque)
    {
        for (int i = 0; i < rowLength * h; ++i)
            texels.push_back(i % rowLength < w ? premultipliedColour(random, opaque) : 0xDEADBEEF);
        if (opaque)
            for (Pixel& texel : texels)
                texel &= 0x00FFFFFF; // ignored
    }
    MMPixmap pixmap()
    {
        return {static_cast<uint16_t>(width),
                static_cast<uint16_t>(height),
                static_cast<uint32_t>(rowLength) * 4,
                0,
                texels.data(),
                opaque ? 0u : 1u};
    }

    static int64_t within(int64_t i, int size, MMTileMode mode)
    {
        const int64_t period = mode == kTileMirror ? 2 * size : size;
        const int64_t rest = (i % period + period) % period;
        return rest < size ? rest : period - 1 - rest;
    }
    double channel(int64_t x, int64_t y, int k, const MMTileMode (&modes)[2]) const
    {
        if (opaque && k == 3) return 255;
        const int64_t i = within(y, height, modes[1]) * rowLength + within(x, width, modes[0]);
        return texels[static_cast<size_t>(i)] >> (8 * k) & 255;
    }
};

// Weights of the texels at offsets -1 to 2 from the one before the point.
void weigh(MMPatternFilter filter, double f, double (&weights)[4])
{
    const double r = 1 - f;
    if (filter == kFilterBilinear) {
        weights[0] = weights[3] = 0, weights[1] = r, weights[2] = f;
        return;
    }
    weights[0] = r * r * r / 6, weights[3] = f * f * f / 6;
    weights[1] = 2.0 / 3 - f * f + f * f * f / 2;
    weights[2] = 2.0 / 3 - r * r + r * r * r / 2;
}

double modelChannel(const Image& image, Point p, int k, MMPatternFilter filter,
                    const MMTileMode (&modes)[2])
{
    if (filter == kFilterNearest)
        return image.channel(std::floor(p.real()), std::floor(p.imag()), k, modes);
    const double x = p.real() - 0.5, y = p.imag() - 0.5;
    double across[4], down[4], sum = 0;
    weigh(filter, x - std::floor(x), across);
    weigh(filter, y - std::floor(y), down);
    for (int j = 0; j < 4; ++j)
        for (int i = 0; i < 4; ++i)
            sum += across[i] * down[j] *
                   image.channel(std::floor(x) + i - 1, std::floor(y) + j - 1, k, modes);
    return sum;
}

// Anything that turns, or what the quick ways are for: rows of texels, and pixels that are texels.
Matrix2D transformOf(Random& random, int round)
{
    const Fixed e = fx(random.between(-500, 500)), f = fx(random.between(-500, 500));
    if (round % 4 == 0) return {kFixedOne, 0, 0, round % 8 ? kFixedOne : -kFixedOne, e, f};
    if (round % 4 == 1) {
        const int sign = random.whole(0, 1) * 2 - 1;
        return {fx(sign * random.between(0.1, 6)), 0, 0, fx(random.between(-6, 6)), e, f};
    }
    const Point unit = random.between(0.2, 5) * random.direction();
    const Point other = unit * Point(random.between(-0.7, 0.7), random.between(0.3, 2));
    return {fx(unit.real()), fx(unit.imag()), fx(other.real()), fx(other.imag()), e, f};
}

} // namespace

TEST(TileSource, FollowsTheImageAcrossItsEdges)
{
    Random random(1);
    double sum = 0, count = 0;
    for (int round = 0; round < 1500; ++round) {
        const int most = round % 10 == 0 ? 300 : 7;
        Image image(random, random.whole(1, most), random.whole(1, most), random.whole(0, 1));
        const auto filter = static_cast<MMPatternFilter>(round % 3);
        const MMTileMode modes[2] = {kModes[random.whole(0, 1)], kModes[random.whole(0, 1)]};
        const Matrix2D m = transformOf(random, round);
        MMPaint paint = {};
        MMTileSource source;
        setTileSource(paint, source, image.pixmap(), m, filter, modes[0], modes[1]);
        ASSERT_EQ(paint.paintType, kPaintSource);
        ASSERT_EQ(paint.sourceIsOpaque != 0, image.opaque);
        for (int piece = 0; piece < 8; ++piece) {
            const int y = random.whole(0, 1000), x = random.whole(0, 1000);
            const std::vector<Pixel> pixels = rowOf(paint, y, x, random.whole(1, 128));
            for (size_t i = 0; i < pixels.size(); ++i) {
                const Point p = model::inverse(m, Point(x + static_cast<double>(i) + 0.5, y + 0.5));
                const auto toEdge = [](double v) { return std::abs(v - std::round(v)); };
                if (filter == kFilterNearest && std::min(toEdge(p.real()), toEdge(p.imag())) < 1e-4)
                    continue;
                for (int k = 0; k < 4; ++k) {
                    const double error = std::abs((pixels[i] >> (8 * k) & 255) -
                                                  modelChannel(image, p, k, filter, modes));
                    sum += error, ++count;
                    ASSERT_LE(error, filter == kFilterNearest ? 0 : 2)
                        << "round " << round << " " << text(m) << " tile " << image.width << " by "
                        << image.height << " filter " << int{filter} << " modes " << int{modes[0]}
                        << int{modes[1]} << " at " << x << " + " << i << ", " << y << std::hex
                        << ": " << pixels[i];
                }
            }
        }
    }
    EXPECT_LT(sum / count, 0.4);
    EXPECT_GT(count, 1e6);
}

// A texel lies where it should at the far end of the largest targets.
TEST(TileSource, StaysInPlaceFarAway)
{
    Random random(2);
    for (const int width : {2, 3, 1000, 65535}) {
        Image image(random, width, 2, true);
        for (const double scale : {1.0, 1.37, 0.11}) {
            const MMTileMode modes[2] = {kModes[width % 2], kTileMirror};
            const Matrix2D m = {fx(scale), 0, 0, kFixedOne, fx(0.25), 0};
            MMPaint paint = {};
            MMTileSource source;
            setTileSource(paint, source, image.pixmap(), m, kFilterNearest, modes[0], modes[1]);
            for (const int x : {0, 5000, 32639}) {
                const std::vector<Pixel> pixels = rowOf(paint, 32766, x, 128);
                for (size_t i = 0; i < pixels.size(); ++i) {
                    const Point p =
                        model::inverse(m, Point(x + static_cast<double>(i) + 0.5, 32766.5));
                    if (std::abs(p.real() - std::round(p.real())) < 2e-3) continue;
                    for (int k = 0; k < 4; ++k)
                        ASSERT_EQ(pixels[i] >> (8 * k) & 255,
                                  modelChannel(image, p, k, kFilterNearest, modes))
                            << width << " texels, scale " << scale << ", column " << x << " + "
                            << i;
                }
            }
        }
    }
}

TEST(TileSource, PixelsDoNotDependOnTheCall)
{
    Random random(3);
    for (int round = 0; round < 300; ++round) {
        Image image(random, random.whole(1, 20), random.whole(1, 20), false);
        MMPaint paint = {};
        MMTileSource source;
        setTileSource(paint, source, image.pixmap(), transformOf(random, round),
                      static_cast<MMPatternFilter>(round % 3), kModes[round % 2], kTileRepeat);
        expectSameInPieces(paint, random.whole(0, 1000), random.whole(0, 1000), random,
                           "round " + std::to_string(round));
        if (HasFatalFailure()) return;
    }
}

// Shapes may ask for more at once.
TEST(TileSource, LongSpansAreThoseOfTheCalls)
{
    constexpr int kWidth = 400, kHeight = 4, kPiece = 100;
    Random random(6);
    for (int round = 0; round < 200; ++round) {
        Image image(random, random.whole(1, 150), random.whole(1, 9), round % 8 != 0);
        std::vector<Pixel> pixels(kWidth * kHeight, 0);
        MMContext2D context;
        setTarget(context, pixels.data(), kWidth, kHeight);
        MMTileSource source;
        setTileSource(context.fillPaint, source, image.pixmap(), transformOf(random, round),
                      kFilterNearest, kModes[random.whole(0, 1)], kTileRepeat);
        context.drawPath(
            MMPathBuilder().rect(0, 0, fixFromInt(kWidth), fixFromInt(kHeight)).words());
        for (int i = 0; i < kWidth * kHeight; i += kPiece) {
            const auto piece = rowOf(context.fillPaint, i / kWidth, i % kWidth, kPiece);
            ASSERT_TRUE(std::equal(piece.begin(), piece.end(), pixels.begin() + i))
                << "round " << round << ", from pixel " << i;
        }
    }
}

TEST(TileSource, DegenerateOnesDrawNothing)
{
    Random random(4);
    Image image(random, 3, 3, true);
    MMTileSource source;
    const auto typeOf = [&](const MMPixmap& pixmap, const Matrix2D& m) {
        MMPaint paint = {};
        setTileSource(paint, source, pixmap, m, kFilterBilinear, kTileRepeat, kTileRepeat);
        return paint.paintType;
    };
    MMPixmap pixmap = image.pixmap();
    EXPECT_EQ(typeOf(pixmap, kIdentityMatrix), kPaintSource);
    EXPECT_EQ(typeOf(pixmap, {}), kPaintNone);
    EXPECT_EQ(typeOf(pixmap, {kFixedOne, kFixedOne, kFixedOne, kFixedOne, 0, 0}), kPaintNone);
    pixmap.width = 0;
    EXPECT_EQ(typeOf(pixmap, kIdentityMatrix), kPaintNone);
    pixmap = image.pixmap(), pixmap.height = 0;
    EXPECT_EQ(typeOf(pixmap, kIdentityMatrix), kPaintNone);
    pixmap = image.pixmap(), pixmap.pixels = nullptr;
    EXPECT_EQ(typeOf(pixmap, kIdentityMatrix), kPaintNone);
}

// Any matrix, any row and column: reads nothing but the image, writes nothing but what was asked
// for, and always ends.
TEST(TileSource, WithstandsAnyNumbers)
{
    Random random(5);
    const auto any = [&] { return random.any(); };
    for (int round = 0; round < 20000; ++round) {
        const bool wide = random.whole(0, 50) == 0;
        Image image(random, wide ? 65535 : random.whole(1, 9), wide ? 1 : random.whole(1, 9),
                    false);
        MMPaint paint = {};
        MMTileSource source;
        setTileSource(paint, source, image.pixmap(), {any(), any(), any(), any(), any(), any()},
                      static_cast<MMPatternFilter>(random.whole(0, 3)),
                      static_cast<MMTileMode>(random.whole(0, 2)), kModes[round % 2]);
        if (paint.paintType != kPaintSource) continue;
        for (const int x : {random.whole(-32768, 32767), std::min(any(), INT32_MAX - 128)})
            for (const Pixel pixel : rowOf(paint, any(), x, random.whole(1, 128)))
                ASSERT_TRUE(isPremultiplied(pixel)) << "round " << round;
    }
}
