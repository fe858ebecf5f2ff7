// SPDX-License-Identifier: MIT
// Strokes about as thin as a pixel, or thinner: how dark they are, and that none breaks or
// vanishes.
#include "tests/support/Picture.h"
#include "tests/support/UserUnits.h"

#include <cmath>
#include <random>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr int kSide = 40;

class Places {
public:
    double within(double low, double high)
    {
        return low + (high - low) * (random_() / 4294967296.0);
    }
    uint8_t below(uint32_t limit) { return static_cast<uint8_t>(random_() % limit); }

private:
    std::mt19937 random_{1};
};

void stroke(MMContext2D& context, std::vector<MMPoint2D> points, bool closed = false)
{
    MMLinkPath record = {points.data(), static_cast<uint32_t>(points.size())};
    context.drawPolyline(&record, 1, closed);
}

TEST(ThinStrokes, ANearlyLevelLineIsAsDarkAsItsWidth)
{
    Picture picture(kSide);
    picture.context.strokeHalfWidth = 0.1_fx;
    stroke(picture.context, {at(5, 9.6), at(30, 10.3)});
    for (int x = 6; x < 30; ++x)
        EXPECT_NEAR(picture.coverage(x, 9) + picture.coverage(x, 10), 0.2 * 255, 3) << x;
}

TEST(ThinStrokes, InkIsTheirArea)
{
    Places places;
    Picture picture(kSide);
    for (int i = 0; i < 10000; ++i) {
        const bool dot = i % 4 == 0;
        const double half = places.within(dot ? 0.15 : 0.05, 0.6);
        const double x = places.within(14, 26), y = places.within(14, 26);
        const double length = dot ? 0 : places.within(0.5, 12);
        const double angle = i % 2 != 0 ? places.within(-0.1, 0.1) : places.within(0, 7);
        picture.fill(Picture::kBlank);
        picture.context.strokeHalfWidth = fx(half);
        picture.context.capStyle = dot ? kCapRound : kCapButt;
        stroke(picture.context,
               {at(x, y), at(x + length * std::cos(angle), y + length * std::sin(angle))});
        int ink = 0, touched = 0;
        for (int k = 0; k < kSide * kSide; ++k) {
            ink += picture.coverage(k % kSide, k / kSide);
            const double dx = k % kSide - x, dy = k / kSide - y;
            const double along = dx * std::cos(angle) + dy * std::sin(angle);
            const double beside = along - std::clamp(along, 0.0, length);
            const double across = dy * std::cos(angle) - dx * std::sin(angle);
            touched += std::hypot(beside, across) < half + 0.5;
        }
        const double area = (dot ? M_PI * half * half : length * 2 * half) * 255;
        ASSERT_NEAR(ink, area, std::max(area * 0.03, std::max(touched, 4) * 0.5))
            << x << ',' << y << " length " << length << " angle " << angle << " half " << half;
        ASSERT_GT(ink, 0);
    }
}

// How many pixels of the picture are lit, and how many of them hang together with the first.
std::pair<int, int> litAndConnected(const Picture& picture)
{
    std::vector<int> found;
    std::vector<bool> seen(kSide * kSide);
    int lit = 0;
    for (int k = 0; k < kSide * kSide; ++k) {
        if (picture.coverage(k % kSide, k / kSide) == 0) continue;
        if (lit++ == 0) found.push_back(k), seen[static_cast<size_t>(k)] = true;
    }
    for (size_t i = 0; i < found.size(); ++i)
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const int x = found[i] % kSide + dx, y = found[i] / kSide + dy;
                if (x < 0 || y < 0 || x >= kSide || y >= kSide) continue;
                const size_t k = static_cast<size_t>(y * kSide + x);
                if (seen[k] || picture.coverage(x, y) == 0) continue;
                seen[k] = true;
                found.push_back(static_cast<int>(k));
            }
    return {lit, static_cast<int>(found.size())};
}

// Of a pixel's width at most: even pens, and pens that are squeezed and turned.
TEST(ThinStrokes, WithoutAntiAliasingTheyAreOfOnePiece)
{
    Places places;
    Picture picture(kSide);
    for (int i = 0; i < 20000; ++i) {
        const double half = places.within(0.01, 0.5);
        const double squeeze = i % 2 != 0 ? 1 : places.within(0.05, 1);
        const double turn = places.within(0, 7), reach = places.within(0.1, 12);
        picture.fill(Picture::kBlank);
        MMContext2D& context = picture.context;
        context.antiAlias = 0;
        context.strokeHalfWidth = fx(half);
        context.joinStyle = places.below(3);
        context.capStyle = places.below(3);
        context.miterLimit = fx(places.within(1, 30));
        context.transform = {fx(std::cos(turn)),
                             fx(std::sin(turn)),
                             fx(-std::sin(turn) * squeeze),
                             fx(std::cos(turn) * squeeze),
                             20_fx,
                             20_fx};
        std::vector<MMPoint2D> points;
        const bool dot = places.below(10) == 0;
        for (int n = 2 + places.below(4); n > 0; --n)
            points.push_back(dot ? at(0.3, 0.6)
                                 : at(places.within(-reach, reach), places.within(-reach, reach)));
        stroke(context, points, places.below(4) == 0);
        const auto [lit, connected] = litAndConnected(picture);
        ASSERT_EQ(lit, connected) << i << ": squeezed to " << squeeze << ", turned by " << turn
                                  << ", half width " << half << ", style " << int(context.joinStyle)
                                  << int(context.capStyle) << ' '
                                  << testing::PrintToString(points.size());
        ASSERT_TRUE(lit > 0 || (dot && context.capStyle == kCapButt)) << i;
    }
}

// Somewhat wider than a pixel. Beyond the exact outline, only the first point's pixel may be lit.
TEST(ThinStrokes, SmallOnesLightAPixelAndNoMoreThanTheirOutlineHolds)
{
    Places places;
    Picture picture(kSide);
    for (int i = 0; i < 20000; ++i) {
        const double half = places.within(0.5, 0.7), length = i % 2 * places.within(0, 1);
        const double x = places.within(18, 20), y = places.within(18, 20);
        const double angle = places.within(0, 7);
        picture.fill(Picture::kBlank);
        MMContext2D& context = picture.context;
        context.antiAlias = 0;
        context.strokeHalfWidth = fx(half);
        context.capStyle = i % 4 < 2 ? kCapRound : kCapSquare;
        const double dx = std::cos(angle), dy = std::sin(angle);
        stroke(context, {at(x, y), at(x + length * dx, y + length * dy)});
        ASSERT_FALSE(picture.blank()) << x << ',' << y << " length " << length << " half " << half;
        for (int k = 0; k < kSide * kSide; ++k) {
            if (picture.coverage(k % kSide, k / kSide) == 0) continue;
            if (k % kSide == int(x) && k / kSide == int(y)) continue;
            const double cx = k % kSide + 0.5 - x, cy = k / kSide + 0.5 - y;
            const bool turned = length > 0 || context.capStyle == kCapRound;
            double along = turned ? cx * dx + cy * dy : cx,
                   across = turned ? cy * dx - cx * dy : cy;
            along -= std::clamp(along, 0.0, length);
            const double away = context.capStyle == kCapRound
                                    ? std::hypot(along, across)
                                    : std::max(std::abs(along), std::abs(across));
            ASSERT_LE(away, half + 0.001)
                << x << ',' << y << " length " << length << " angle " << angle << " half " << half;
        }
    }
}

// Butt caps add nothing: a line between the pixels' centres leaves none, as a fill would.
TEST(ThinStrokes, ButtsLightNoPixelWhoseCentreTheyMiss)
{
    for (uint8_t cap : {kCapButt, kCapSquare}) {
        Picture picture(kSide);
        picture.context.antiAlias = 0;
        picture.context.strokeHalfWidth = 0.6_fx;
        picture.context.capStyle = cap;
        stroke(picture.context, {at(10.9, 10.5), at(11.2, 10.5)});
        EXPECT_EQ(picture.blank(), cap == kCapButt);
    }
}

// The outlines of the pen and of one pixel turn the same way also where the transform mirrors; if
// they did not, they would cut holes into each other.
TEST(ThinStrokes, MirroredPensDrawTheSame)
{
    Picture pictures[2];
    for (int i : {0, 1}) {
        MMContext2D& context = pictures[i].context;
        const double sign = i == 0 ? 1 : -1;
        context.antiAlias = 0;
        context.strokeHalfWidth = 2_fx;
        context.transform = {2_fx, 0.5_fx, 0, fx(0.125 * sign), 20_fx, 20_fx};
        stroke(context, {at(-7, -40 * sign), at(5, 70 * sign), at(14, -20 * sign)});
        EXPECT_FALSE(pictures[i].blank());
    }
    EXPECT_EQ(pictures[0].pixels, pictures[1].pixels);
}

TEST(ThinStrokes, UnknownStylesAreMitersAndButts)
{
    for (uint8_t style : {3, 9, 255})
        for (double squeeze : {1.0, 0.01})
            for (uint8_t antiAlias : {0, 1})
                for (bool dot : {false, true}) {
                    Picture known, unknown;
                    unknown.context.joinStyle = unknown.context.capStyle = style;
                    for (Picture* picture : {&known, &unknown}) {
                        picture->context.antiAlias = antiAlias;
                        picture->context.strokeHalfWidth = 3_fx;
                        picture->context.transform.d = fx(squeeze);
                        const MMPoint2D start = at(9, 10 / squeeze);
                        stroke(picture->context,
                               {start, dot ? start : at(30, 30 / squeeze), at(9, 40 / squeeze)});
                        stroke(picture->context, {start, start});
                    }
                    EXPECT_EQ(known.pixels, unknown.pixels);
                    EXPECT_EQ(known.context.boundsMaxX, unknown.context.boundsMaxX);
                }
}

} // namespace
