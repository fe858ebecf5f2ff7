// SPDX-License-Identifier: MIT
// Strokes against the exact union of their pieces, and how much work they may make.
#include "tests/support/Picture.h"
#include "tests/support/StrokeModel.h"
#include "tests/support/UserUnits.h"

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;
using model::Vector;
using Line = std::vector<Vector>;

constexpr int kSize = 128;

void stroke(MMContext2D& context, std::vector<MMPoint2D> points, bool closed = false)
{
    MMLinkPath record = {points.data(), static_cast<uint32_t>(points.size())};
    context.drawPolyline(&record, 1, closed);
}

void stroke(MMContext2D& context, const Line& line, bool closed = false)
{
    model::Polygon points;
    for (Vector v : line)
        model::add(points, v.real(), v.imag());
    stroke(context, points, closed);
}

Matrix2D matrixOf(double a, double b, double c, double d)
{
    return {fx(a), fx(b), fx(c), fx(d), 64.3_fx, 63.8_fx};
}

// A pen of every style meets every line under every transform at every width, not in all
// combinations.
TEST(Polyline, MatchesUnionOfSegmentsJoinsAndCaps)
{
    Line arc, saw;
    for (int i = 0; i <= 24; ++i)
        arc.push_back(std::polar(14.0, i * 0.18));
    for (int i = 0; i <= 16; ++i) // segments far shorter than most pens are wide
        saw.emplace_back(i * 1.1 - 12, i % 2 * 1.7 - 0.4 * i);
    const struct {
        const char* name;
        Line line;
        bool closed;
    } lines[] = {{"zigzag", {{-15, -9}, {12, -13}, {-9, 4}, {16, 9}, {16.5, 14}, {-3, 15}}, false},
                 {"triangle", {{-14, -11}, {15, -7}, {-2, 13}}, true},
                 {"right angles", {{-12, -10}, {13, -10}, {13, 12}, {-12, 12}}, true},
                 {"near reversal", {{-15, 2}, {14, 3}, {-13, 4.1}}, false},
                 {"reversal", {{-15, 2}, {14, 2}, {-3, 2}}, false},
                 {"arc", arc, false},
                 {"saw", saw, false}};
    const Matrix2D transforms[] = {matrixOf(1, 0, 0, 1), matrixOf(3, 0, 0, 1),
                                   matrixOf(1.2, 0.9, -0.9, 1.2), matrixOf(-1.5, 0.3, 0.2, 1.1)};
    const double widths[] = {0.25, 1, 3, 9, 25, 60};
    for (const auto& l : lines)
        for (int t = 0; t < 4; ++t)
            for (int w = 0; w < 6; ++w) {
                Picture picture(kSize);
                MMContext2D& context = picture.context;
                context.transform = transforms[t];
                context.strokeHalfWidth = fx(widths[w] / 2);
                const int style = (t + w + static_cast<int>(l.line.size())) % 3;
                context.joinStyle = static_cast<uint8_t>(style);
                context.capStyle = static_cast<uint8_t>(2 - style);
                stroke(context, l.line, l.closed);
                const auto ideal = model::areas(
                    model::StrokeModel(context, l.line, l.closed).edges(), kSize, kSize, false, 64);
                double sum = 0;
                int edges = 0;
                for (int i = 0; i < kSize * kSize; ++i) {
                    const double wanted = ideal[static_cast<size_t>(i)] * 255;
                    const double error = std::abs(picture.coverage(i % kSize, i / kSize) - wanted);
                    if (error < 0.5 && (wanted < 0.01 || wanted > 254.99)) continue;
                    sum += error;
                    ++edges;
                }
                // The fill's own error is 0.4. No edges: the stroke covers the whole picture.
                EXPECT_LE(sum, 1.4 * edges)
                    << l.name << " transform " << t << " width " << widths[w] << " style " << style;
            }
}

TEST(Polyline, WithoutAntiAliasingIsNeverBroken)
{
    for (const double scale : {1.0, 0.05, -2.0})
        for (int slope = -8; slope <= 8; ++slope)
            for (bool steep : {false, true})
                for (double shift : {0.0, 0.125, 0.5, 0.77}) {
                    Picture picture(kSize);
                    picture.context.antiAlias = 0;
                    picture.context.strokeHalfWidth = 0.02_fx;
                    picture.context.transform = matrixOf(1, 0, 0, scale);
                    const Vector end = steep ? Vector(slope * 5.3, 45) : Vector(45, slope * 5.3);
                    const auto user = [&](Vector v) {
                        return Vector(v.real() + shift, (v.imag() + shift) / scale);
                    };
                    stroke(picture.context, Line{user(-end), user(end)});
                    for (int i = 25; i < 100; ++i) { // one pixel in each column or row, rarely two
                        int across = 0;
                        for (int j = 0; j < kSize; ++j)
                            across += picture.coverage(steep ? j : i, steep ? i : j) / 255;
                        ASSERT_TRUE(across == 1 || across == 2)
                            << scale << " " << slope << " " << steep << " " << i;
                    }
                }
}

TEST(Polyline, LineWithoutLengthLeavesItsCaps)
{
    for (uint8_t cap : {kCapButt, kCapRound, kCapSquare})
        for (bool closed : {false, true})
            for (bool antiAlias : {false, true})
                for (double halfWidth : {10.0, 0.25}) {
                    if (halfWidth < 1 && antiAlias) continue;
                    Picture picture(kSize);
                    MMContext2D& context = picture.context;
                    context.antiAlias = antiAlias;
                    context.capStyle = cap;
                    context.strokeHalfWidth = fx(halfWidth);
                    // On the corner of four pixels, where a small disc would miss all centres.
                    stroke(context, Line{{50, 60}, {50, 60}, {50, 60}}, closed);
                    EXPECT_EQ(picture.blank(), cap == kCapButt);
                    EXPECT_EQ(picture.emptyBounds(), cap == kCapButt);
                    if (cap == kCapButt || halfWidth < 1) continue;
                    EXPECT_EQ(picture.at(58, 68) != Picture::kBlank, cap == kCapSquare);
                    EXPECT_EQ(context.boundsMaxX, 60_fx);
                    EXPECT_NEAR(context.boundsMinY, 50_fx, 256);
                }
}

TEST(Polyline, StepsFromPointToPoint)
{
    Picture picture(kSize);
    picture.context.pointStep = 5;
    stroke(picture.context, Line{{5, 6}, {20, 9}});
    EXPECT_EQ(picture.context.pointStep, 1);
}

TEST(Polyline, LineThatIsADotOnTheDeviceAddsNothingToItsPen)
{
    Picture picture(kSize);
    picture.context.antiAlias = 0;
    picture.context.strokeHalfWidth = 9_fx;
    picture.context.transform = matrixOf(0, 1, 1.0 / 4096, 0);
    stroke(picture.context, std::vector<MMPoint2D>{at(5, 5), {5_fx, 5_fx + 1}});
    EXPECT_EQ(picture.context.boundsMinY, 63.8_fx + fx(5 - 9));
    EXPECT_EQ(picture.context.boundsMaxY, 63.8_fx + fx(5 + 9));
}

TEST(Polyline, MiterLimitIsTheRatioOfLengthToWidth)
{
    // A right angle's miter is sqrt(2) long; smooth turns keep theirs whatever the limit.
    const struct {
        double limit;
        Line line;
        double top;
    } cases[] = {{1.42, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT2},
                 {1.41, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT1_2},
                 {0, {{20, 50}, {50, 20}, {80, 50}}, 20 - 10 * M_SQRT1_2},
                 {0, {{20, 50}, {50, 48}, {80, 50}}, 48 - 10 * std::hypot(1, 1 / 15.0)},
                 {32767, {{50, 100}, {50.5, 50}, {51, 100}}, 50 - 10 * std::hypot(100, 1)}};
    for (const auto& c : cases) {
        Picture picture(kSize);
        picture.context.strokeHalfWidth = 10_fx;
        picture.context.miterLimit = fx(c.limit);
        stroke(picture.context, c.line);
        EXPECT_NEAR(model::toDouble(picture.context.boundsMinY), c.top, 0.01) << c.limit;
    }
}

} // namespace
