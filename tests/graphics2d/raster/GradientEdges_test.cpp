// SPDX-License-Identifier: MIT
// Linear gradients on nearly level anti-aliased edges, whose coverage changes over long runs.
#include "graphics2d/PaintSetup.h"
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/Picture.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using namespace model;

constexpr int kSize = 340;
constexpr double kStart = 20, kLength = 300;
constexpr double kWorst = 2 + 0.5; // levels, and what the coverage that a fill tells is rounded by

// From one colour to another along x. The blue channel tells the weight, for it goes from white to
// black and back.
struct Gradient {
    int from[4], to[4]; // alpha, red, green, blue

    static Pixel pixelOf(const int (&c)[4])
    {
        return Pixel(c[0]) << 24 | Pixel(c[1]) << 16 | Pixel(c[2]) << 8 | Pixel(c[3]);
    }
    double at(int channel, double x) const
    {
        const double t = std::clamp((x - kStart) / kLength, 0.0, 1.0);
        return from[channel] + t * (to[channel] - from[channel]);
    }
};
const Gradient kOpaque = {{255, 255, 0, 20}, {255, 0, 200, 90}};
const Gradient kFading = {{255, 200, 0, 10}, {30, 0, 60, 30}};

// Draws the polygon in the gradient on white, and compares each pixel with what its coverage, told
// by a solid black fill, makes of the ideal colour.
void expectGradient(Polygon polygon, const Gradient& gradient, bool complex)
{
    const auto raster =
        complex ? &MMContext2D::rasterComplexPolygon : &MMContext2D::rasterMonotonePolygon;
    Picture solid(kSize), drawn(kSize);
    (solid.context.*raster)(polygon.data(), uint16_t(polygon.size()));
    const Pixel colours[] = {Gradient::pixelOf(gradient.from), Gradient::pixelOf(gradient.to)};
    const Fixed offsets[] = {0, kFixedOne};
    Pixel rampColours[20];
    Fixed rampOffsets[20];
    setLinearGradient(drawn.context.currentPaint, {toFixed(kStart), 0},
                      {toFixed(kStart + kLength), 0}, drawn.context.transform,
                      {colours, offsets, 2}, {rampColours, rampOffsets});
    (drawn.context.*raster)(polygon.data(), uint16_t(polygon.size()));
    for (int y = 0; y < kSize; ++y)
        for (int x = 0; x < kSize; ++x) {
            const double weight = solid.coverage(x, y) / 255.0 * gradient.at(0, x) / 255;
            for (int channel = 1; channel < 4; ++channel) {
                const int value = drawn.at(x, y) >> (24 - 8 * channel) & 0xFF;
                ASSERT_NEAR(value, 255 + weight * (gradient.at(channel, x) - 255), kWorst)
                    << "channel " << channel << " at " << x << ", " << y;
            }
        }
}

TEST(GradientEdges, CardsTurnedALittleHaveEvenEdges)
{
    for (double degrees : {0.05, 0.1, 0.3, 0.5, 1.0, 2.0, 3.0, 4.5, 6.0})
        for (int kind = 0; kind < 4; ++kind) {
            const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
            Polygon card;
            for (auto [x, y] : {std::pair{-150, -60}, {150, -60}, {150, 60}, {-150, 60}})
                add(card, 170.3 + x * c - y * s, 170.8 + x * s + y * c);
            SCOPED_TRACE(testing::Message() << degrees << " degrees, kind " << kind);
            expectGradient(card, kind % 2 == 0 ? kOpaque : kFading, kind >= 2);
        }
}

TEST(GradientEdges, LongEdgesAreEven)
{
    std::mt19937 random(41);
    const auto number = [&](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    for (int n = 0; n < 400; ++n) {
        const double y = number(20, 200), x = number(-40, 60);
        const Polygon sliver = points({{x, y},
                                       {x + number(100, 300), y + number(-9, 9)},
                                       {x + number(60, 200), y + number(0.2, 20)}});
        SCOPED_TRACE(testing::Message()
                     << "(" << sliver[0].x << ", " << sliver[0].y << ") (" << sliver[1].x << ", "
                     << sliver[1].y << ") (" << sliver[2].x << ", " << sliver[2].y << ")");
        expectGradient(sliver, n % 2 == 0 ? kOpaque : kFading, n % 4 >= 2);
    }
}

} // namespace
