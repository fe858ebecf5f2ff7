// SPDX-License-Identifier: MIT
// Paints set up from end points, radii and transforms: accuracy against exact ramps, and input that
// has no sensible ramp.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/strips/StripDispatch.h"
#include "tests/support/PolygonModel.h"
#include "tests/support/Targets.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using model::cross;
using model::Vector;

constexpr Pixel kStopColours[] = {0xFF000000, 0xFFFF8000, 0xFFFFFFFF};
constexpr Fixed kStopOffsets[] = {0, 0x10000, 0x10000};
constexpr GradientStops kTwoStops = {kStopColours, kStopOffsets, 2};

// A context over a canvas that whole rows are drawn into.
struct Canvas {
    int width, height;
    std::vector<Pixel> pixels;
    MMContext2D context;
    Pixel rampColours[gradientRampRoom(3)];
    Fixed rampOffsets[gradientRampRoom(3)];
    GradientRamp ramp = {rampColours, rampOffsets};
    MMPaint& paint = context.currentPaint;

    Canvas(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w * h), 0x12345678)
    {
        classicTarget(context, pixels.data(), w, h);
        paint.paintOpacity = 255;
    }
    void drawRow(int y, int start = 0)
    {
        context.spanRow = y;
        context.spanPixels = pixels.data() + static_cast<ptrdiff_t>(y) * width;
        context.spanStart = start << 16;
        context.spanEnd = width << 16;
        drawSpan(context, chooseSpanFiller(context));
    }
};

struct Random {
    std::mt19937 engine{4};

    double between(double low, double high) { return low + engine() / 4294967296.0 * (high - low); }
};

Matrix2D matrixOf(Vector u, Vector v, Vector origin)
{
    return {fx(u.real()), fx(u.imag()),      fx(v.real()),
            fx(v.imag()), fx(origin.real()), fx(origin.imag())};
}

// Random gradients of three stops over black, turned, squeezed and skewed, whose pixels must follow
// colour and alpha all along a row. By the classic rules they are taken at a pixel's corner, the
// linear filler extrapolates the weight, and the radial one steps its radius.
class RandomRamps : public testing::TestWithParam<bool> {};

TEST_P(RandomRamps, FollowTheirColoursAndAlphas)
{
    const bool refined = GetParam();
    Random random;
    const auto between = [&](double low, double high) { return random.between(low, high); };
    const auto ratio = [&](double low, double high) {
        return low * std::pow(high / low, between(0, 1));
    };
    const auto direction = [&] { return std::polar(1.0, between(-M_PI, M_PI)); };
    Canvas canvas(2000, 20);
    canvas.context.refined = refined;
    const double centre = refined ? 0.5 : 0;
    double sum = 0, samples = 0;
    for (int i = 0; i < 4000; ++i) {
        const bool radial = i % 2 != 0, opaque = i % 4 < 2;
        const double opacity = opaque || i % 3 == 0 ? 255 : 100 + i % 155;
        const double extent = refined  ? ratio(radial ? 3 : 2, radial ? 3000 : 4000)
                              : radial ? between(200, 2000)
                                       : ratio(10, 14000);
        const Fixed stopOffsets[] = {fx(between(0, 0.2)), fx(between(0.4, 0.6)),
                                     fx(between(0.8, 1))};
        Pixel colours[3];
        for (Pixel& c : colours)
            c = static_cast<Pixel>(random.engine()) | (opaque ? 0xFF000000 : 0);
        const GradientStops stops = {colours, stopOffsets, 3};

        // Where the transform takes the unit vectors; some point of the ramp lies on the canvas.
        const double stretch = refined ? 1 : between(0.5, 2);
        const Vector unit = stretch * direction();
        const Vector skewed = unit * Vector{between(-0.5, 0.5), between(0.5, 2)};
        const Vector farEnd = extent * direction();
        const Vector seen{between(0, 2000), between(-200, 200)};
        const Vector start = seen - between(0, 1) * (farEnd.real() * unit + farEnd.imag() * skewed);
        if (std::abs(start) > (refined ? 16000 : 32767)) continue;
        const Matrix2D m = matrixOf(unit, skewed, start);
        const MMPoint2D fixedEnd = at(farEnd.real(), farEnd.imag());
        canvas.paint = {};
        canvas.paint.paintOpacity = static_cast<uint8_t>(opacity);
        if (radial)
            setRadialGradient(canvas.paint, {0, 0}, fx(extent), m, stops, canvas.ramp, refined);
        else
            setLinearGradient(canvas.paint, {0, 0}, fixedEnd, m, stops, canvas.ramp, refined);
        const Pixel ground = refined && i % 5 == 0 ? 0 : 0xFF000000;
        canvas.pixels.assign(canvas.pixels.size(), ground);
        const int first = static_cast<int>(between(0, 1900)), y = i % canvas.height;
        canvas.drawRow(y, first);

        // What was asked for, as rounded to 16.16.
        const auto vector = [](Fixed x, Fixed y) { return Vector(x, y) / 65536.0; };
        const Vector u = vector(m.a, m.b), v = vector(m.c, m.d), origin = vector(m.e, m.f);
        const Vector end = vector(fixedEnd.x, fixedEnd.y);
        const double limit = !refined ? (radial ? 4 : 3.5) : radial && opaque ? 1 : 1.5;
        for (int x = 0; x < canvas.width; ++x) {
            const Vector p = Vector(x + centre, y + centre) - origin;
            const Vector q = Vector(cross(p, v), cross(u, p)) / cross(u, v); // before the transform
            const double distance =
                radial ? std::abs(q) / extent : cross(q, end * Vector(0, 1)) / std::norm(end);
            const double share =
                std::clamp(distance * 65536, stopOffsets[0] + 0.0, stopOffsets[2] + 0.0);
            const int s = share < stopOffsets[1] ? 0 : 1;
            const double within = (share - stopOffsets[s]) / (stopOffsets[s + 1] - stopOffsets[s]);
            const auto channel = [&](int k) {
                const int from = colours[s] >> (8 * k) & 0xFF,
                          to = colours[s + 1] >> (8 * k) & 0xFF;
                return from + within * (to - from);
            };
            const Pixel pixel = canvas.pixels[static_cast<size_t>(y * canvas.width + x)];
            // On a cleared target the refined result is the premultiplied colour.
            for (int k = 0; k < (refined ? 4 : 3); ++k) {
                const double full = k < 3 ? channel(k) : 255;
                const double rest = k < 3 ? 0 : ground >> 24;
                const double weight = x < first ? 0 : channel(3) * opacity / (255 * 255);
                const double ideal = rest + (full - rest) * weight;
                const int drawn = pixel >> (8 * k) & 0xFF;
                ASSERT_NEAR(drawn, ideal, limit) << "gradient " << i << " at " << x;
                sum += x < first ? 0 : std::abs(drawn - ideal);
                samples += x < first ? 0 : 1;
            }
        }
    }
    EXPECT_LE(sum / samples, 0.5);
}

INSTANTIATE_TEST_SUITE_P(Both, RandomRamps, testing::Bool(),
                         [](const auto& info) { return info.param ? "Refined" : "Classic"; });

TEST(PaintSetup, GradientsWithoutExtentOrStops)
{
    const Matrix2D flat = {0x10000, 0x10000, 0x10000, 0x10000, 0, 0};
    const struct {
        Pixel expected; // the last stop, or what was there
        Fixed x, y;     // of the linear one's end
        Fixed radius;   // of the radial one
        Matrix2D transform;
        GradientStops stops;
    } cases[] = {
        {0xFFFF8000, 0, 0, 0, kIdentityMatrix, kTwoStops},
        {0xFFFF8000, 65536, -65536, 65536, flat, kTwoStops},
        {0xFFFF8000, 65536, 0, 65536, {}, kTwoStops},
        {0x12345678, 65536, 0, 65536, kIdentityMatrix, {kStopColours, kStopOffsets, 0}},
        {0x12345678, 65536, 0, 65536, kIdentityMatrix, {nullptr, kStopOffsets, 2}},
        {0x12345678, 65536, 0, 65536, kIdentityMatrix, {kStopColours, nullptr, 2}},
    };
    for (const auto& c : cases) {
        Canvas canvas(16, 2);
        setLinearGradient(canvas.paint, {0, 0}, {c.x, c.y}, c.transform, c.stops, canvas.ramp);
        canvas.drawRow(0);
        setRadialGradient(canvas.paint, {0, 0}, c.radius, c.transform, c.stops, canvas.ramp);
        canvas.drawRow(1);
        for (Pixel p : canvas.pixels)
            EXPECT_EQ(p, c.expected) << "case " << &c - cases;
    }
}

TEST(PaintSetup, StopsOutOfOrderAreBroughtIntoOrder)
{
    const Fixed offsets[] = {-5, 0x9000, 0x2000};
    Canvas canvas(16, 1);
    setRadialGradient(canvas.paint, {0, 0}, 100_fx, kIdentityMatrix, {kStopColours, offsets, 3},
                      canvas.ramp);
    ASSERT_EQ(canvas.paint.gradientStopCount, 3u);
    EXPECT_EQ(canvas.rampOffsets[0], 0);
    EXPECT_EQ(canvas.rampOffsets[1], fx(400 * 0x9000 / 65536.0)); // quarters of a pixel
    EXPECT_EQ(canvas.rampOffsets[2], canvas.rampOffsets[1]);
    EXPECT_EQ(canvas.paint.paintHasAlpha, 0);
}

// A ramp is cut where weights begin to count one more: at full opacity half way from an alpha of
// 128 to one of 129, which is 257/510 of the way from 0 to 255.
TEST(PaintSetup, LinearRampsAreCutWhereWeightsAreRaised)
{
    const Pixel colours[] = {0x00FFFFFF, 0xFFFFFFFF};
    const Fixed offsets[] = {0, kFixedOne};
    Canvas canvas(16, 1);
    setLinearGradient(canvas.paint, {0, 0}, {1000_fx, 0}, kIdentityMatrix, {colours, offsets, 2},
                      canvas.ramp);
    const uint32_t count = canvas.paint.gradientStopCount;
    int cuts = 0;
    for (uint32_t i = 0; i + 1 < count; ++i) {
        if (canvas.rampOffsets[i] != canvas.rampOffsets[i + 1]) continue;
        ++cuts;
        EXPECT_NEAR(canvas.rampOffsets[i] * 510.0 / canvas.rampOffsets[count - 1], 257, 0.01);
        EXPECT_EQ(canvas.rampColours[i], 0x80FFFFFFu);
        EXPECT_EQ(canvas.rampColours[i + 1], 0x81FFFFFFu);
    }
    EXPECT_EQ(cuts, 1);
}

// Images whose colours rise by 12 a texel, blue to the right and green downward, where they are not
// at their edges.
TEST(PaintSetup, PatternsLieAtTheSamePlaceUnderAllFilters)
{
    constexpr int kSide = 20, kRise = 12;
    Pixel texels[kSide * kSide];
    for (int i = 0; i < kSide * kSide; ++i)
        texels[i] = static_cast<Pixel>((i / kSide << 8 | i % kSide) * kRise) | 0xFF000000;
    const MMPixmap image = {kSide, kSide, kSide * 4, 0, texels, 0};
    Random random;
    Canvas canvas(100, 100);
    for (int i = 0; i < 1000; ++i) {
        const double stretch = random.between(2, 6), lean = random.between(-0.5, 0.5);
        const Vector u = stretch * std::polar(1.0, random.between(-M_PI, M_PI));
        const Vector v = u * Vector(lean, random.between(0.5, 1.5));
        const Vector origin = Vector(50, 50) - 0.5 * kSide * (u + v);
        const Matrix2D m = matrixOf(u, v, origin);
        const MMPatternFilter filter = static_cast<MMPatternFilter>(i % 3);
        canvas.context.patternFilter = filter;
        canvas.paint.paintOpacity = 255;
        setPattern(canvas.paint, image, m, filter);
        const auto expectAt = [&](Pixel drawn, double texel) {
            const bool nearest = filter == kFilterNearest;
            // Where it meets a texel exactly, the walk backward may take the one before.
            if (!nearest && std::abs(std::remainder(texel, 1)) < 0.01) return;
            ASSERT_NEAR(drawn & 0xFF, kRise * texel, kRise * (nearest ? 0.52 : 0.05) + 1) << i;
        };
        for (int y = 46; y < 54; ++y) {
            canvas.drawRow(y);
            for (int x = 46; x < 54; ++x) {
                const Vector p = Vector(x + 0.5, y + 0.5) - origin;
                const Pixel pixel = canvas.pixels[static_cast<size_t>(y * canvas.width + x)];
                expectAt(pixel, cross(p, v) / cross(u, v) - 0.5);
                expectAt(pixel >> 8, cross(u, p) / cross(u, v) - 0.5);
            }
        }
    }
    MMPaint singular;
    setPattern(singular, image, {1, 1, 1, 1, 0, 0}, kFilterNearest);
    EXPECT_EQ(singular.paintType, kPaintNone);
}

} // namespace
