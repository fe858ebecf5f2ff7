// SPDX-License-Identifier: MIT
// Filled polygons against exact areas and exact winding numbers, and the limits of the rasterisers:
// clips, thin shapes, vast coordinates.
#include "tests/graphics2d/raster/RasterShapes.h"
#include "tests/support/Picture.h"

#include <climits>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using namespace model;

constexpr int kSize = 140;

using Rasteriser = decltype(&MMContext2D::rasterPolygon);
constexpr Rasteriser kChosen = &MMContext2D::rasterPolygon; // by the outline
constexpr Rasteriser kMonotone = &MMContext2D::rasterMonotonePolygon;
constexpr Rasteriser kComplex = &MMContext2D::rasterComplexPolygon;

struct RasterPicture : Picture {
    explicit RasterPicture(bool antiAlias = true, bool evenOdd = false) : Picture(kSize)
    {
        context.antiAlias = antiAlias;
        context.fillRule = evenOdd ? kFillEvenOdd : kFillNonZero;
    }
    void fill(Polygon polygon, Rasteriser raster = kChosen)
    {
        (context.*raster)(polygon.data(), static_cast<uint16_t>(polygon.size()));
    }
};

// Differences of coverage from the exact areas, in 1/255; the mean is over edge pixels.
struct Errors {
    double mean, worst;
    int worstX, worstY;
};

Errors errorsOf(const Picture& picture, const std::vector<double>& areas)
{
    Errors errors = {};
    int edgePixels = 0;
    for (int i = 0; i < kSize * kSize; ++i) {
        const double area = areas[std::size_t(i)];
        const int x = i % kSize, y = i / kSize;
        const double error = std::abs(area * 255 - picture.coverage(x, y));
        if (error > errors.worst) errors = {errors.mean, error, x, y};
        if (area <= 1e-6 || area >= 1 - 1e-6) continue;
        errors.mean += error;
        ++edgePixels;
    }
    errors.mean /= edgePixels;
    return errors;
}

// What lies around the point (c, r) by the classic rules lies in [c, c + 1) and [r, r + 1) then.
Polygon movedByHalf(Polygon polygon)
{
    for (MMPoint2D& p : polygon)
        p = {p.x + kFixedHalf, p.y + kFixedHalf};
    return polygon;
}

TEST(RasterQuality, CoverageIsTheArea)
{
    for (const Shape& shape : shapes())
        for (bool evenOdd : {false, true}) {
            SCOPED_TRACE(testing::Message() << shape.name << " even-odd " << evenOdd);
            const auto ideal = areas(edgesOf(shape.polygon), kSize, kSize, evenOdd, 512);
            for (const auto raster : {kChosen, kComplex})
                for (uint8_t refined : {0, 1}) {
                    RasterPicture picture(true, evenOdd);
                    picture.context.refined = refined;
                    picture.fill(refined != 0 ? movedByHalf(shape.polygon) : shape.polygon, raster);
                    const Errors errors = errorsOf(picture, ideal);
                    // Refined coverage becomes a weight of 0 to 256 before it is blended.
                    const double mean = shape.error.mean + (refined != 0 ? 0.1 : 0);
                    EXPECT_LE(errors.mean, mean) << "refined " << int(refined);
                    EXPECT_LE(errors.worst, shape.error.worst)
                        << "refined " << int(refined) << ", at " << errors.worstX << ", "
                        << errors.worstY;
                }
        }
}

// Whether a point lies in one of a row's spans; right edges do.
bool isIn(const Spans& spans, double x)
{
    return std::any_of(spans.begin(), spans.end(),
                       [x](auto& span) { return span.first < x && x <= span.second; });
}

TEST(RasterQuality, SharpPixelsAreTheWindingAtTheirCentres)
{
    constexpr double kNear = (kSize + 2) / 65536.0; // x may be off by a unit a row
    for (const Shape& shape : shapes()) {
        const Edges edges = edgesOf(shape.polygon);
        for (bool evenOdd : {false, true}) {
            RasterPicture picture(false, evenOdd);
            picture.fill(shape.polygon);
            for (int y = 0; y < kSize; ++y) {
                const Spans above = spans(edges, y + 0.5 - kNear, evenOdd);
                const Spans below = spans(edges, y + 0.5 + kNear, evenOdd);
                for (int x = 0; x < kSize; ++x) {
                    const double left = x + 0.5 - kNear, right = x + 0.5 + kNear;
                    const int corners = isIn(above, left) + isIn(above, right) + isIn(below, left) +
                                        isIn(below, right);
                    if (corners % 4 != 0) continue; // an outline is near
                    ASSERT_EQ(picture.coverage(x, y), corners == 0 ? 0 : 255)
                        << shape.name << " even-odd " << evenOdd << " at " << x << ", " << y;
                }
            }
        }
    }
}

// Outlines on half pixels put many centres exactly on edges. Every second polygon is monotone.
TEST(RasterQuality, CentresOnEdgesBelongToTheRightAndUpperNeighbour)
{
    std::mt19937 random(11);
    for (int n = 0; n < 400; ++n) {
        Polygon polygon;
        double x = 20, y = 20;
        for (int i = 0; i < 12; ++i) {
            add(polygon, x, y);
            if (i % 2 == 0)
                x = 1 + (random() % 60) * 0.5;
            else
                y = n % 2 == 0 ? y + (random() % 7) * 0.5 : 1 + (random() % 60) * 0.5;
        }
        add(polygon, x, 20); // and back along the grid
        const bool evenOdd = n % 4 < 2;
        RasterPicture picture(false, evenOdd);
        picture.fill(polygon);
        for (int row = 0; row < 40; ++row) {
            const Spans inside = spans(edgesOf(polygon), row + 0.5, evenOdd);
            for (int c = 0; c < 40; ++c)
                ASSERT_EQ(picture.coverage(c, row) != 0, isIn(inside, c + 0.5))
                    << "polygon " << n << " at " << c << ", " << row;
        }
    }
}

TEST(RasterQuality, NoPixelIsDrawnTwice)
{
    for (const Shape& shape : shapes()) {
        RasterPicture half, inverted;
        half.context.currentPaint.paintOpacity = 128;
        half.fill(shape.polygon);
        inverted.context.currentPaint.paintType = kPaintXOR;
        inverted.context.currentPaint.paintColour = 0xFFFFFFFF;
        inverted.fill(shape.polygon);
        for (int i = 0; i < kSize * kSize; ++i) {
            const int x = i % kSize, y = i / kSize, covered = half.coverage(x, y);
            ASSERT_LE(covered, 128) << shape.name << " at " << x << ", " << y;
            ASSERT_TRUE(covered < 12 || inverted.coverage(x, y) == 255)
                << shape.name << " at " << x << ", " << y;
        }
        inverted.fill(shape.polygon);
        EXPECT_TRUE(inverted.blank()) << shape.name;
    }
}

// Whether picking finds the polygon at x in the row.
bool isHit(RasterPicture& picture, const Polygon& polygon, Fixed x, int row, uint8_t opacity = 255)
{
    MMContext2D& context = picture.context;
    context.pickX = x;
    context.pickY = row * kFixedOne;
    context.pickHit = 0;
    context.currentPaint.paintType = kPaintPicking;
    context.currentPaint.paintOpacity = opacity;
    picture.fill(polygon);
    return context.pickHit != 0;
}

// A span is hit from its first pixel to the one behind its last.
TEST(RasterQuality, SmoothPickingHitsWhatWouldBeCovered)
{
    const Polygon polygon = star(30, 30, 25, 5, 2);
    RasterPicture filled, picture;
    filled.fill(polygon);
    for (int i = 61; i < 60 * 60; ++i) {
        const int x = i % 60, y = i / 60;
        const bool covered = filled.coverage(x, y) + filled.coverage(x - 1, y) > 0;
        ASSERT_EQ(isHit(picture, polygon, x * kFixedOne, y, i % 2 == 0 ? 255 : 100), covered)
            << x << ", " << y;
    }
}

// Without anti-aliasing a span is hit between its very ends, both included, as they lie after the
// shift by half a pixel. Where spans follow each other within a pixel, what is between is missed.
TEST(RasterQuality, SharpPickingHitsBetweenTheEndsOfTheSpans)
{
    std::mt19937 random(5);
    const Polygon star5 = star(30, 30, 25, 5, 2);
    const Polygon slats =
        bridged({rectangle(10.2, 10, 14.3, 50), rectangle(14.4, 10, 22, 50), tangle(3, 50, 5, 50)});
    for (const Polygon& polygon : {star5, slats, rectangle(20.3, 10, 20.6, 40)})
        for (bool evenOdd : {false, true})
            for (int i = 0; i < 6000; ++i) {
                const int row = int(random() % 60);
                const Fixed x = Fixed(random() % (60 << 16));
                bool isInside = false, isNear = false;
                for (auto [start, end] : spans(edgesOf(polygon), row + 0.5, evenOdd)) {
                    const double toStart = toDouble(x) - start - 0.5;
                    const double toEnd = end + 0.5 - toDouble(x);
                    isInside |= toStart >= 0 && toEnd >= 0;
                    isNear |= std::min(std::abs(toStart), std::abs(toEnd)) < 70 / 65536.0;
                }
                if (isNear) continue; // x may be off by a unit a row
                RasterPicture picture(false, evenOdd);
                ASSERT_EQ(isHit(picture, polygon, x, row), isInside)
                    << "x " << toDouble(x) << ", row " << row << ", even-odd " << evenOdd;
            }
}

// The thin rule passes its ends on likewise, also with anti-aliasing; all are cut to the clip.
TEST(RasterQuality, SpansAreCutWhereTheClipAndTheTargetEnd)
{
    const struct {
        double left, top, right, bottom, x;
        bool antiAlias, hit;
    } cases[] = {{10.25, 5, 20.75, 8, 10.5, false, false},
                 {10.25, 5, 20.75, 8, 21.1, false, true},
                 {10.25, 5, 20.75, 8, 21.3, false, false},
                 {10.6, 5, 10.8, 8, 11.2, false, true},
                 {10.6, 5, 10.8, 8, 11.4, false, false},
                 {-9, 5, 60, 8, 3.9, false, false},
                 {-9, 5, 60, 8, 4, false, true},
                 {-9, 5, 60, 8, 30, false, true},
                 {-9, 5, 60, 8, 30.1, false, false},
                 {10.25, 6.7, 20.75, 7.3, 10.7, true, false},
                 {10.25, 6.7, 20.75, 7.3, 10.8, true, true},
                 {10.25, 6.7, 20.75, 7.3, 21.2, true, true},
                 {10.25, 6.7, 20.75, 7.3, 21.3, true, false},
                 {-9, 6.7, 60, 7.3, 30.1, true, false}};
    for (const auto& c : cases) {
        RasterPicture picture(c.antiAlias);
        picture.context.clipLeft = 4;
        picture.context.clipRight = 200;
        picture.context.target.width = 30;
        EXPECT_EQ(isHit(picture, rectangle(c.left, c.top, c.right, c.bottom), toFixed(c.x), 7),
                  c.hit)
            << c.left << " to " << c.right << " at " << c.x;
    }
}

// Bilinear sampling starts at the span's exact left end: half a texel into a black and white pair.
TEST(RasterQuality, SmoothingFiltersSampleFromTheLeftEndOfTheSpan)
{
    Pixel texels[] = {0xFF000000, 0xFFFFFFFF};
    const MMPixmap image = {2, 1, 8, 0, texels, 0};
    RasterPicture picture(false);
    picture.context.drawImage(&image, 0, 0, 2 * kFixedOne, kFixedOne, 0);
    EXPECT_EQ(picture.at(0, 0), 0xFF7F7F7F);
    EXPECT_EQ(picture.at(1, 0), 0xFFFFFFFF);
}

// The opacity is 255 * height >> 8, and one more from 128 to 254.
TEST(RasterLimits, AThinShapeIsOneSpanWithTheOpacityOfItsHeight)
{
    const struct {
        double left, top, bottom;
        int value;
    } cases[] = {
        {10, 20, 20.25, 63}, {10, 19.5, 20.5, 255}, {10, 19.75, 20.25, 127}, {9.5, 20, 20.5, 127}};
    for (const auto& c : cases) {
        RasterPicture picture;
        picture.fill(rectangle(c.left, c.top, c.left + 20, c.bottom));
        for (int y = 18; y < 23; ++y)
            for (int x = 8; x < 33; ++x)
                ASSERT_EQ(picture.coverage(x, y), y == 20 && 10 <= x && x < 30 ? c.value : 0)
                    << c.left << ", " << c.top << " at " << x << ", " << y;
        EXPECT_EQ(picture.context.currentPaint.paintOpacity, 255);
    }
}

// Not even where one of three would be a thin shape.
TEST(RasterLimits, TwoPointsDrawNothing)
{
    for (const auto raster : {kChosen, kMonotone, kComplex})
        for (double height : {0.0, 0.3, 9.0}) {
            RasterPicture picture;
            picture.fill(points({{10, 20}, {30, 20 + height}}), raster);
            EXPECT_TRUE(picture.blank()) << height;
        }
}

// The second corner, half a pixel further, is the first one as it is given: by the classic rules
// the outline counts as closed there, and the edge up to the top is missing. Rows above reach from
// that corner's x to the right side.
TEST(RasterLimits, AnOutlineThatSeemsClosedStaysOpenByTheClassicRules)
{
    const Polygon polygon = points({{20, 10}, {19.5, 9.5}, {30, 5}, {40, 30}});
    for (uint8_t refined : {0, 1}) {
        RasterPicture picture;
        picture.context.refined = refined;
        picture.fill(polygon, kMonotone);
        EXPECT_EQ(picture.coverage(22, 6), refined != 0 ? 0 : 255);
        EXPECT_EQ(picture.coverage(19, 6), 0);
        EXPECT_EQ(picture.coverage(29, 6), 255);
    }
}

TEST(RasterLimits, ClipsKeepThePixelsInsideAndDrawNothingOutside)
{
    constexpr int kInset = 8; // the target lies this far inside the picture
    constexpr int kTarget = kSize - 2 * kInset;
    const struct {
        int16_t left, top, right, bottom;
    } clips[] = {{40, 30, 90, 80},
                 {61, 20, 62, 100},
                 {0, 59, 140, 60},
                 {-300, -300, 3000, 3000},
                 {50, 50, 40, 40}};
    std::vector<Shape> list = shapes();
    list.push_back({"thin", rectangle(-3, 20.1, 200, 20.4), {}});
    for (const Shape& shape : list)
        for (bool antiAlias : {false, true}) {
            RasterPicture whole(antiAlias);
            whole.fill(shape.polygon);
            for (const auto& clip : clips) {
                RasterPicture picture(antiAlias);
                MMContext2D& context = picture.context;
                context.target.pixels += kInset * kSize + kInset;
                context.target.width = context.target.height = kTarget;
                context.clipLeft = clip.left;
                context.clipTop = clip.top;
                context.clipRight = clip.right;
                context.clipBottom = clip.bottom;
                picture.fill(shape.polygon);
                for (int y = -kInset; y < kSize - kInset; ++y)
                    for (int x = -kInset; x < kSize - kInset; ++x) {
                        const bool visible = std::min(x, y) >= 0 && std::max(x, y) < kTarget &&
                                             x >= clip.left && x < clip.right && y >= clip.top &&
                                             y < clip.bottom;
                        const int expected = visible ? whole.coverage(x, y) : 0;
                        // A run that starts at the clip may round its step elsewhere.
                        const int error = expected % 255 != 0 ? antiAlias : 0;
                        ASSERT_NEAR(picture.coverage(x + kInset, y + kInset), expected, error)
                            << shape.name << " at " << x << ", " << y;
                    }
            }
        }
}

TEST(RasterLimits, EmptyTargetsAndSuppressedDrawingOnlySetTheBounds)
{
    for (int way = 0; way < 3; ++way)
        for (const auto raster : {kMonotone, kComplex}) {
            RasterPicture picture;
            if (way == 0) picture.context.target.pixels = nullptr;
            if (way == 1) picture.context.target.width = picture.context.target.height = 0;
            if (way == 2) picture.context.drawSuppressed = 1;
            picture.fill(rectangle(10, 10, 20, 30), raster);
            EXPECT_EQ(picture.context.boundsMaxY, 30 * kFixedOne);
            EXPECT_TRUE(picture.blank());
        }
}

TEST(RasterLimits, LongEdgesDoNotWrap)
{
    constexpr Fixed kFar = INT_MAX;
    for (bool antiAlias : {false, true})
        for (const auto raster : {kMonotone, kComplex}) {
            RasterPicture picture(antiAlias);
            picture.fill({{-kFar, -kFar}, {kFar, -kFar}, {kFar, kFar}, {-kFar, kFar}}, raster);
            for (int i = 0; i < kSize * kSize; ++i)
                ASSERT_EQ(picture.coverage(i % kSize, i / kSize), 255);
        }
}

} // namespace
