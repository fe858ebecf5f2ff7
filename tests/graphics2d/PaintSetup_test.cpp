// Paints set up from end points, radii and transforms: accuracy against exact ramps, and input that
// has no sensible ramp.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/StripDispatch.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace {

using namespace KAVO::Graphics2D;

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
        context.target = {uint16_t(w), uint16_t(h), uint32_t(w) * 4, 0, pixels.data(), 0};
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
    // Draws every seventh row; the mean difference of the red channel from 255 times the exact ramp
    // where that lies within (0, 1).
    double meanError(const std::function<double(int x, int y)>& exact)
    {
        double sum = 0;
        int count = 0;
        for (int y = 0; y < height; y += 7) {
            drawRow(y);
            for (int x = 0; x < width; ++x) {
                const double t = exact(x, y);
                if (t <= 0 || t >= 1) continue;
                const Pixel p = pixels[static_cast<size_t>(y * width + x)];
                sum += std::abs(((p >> 16) & 0xFF) - 255 * t);
                ++count;
            }
        }
        EXPECT_GT(count, 0);
        return sum / count;
    }
};

TEST(PaintSetup, LinearRampsStayCloseToTheExactOnes)
{
    for (int length : {10, 37, 100, 509, 770, 1009, 2047, 3000, 4000}) {
        for (int degrees : {0, 10, 90, 135, 200, 330}) {
            const double gx = length * std::cos(degrees * M_PI / 180);
            const double gy = length * std::sin(degrees * M_PI / 180);
            // The ramp goes through the middle of a canvas as wide as it, of some rows.
            Canvas canvas(std::max(600, length), 300);
            const double sx = canvas.width / 2.0 - gx / 2;
            const double sy = canvas.height / 2.0 - gy / 2;
            // Half by the transform, half by the points.
            const Matrix2D twice = {0x20000, 0, 0, 0x20000, fx(7), fx(-5)};
            setLinearGradient(canvas.paint, {fx((sx - 7) / 2), fx((sy + 5) / 2)},
                              {fx((sx + gx - 7) / 2), fx((sy + gy + 5) / 2)}, twice, kTwoStops,
                              canvas.ramp);
            const double error = canvas.meanError([&](int x, int y) {
                return ((x - sx) * gx + (y - sy) * gy) / (double(length) * length);
            });
            EXPECT_LT(error, 1.5) << length << " pixels at " << degrees << " degrees";
        }
    }
}

// Random gradients of three stops over black, whose pixels must follow colour and alpha all along
// the row: the linear filler extrapolates the weight, and the radial one steps its radius.
TEST(PaintSetup, RandomRampsFollowTheirColoursAndAlphas)
{
    std::mt19937 random(4);
    const auto between = [&](double low, double high) {
        return low + random() / 4294967296.0 * (high - low);
    };
    for (int i = 0; i < 4000; ++i) {
        const bool radial = i % 2 != 0, opaque = i % 4 < 2;
        const double opacity = opaque || i % 3 == 0 ? 255 : 100 + i % 155;
        const double extent = between(100, 1000), way = i % 3 != 0 ? 1 : -1;
        const double x0 = between(0, 600), y0 = between(-200, 200);
        const double offsets[] = {between(0, 0.2), between(0.4, 0.6), between(0.8, 1)};
        const Fixed stopOffsets[] = {fx(offsets[0]), fx(offsets[1]), fx(offsets[2])};
        Pixel colours[3];
        for (Pixel& c : colours)
            c = static_cast<Pixel>(random()) | (opaque ? 0xFF000000 : 0);
        const GradientStops stops = {colours, stopOffsets, 3};
        Canvas canvas(600, 1);
        canvas.pixels.assign(600, 0xFF000000);
        canvas.paint.paintOpacity = static_cast<uint8_t>(opacity);
        if (radial)
            setRadialGradient(canvas.paint, at(x0, y0), fx(extent), kIdentityMatrix, stops,
                              canvas.ramp);
        else
            setLinearGradient(canvas.paint, at(x0, y0), at(x0 + way * extent, y0), kIdentityMatrix,
                              stops, canvas.ramp);
        const int start = static_cast<int>(between(0, 500));
        canvas.drawRow(0, start);
        for (int x = 0; x < 600; ++x) {
            const double distance = radial ? std::hypot(x - x0, y0) : (x - x0) * way;
            const double t = std::clamp(distance / extent, offsets[0], offsets[2]);
            const int s = t < offsets[1] ? 0 : 1;
            const double share = (t - offsets[s]) / (offsets[s + 1] - offsets[s]);
            const auto channel = [&](int k) {
                const int from = colours[s] >> (8 * k) & 0xFF,
                          to = colours[s + 1] >> (8 * k) & 0xFF;
                return from + share * (to - from);
            };
            for (int k = 0; k < 3; ++k) {
                const double ideal = channel(k) * channel(3) * opacity / (255 * 255);
                const int drawn = canvas.pixels[static_cast<size_t>(x)] >> (8 * k) & 0xFF;
                ASSERT_NEAR(drawn, x < start ? 0 : ideal, 4) << "gradient " << i << " at " << x;
            }
        }
    }
}

TEST(PaintSetup, RadialRampsStayCloseToTheExactOnes)
{
    for (int radius : {20, 33, 64, 150, 333, 500}) {
        for (const auto& [a, b, c, d] : {std::array{1.0, 0.0, 0.0, 1.0},
                                         {0.02, 0, 0, 0.02},
                                         {1, 0.2, -0.2, 1},
                                         {1, 0.3, 0.5, 0.8}}) {
            const double r = radius / std::hypot(a, b), det = a * d - b * c;
            Canvas canvas(1100, 1100);
            const Matrix2D m = {fx(a), fx(b), fx(c), fx(d), fx(550.3), fx(549.6)};
            setRadialGradient(canvas.paint, {0, 0}, fx(r), m, kTwoStops, canvas.ramp);
            const double error = canvas.meanError([&, a = a, b = b, c = c, d = d](int x, int y) {
                const double dx = x - 550.3, dy = y - 549.6;
                return std::hypot(d * dx - c * dy, a * dy - b * dx) / det / r;
            });
            EXPECT_LT(error, 1.5) << "radius " << radius << " shape " << a << " " << c;
        }
    }
}

TEST(PaintSetup, SkewTiltsTheLinesOfEqualColour)
{
    // x' = x + y: the lines x = const become x' - y' = const.
    Canvas canvas(64, 64);
    setLinearGradient(canvas.paint, {0, 0}, {fx(50), 0}, {0x10000, 0, 0x10000, 0x10000, 0, 0},
                      kTwoStops, canvas.ramp);
    EXPECT_EQ(canvas.paint.gradientStepY, -canvas.paint.gradientStepX);
}

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
    setRadialGradient(canvas.paint, {0, 0}, fx(100), kIdentityMatrix, {kStopColours, offsets, 3},
                      canvas.ramp);
    ASSERT_EQ(canvas.paint.gradientStopCount, 3u);
    EXPECT_EQ(canvas.rampOffsets[0], 0);
    EXPECT_EQ(canvas.rampOffsets[1], fx(400 * 0x9000 / 65536.0)); // quarters of a pixel
    EXPECT_EQ(canvas.rampOffsets[2], canvas.rampOffsets[1]);
    EXPECT_EQ(canvas.paint.paintHasAlpha, 0);
}

TEST(PaintSetup, PatternsLieAtTheSamePlaceUnderAllFilters)
{
    // A 2 x 2 image magnified four times at (8, 4): its middle is the line between pixels 11 and
    // 12, where the linear filter is half way. From half a texel on there is only the outermost.
    Pixel texels[4] = {0xFF000000, 0xFFFFFFFF, 0xFF000000, 0xFFFFFFFF};
    const MMPixmap image = {2, 2, 8, 0, texels, 0};
    const Matrix2D m = {0x40000, 0, 0, 0x40000, fx(8), fx(4)};
    for (bool bilinear : {false, true}) {
        Canvas canvas(24, 12);
        const MMPatternFilter filter = bilinear ? kFilterBilinear : kFilterNearest;
        canvas.context.patternFilter = filter;
        setPattern(canvas.paint, image, m, filter);
        canvas.drawRow(8);
        const Pixel* row = canvas.pixels.data() + 8 * 24;
        EXPECT_EQ(row[9] & 0xFF, 0u);
        EXPECT_NEAR(row[11] & 0xFF, bilinear ? 255 * 0.375 : 0, 2);
        EXPECT_NEAR(row[12] & 0xFF, bilinear ? 255 * 0.625 : 255, 2);
    }
    MMPaint singular;
    setPattern(singular, image, {1, 1, 1, 1, 0, 0}, kFilterNearest);
    EXPECT_EQ(singular.paintType, kPaintNone);
}

} // namespace
