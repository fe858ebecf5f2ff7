// SPDX-License-Identifier: MIT
// Shapes by the refined rules: one grid for all, every shape by its exact area, round things round.
#include "graphics2d/convenience/MMPathBuilder.h"
#include "tests/support/Picture.h"
#include "tests/support/PolygonModel.h"

#include <random>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using model::toFixed;

struct RefinedPicture : Picture {
    explicit RefinedPicture(int side) : Picture(side) { context.refined = 1; }

    // In levels, over a square of pixels around a point.
    double ink(double x, double y, double reach) const
    {
        const auto from = [&](double v) { return std::max(0, int(std::floor(v - reach))); };
        const auto to = [&](double v) { return std::min(size, int(std::ceil(v + reach))); };
        double sum = 0;
        for (int row = from(y); row < to(y); ++row)
            for (int c = from(x); c < to(x); ++c)
                sum += coverage(c, row);
        return sum;
    }

    void fill(const MMPathBuilder& path) { context.drawPath(path.words()); }

    void polygon(model::Polygon points)
    {
        context.rasterPolygon(points.data(), uint16_t(points.size()));
    }
};

// The share of each pixel within a circle, exact along 64 lines a row.
std::vector<double> discAreas(int side, double cx, double cy, double radius)
{
    constexpr int kLines = 64;
    std::vector<double> result;
    for (int row = 0; row < side; ++row) {
        std::vector<double> change(size_t(side) + 2);
        const auto addAllRightOf = [&](double x, double weight) {
            x = std::clamp(x, 0.0, double(side));
            const auto column = size_t(x);
            change[column] += weight * (double(column) + 1 - x);
            change[column + 1] += weight * (x - double(column));
        };
        for (int line = 0; line < kLines; ++line) {
            const double dy = row + (line + 0.5) / kLines - cy;
            if (std::abs(dy) >= radius) continue;
            const double half = std::sqrt(radius * radius - dy * dy);
            addAllRightOf(cx - half, 1.0 / kLines);
            addAllRightOf(cx + half, -1.0 / kLines);
        }
        std::partial_sum(change.begin(), change.end() - 2, std::back_inserter(result));
    }
    return result;
}

// Differences from the true coverage, in levels; the mean is over the pixels on the edge.
struct EdgeErrors {
    double mean = 0, worst = 0;

    EdgeErrors(const Picture& picture, const std::vector<double>& areas)
    {
        int pixels = 0;
        for (int i = 0; i < picture.size * picture.size; ++i) {
            const double area = areas[size_t(i)];
            const double error =
                std::abs(area * 255 - picture.coverage(i % picture.size, i / picture.size));
            worst = std::max(worst, error);
            if (area <= 1e-9 || area >= 1 - 1e-9) continue;
            mean += error;
            ++pixels;
        }
        mean /= pixels;
    }
};

// The area of a simple polygon within pixel (c, r), which is [c, c + 1) by [r, r + 1): cut along
// the four sides of the pixel, one after the other.
double areaWithin(std::vector<model::Vector> polygon, int c, int r)
{
    const model::Vector low(c, r), high(c + 1, r + 1);
    for (int side = 0; side < 4; ++side) {
        const auto depth = [&](model::Vector p) {
            const model::Vector d = side < 2 ? p - low : high - p;
            return side % 2 == 0 ? d.real() : d.imag();
        };
        std::vector<model::Vector> inside;
        for (size_t i = 0; i < polygon.size(); ++i) {
            const model::Vector a = polygon[i], b = polygon[(i + 1) % polygon.size()];
            if (depth(a) >= 0) inside.push_back(a);
            if ((depth(a) >= 0) != (depth(b) >= 0))
                inside.push_back(a + (b - a) * (depth(a) / (depth(a) - depth(b))));
        }
        polygon = inside;
    }
    double doubled = 0;
    for (size_t i = 0; i < polygon.size(); ++i)
        doubled += model::cross(polygon[i], polygon[(i + 1) % polygon.size()]);
    return std::abs(doubled) / 2;
}

// A level and a half at most: the weight and the blend are rounded, and areas lie a tenth of a
// weight off the runs that they are drawn in.
void expectAreas(const Picture& picture, const std::vector<model::Vector>& polygon)
{
    for (int y = 0; y < picture.size; ++y)
        for (int x = 0; x < picture.size; ++x)
            ASSERT_NEAR(picture.coverage(x, y), 255 * areaWithin(polygon, x, y), 1.5)
                << "at " << x << ", " << y << " of " << testing::PrintToString(polygon);
}

// Random outlines around a point, of any size, some squeezed into slivers or with vertices on the
// borders of pixels. Those of three vertices are monotone.
TEST(RefinedShapes, EveryPixelHasItsExactArea)
{
    std::mt19937 random(31);
    const auto between = [&](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    for (int round = 0; round < 1500; ++round) {
        const int count = round % 3 == 0 ? 3 : 4 + int(random() % 9);
        const double radius = std::exp(between(-2, 3.4));
        const double squeezed = round % 4 == 0 ? between(0.01, 0.3) : 1;
        const model::Vector centre(between(-4, 36), between(-4, 36));
        const model::Vector turn = std::polar(1.0, between(0, M_PI));
        model::Polygon polygon;
        std::vector<model::Vector> exact;
        for (int i = 0; i < count; ++i) { // less than half a turn apart
            const double angle = 2 * M_PI * (i + between(0, 0.45)) / count;
            const model::Vector p = std::polar(radius * between(0.2, 1), angle);
            const model::Vector place =
                centre + model::Vector(p.real(), p.imag() * squeezed) * turn;
            const double grid = round % 5 == 0 && squeezed == 1 && count == 3 ? 2 : 65536;
            model::add(polygon, std::round(place.real() * grid) / grid,
                       std::round(place.imag() * grid) / grid);
            exact.emplace_back(polygon.back().x / 65536.0, polygon.back().y / 65536.0);
        }
        for (const auto raster :
             {&MMContext2D::rasterPolygon, &MMContext2D::rasterComplexPolygon}) {
            RefinedPicture picture(32);
            (picture.context.*raster)(polygon.data(), uint16_t(count));
            SCOPED_TRACE(testing::Message() << "round " << round);
            ASSERT_NO_FATAL_FAILURE(expectAreas(picture, exact));
        }
    }
}

// A line with butt caps is a rectangle. The outline is built in user space and rounded there.
TEST(RefinedShapes, StrokedLinesHaveTheirExactArea)
{
    std::mt19937 random(32);
    const auto between = [&](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    for (int round = 0; round < 500; ++round) {
        const model::Vector from(between(-4, 36), between(-4, 36));
        const model::Vector to = round % 4 == 0 ? model::Vector(between(-4, 36), from.imag())
                                                : model::Vector(between(-4, 36), between(-4, 36));
        const double half = std::exp(between(-2, 2));
        const model::Vector across = (to - from) / std::abs(to - from) * model::Vector(0, half);
        RefinedPicture picture(32);
        picture.context.fillPaint.paintType = kPaintNone;
        picture.context.strokePaint.paintType = kPaintSolid;
        picture.context.strokePaint.paintColour = 0xFF000000;
        picture.context.strokeHalfWidth = toFixed(half);
        picture.fill(MMPathBuilder()
                         .moveTo(toFixed(from.real()), toFixed(from.imag()))
                         .lineTo(toFixed(to.real()), toFixed(to.imag())));
        SCOPED_TRACE(testing::Message() << "round " << round);
        ASSERT_NO_FATAL_FAILURE(
            expectAreas(picture, {from + across, to + across, to - across, from - across}));
    }
}

TEST(RefinedShapes, SharpAndSmoothRectanglesLieOnTheSamePixels)
{
    for (bool antiAlias : {false, true}) {
        RefinedPicture picture(24);
        picture.context.antiAlias = antiAlias;
        picture.fill(MMPathBuilder().rect(3 * kFixedOne, 5 * kFixedOne, 9 * kFixedOne, kFixedOne));
        for (int y = 0; y < 24; ++y)
            for (int x = 0; x < 24; ++x)
                ASSERT_EQ(picture.coverage(x, y), y == 5 && x >= 3 && x < 12 ? 255 : 0)
                    << x << ", " << y;
    }
}

TEST(RefinedShapes, AnImageAtWholeCoordinatesIsCopied)
{
    std::mt19937 random(4);
    std::vector<Pixel> texels(16 * 16);
    for (Pixel& texel : texels)
        texel = 0xFF000000 | random();
    const MMPixmap image = {16, 16, 64, 0, texels.data(), 0};
    for (bool antiAlias : {false, true})
        for (uint8_t filter : {kFilterNearest, kFilterBilinear}) {
            RefinedPicture picture(24);
            picture.context.antiAlias = antiAlias;
            picture.context.patternFilter = filter;
            picture.context.drawImage(&image, 3 * kFixedOne, 4 * kFixedOne, 16 * kFixedOne,
                                      16 * kFixedOne, 1);
            for (int y = 0; y < 24; ++y)
                for (int x = 0; x < 24; ++x) {
                    const bool inside = x >= 3 && x < 19 && y >= 4 && y < 20;
                    const Pixel expected =
                        inside ? texels[size_t((y - 4) * 16 + x - 3)] : Picture::kBlank;
                    ASSERT_EQ(picture.at(x, y), expected)
                        << x << ", " << y << ", filter " << int(filter)
                        << (antiAlias ? " smooth" : "");
                }
        }
}

// Its topmost vertex is the second one, and the last of the walk from there is the first one, on
// the very pixel grid that the others are on: nothing but the closing edge leads back.
TEST(RefinedShapes, ShapesThatBeginBelowTheirTopAreClosed)
{
    for (bool flipped : {false, true}) {
        model::Polygon quad =
            model::points({{25.28, 45.00}, {37.50, 38.79}, {48.83, 55.88}, {30.71, 63.55}});
        if (flipped) std::reverse(quad.begin(), quad.end());
        RefinedPicture picture(70);
        picture.polygon(quad);
        for (MMPoint2D& p : quad)
            p = {p.x - kFixedHalf, p.y - kFixedHalf};
        const EdgeErrors errors(picture, model::areas(model::edgesOf(quad), 70, 70, false, 512));
        EXPECT_LE(errors.worst, 2) << flipped;
    }
}

TEST(RefinedShapes, SmallSquaresHaveTheInkOfTheirArea)
{
    std::mt19937 random(17);
    const auto between = [&](double low, double high) {
        return low + (high - low) * (random() / 4294967296.0);
    };
    for (double side : {0.02, 0.1, 0.2, 0.3, 0.5, 0.75, 1.0, 1.3, 2.0, 3.7}) {
        double drawn = 0, wanted = 0;
        for (int i = 0; i < 1500; ++i) {
            const double x = between(4, 12), y = between(4, 12);
            const double turn = i % 2 == 0 ? 0 : between(0, 1.5);
            const model::Vector half = std::polar(side / 2, turn);
            const model::Vector across(-half.imag(), half.real());
            model::Polygon square;
            for (const model::Vector corner :
                 {half + across, half - across, -half - across, across - half})
                model::add(square, x + corner.real(), y + corner.imag());
            RefinedPicture picture(16);
            picture.polygon(square);
            const double ink = picture.ink(x, y, 8), area = side * side * 255;
            if (side < 0.3) {
                ASSERT_NEAR(ink, area, 2)
                    << side << " at " << x << ", " << y << ", turned " << turn;
            }
            drawn += ink;
            wanted += area;
        }
        if (side >= 0.3) {
            EXPECT_NEAR(drawn / wanted, 1, 0.01) << side;
        }
    }
}

TEST(RefinedShapes, DiscsAreRoundAndAsLargeAsTheyShouldBe)
{
    std::mt19937 random(23);
    for (double radius : {0.5, 0.8, 1.0, 1.5, 2.3, 3.0, 5.0, 7.7, 10.0, 22.2, 50.0, 130.0, 500.0})
        for (int way = 0; way < 3; ++way) {
            const int side = int(2 * radius) + 6;
            const double cx = side / 2 + (random() % 256) / 256.0, cy = side / 2 + 0.3;
            RefinedPicture picture(side);
            MMPoint2D centre = {toFixed(cx), toFixed(cy)};
            const Fixed r = toFixed(radius);
            if (way == 0)
                picture.context.drawEllipticalRect(centre.x, centre.y, r, r, r, r);
            else if (way == 1)
                picture.context.drawCircularArc(&centre, r, 0, 360 * kFixedOne, 0, 0);
            else
                picture.fill(MMPathBuilder().circle(centre.x, centre.y, r));
            SCOPED_TRACE(testing::Message() << "radius " << radius << ", way " << way);
            const double area = M_PI * radius * radius;
            const double share = radius < 10 ? 0.013 : radius < 50 ? 0.005 : 0.001;
            EXPECT_NEAR(picture.ink(cx, cy, side) / 255 / area, 1, share);
            const EdgeErrors errors(picture, discAreas(side, cx, cy, radius));
            EXPECT_LE(errors.mean, 4.5);
            EXPECT_LE(errors.worst, 12);
        }
}

// The outer edge lies within 1/16 of a pixel of the true one. Across a pixel that is a sixteenth of
// its area, and half as much again where the edge runs along a diagonal.
TEST(RefinedShapes, StrokesOfCurvesKeepToTheirOffsetCurves)
{
    constexpr double kWorst = 255 / 16.0 * M_SQRT2 + 1.5;
    for (double radius : {1.0, 2.0, 5.0, 20.0, 60.0})
        for (double width : {0.7, 2.0, 9.0, 40.0, 200.0}) {
            const double outer = radius + width / 2;
            const int side = int(2 * outer) + 6;
            const double cx = side / 2 + 0.37, cy = side / 2 + 0.21;
            RefinedPicture picture(side);
            MMContext2D& context = picture.context;
            context.fillPaint.paintType = kPaintNone;
            context.strokePaint.paintType = kPaintSolid;
            context.strokePaint.paintColour = 0xFF000000;
            context.strokeHalfWidth = toFixed(width / 2);
            context.joinStyle = kJoinMiter;
            picture.fill(MMPathBuilder().circle(toFixed(cx), toFixed(cy), toFixed(radius)));
            std::vector<double> areas = discAreas(side, cx, cy, outer);
            if (width < 2 * radius) {
                const std::vector<double> hole = discAreas(side, cx, cy, radius - width / 2);
                for (size_t i = 0; i < areas.size(); ++i)
                    areas[i] -= hole[i];
            }
            const EdgeErrors errors(picture, areas);
            EXPECT_LE(errors.worst, kWorst) << "radius " << radius << ", width " << width;
        }
}

} // namespace
