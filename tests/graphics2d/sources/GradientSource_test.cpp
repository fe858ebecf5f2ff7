// SPDX-License-Identifier: MIT
// Gradient sources against double precision: all kinds, spreads and cases of two circles, at random
// places of the largest targets, and input that has no sensible ramp.
#include "tests/graphics2d/sources/GradientModel.h"
#include "tests/graphics2d/sources/SourceInput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace KAVO;
using namespace KAVO::Graphics2D;
using model::Point;

namespace {

constexpr MMSpread kSpreads[] = {kSpreadPad, kSpreadRepeat, kSpreadReflect};

// Skewed, mirrored now and then, and with the origin at a device point.
Matrix2D transformAt(Point origin, Random& random)
{
    const Point unit = random.ratio(0.3, 3) * random.direction();
    const Point other = unit * Point{random.between(-0.5, 0.5),
                                     random.between(0.5, 2) * (random.whole(0, 3) ? 1 : -1)};
    return {fx(unit.real()),  fx(unit.imag()),   fx(other.real()),
            fx(other.imag()), fx(origin.real()), fx(origin.imag())};
}

// Stops so far apart that the ramp changes by two levels per entry of the table at most.
struct SmoothStops {
    std::vector<Pixel> colours;
    std::vector<Fixed> offsets;
    bool opaque;

    explicit SmoothStops(Random& random) : opaque(random.whole(0, 1) != 0)
    {
        double offset = random.whole(0, 1) ? 0 : random.between(0, 0.2);
        while (offset < 1) {
            offsets.push_back(fx(offset));
            colours.push_back(random.engine() | (opaque ? 0xFF000000 : 0));
            offset += random.between(0.25, 0.6);
        }
        if (random.whole(0, 1)) offsets.back() = kFixedOne;
    }
    GradientStops get() const
    {
        return {colours.data(), offsets.data(), static_cast<uint32_t>(colours.size())};
    }
};

using Parameter = std::function<std::optional<double>(Point device)>;

// A source, asked as the fillers ask it.
struct Drawn {
    MMPaint paint = {};
    MMGradientSource source;

    std::vector<Pixel> row(int y, int x, int count) const { return rowOf(paint, y, x, count); }
};

struct Errors {
    double sum = 0, worst = 0, count = 0;

    void add(double error)
    {
        sum += error;
        worst = std::max(worst, error);
        ++count;
    }
    double mean() const { return sum / count; }
};

double errorOf(Pixel pixel, const model::Colour& colour)
{
    double worst = 0;
    for (int k = 0; k < 4; ++k)
        worst = std::max(worst, std::abs((pixel >> (8 * k) & 255) - colour[k]));
    return worst;
}

// Holds random pieces of rows around a point to the model. Where the colour jumps within a pixel (a
// spread's end, the cone's edge, a hard stop) that of either side will do.
void compare(const Drawn& drawn, const GradientStops& stops, MMSpread spread,
             const Parameter& parameter, Point around, Random& random, Errors& errors,
             const std::string& what, double hardStop = -1)
{
    const auto colourAt = [&](Point device) -> model::Colour {
        const std::optional<double> t = parameter(device);
        return t ? model::rampColour(stops, model::spread(*t, spread)) : model::Colour{};
    };
    // Which smooth part of the picture a point belongs to.
    const auto partOf = [&](Point device) {
        const std::optional<double> t = parameter(device);
        if (!t) return -1e9;
        const double whole = spread == kSpreadRepeat ? std::floor(*t) : 0;
        return 2 * whole + (model::spread(*t, spread) >= hardStop ? 1 : 0);
    };
    for (int piece = 0; piece < 12; ++piece) {
        const int y = std::clamp(static_cast<int>(around.imag()) + random.whole(-60, 60), 0, 32766);
        const int x =
            std::clamp(static_cast<int>(around.real()) + random.whole(-150, 60), 0, 32600);
        const int count = random.whole(0, 2) ? random.whole(1, 128) : random.whole(1, 5);
        const std::vector<Pixel> pixels = drawn.row(y, x, count);
        for (int i = 0; i < count; ++i) {
            const Point centre(x + i + 0.5, y + 0.5);
            const double part = partOf(centre);
            const double error = errorOf(pixels[static_cast<size_t>(i)], colourAt(centre));
            bool jumps = false, isSeam = false, matches = error <= 2.5, isNoise = false;
            for (int direction = 0; direction < 8; ++direction) {
                const Point near = centre + std::polar(1.0, direction * M_PI / 4);
                jumps |= partOf(near) != part;
                if (parameter(near) && parameter(centre)) {
                    const double step = std::abs(*parameter(near) - *parameter(centre));
                    isSeam |= step > 0.9; // where a full turn ends
                    isNoise |=
                        spread != kSpreadPad && (step > 0.25 || std::abs(*parameter(centre)) > 128);
                }
                matches |= errorOf(pixels[static_cast<size_t>(i)], colourAt(near)) <= 2.5;
            }
            if (isNoise) continue; // a few pixels to a period, or more than a hundred periods away
            if (isSeam && matches) continue;
            if (!jumps) errors.add(error);
            if (jumps ? matches : error <= 2.5) continue;
            if (jumps && hardStop < 0) continue;
            const std::optional<double> t = parameter(centre);
            FAIL() << what << " spread " << int{spread} << " at " << x + i << ", " << y << ": "
                   << std::hex << pixels[static_cast<size_t>(i)] << std::dec << " is off by "
                   << error << ", t = " << (t ? *t : NAN);
        }
    }
}

std::string text(const MMSourceCircle& circle)
{
    return " circle " + std::to_string(circle.centre.x) + " " + std::to_string(circle.centre.y) +
           " " + std::to_string(circle.radius);
}

Parameter radialOf(const Matrix2D& m, const MMSourceCircle& start, const MMSourceCircle& end)
{
    return [=](Point device) {
        return model::radialParameter(model::inverse(m, device), model::ofPoint(start.centre),
                                      model::ofFixed(start.radius), model::ofPoint(end.centre),
                                      model::ofFixed(end.radius));
    };
}

} // namespace

TEST(GradientSource, LinearFollowsItsRamp)
{
    Random random(1);
    for (const MMSpread spread : kSpreads) {
        Errors errors;
        for (int round = 0; round < 400; ++round) {
            const Point origin(random.between(0, 32000), random.between(0, 32000));
            const Matrix2D m = transformAt(origin, random);
            const Point far = random.ratio(4, 3000) * random.direction();
            const MMPoint2D start = at(random.between(-50, 50), random.between(-50, 50));
            const MMPoint2D end = at(far.real(), far.imag());
            const SmoothStops stops(random);
            Drawn drawn;
            setLinearSource(drawn.paint, drawn.source, start, end, m, stops.get(), spread);
            ASSERT_EQ(drawn.paint.sourceIsOpaque != 0, stops.opaque || stops.get().count == 0);
            const Parameter parameter = [&](Point device) {
                return model::linearParameter(model::inverse(m, device), model::ofPoint(start),
                                              model::ofPoint(end));
            };
            compare(drawn, stops.get(), spread, parameter, origin, random, errors, text(m));
            if (HasFatalFailure()) return;
        }
        EXPECT_LT(errors.mean(), 0.6);
        EXPECT_GT(errors.count, 100000);
    }
}

struct CircleCase {
    const char* name;
    double distance, startRadius, endRadius; // in units of a size
};

constexpr CircleCase kCircleCases[] = {
    {"concentric", 0, 0, 1},
    {"concentric ring", 0, 0.5, 1},
    {"concentric, shrinking", 0, 1, 0.3},
    {"focal point inside", 0.5, 0, 1},
    {"focal point near the edge", 0.95, 0, 1},
    {"focal point nearer to the edge", 0.998, 0, 1},
    {"focal point on the edge", 1, 0, 1},
    {"focal point just outside", 1.002, 0, 1},
    {"focal point outside", 1.5, 0, 1},
    {"one inside the other", 0.4, 0.3, 1},
    {"one inside the other, shrinking", 0.4, 1, 0.3},
    {"touching from inside", 0.75, 0.25, 1},
    {"touching, shrinking", 0.75, 1, 0.25},
    {"touching point far away", 0.125, 1, 1.125},
    {"shrinking to a point on the edge", 1, 1, 0},
    {"nearly touching, shrinking", 0.7501, 1, 0.25},
    {"crossing", 1, 0.7, 0.9},
    {"apart", 3, 0.5, 1},
    {"apart, shrinking", 3, 1, 0.5},
    {"equal radii", 2, 0.6, 0.6},
    {"nearly equal radii", 2, 0.6, 0.6001},
    {"shrinking to a point", 2, 1, 0},
};

TEST(GradientSource, RadialFollowsItsRampInAllCasesOfTwoCircles)
{
    Random random(2);
    for (const CircleCase& c : kCircleCases)
        for (const MMSpread spread : kSpreads) {
            Errors errors;
            for (int round = 0; round < 60; ++round) {
                const Point origin(random.between(0, 32000), random.between(0, 32000));
                const Matrix2D m = transformAt(origin, random);
                const double size = random.ratio(30, 500);
                const Point way = c.distance * size * random.direction();
                // Whole units along an axis, so that touching circles touch exactly.
                const double unit = std::floor(size / 8) * 8;
                const bool exact = round % 2 == 0;
                const MMSourceCircle start = {at(5, 7), fx(c.startRadius * (exact ? unit : size))};
                const MMSourceCircle end = {exact ? at(5 + c.distance * unit, 7)
                                                  : at(5 + way.real(), 7 + way.imag()),
                                            fx(c.endRadius * (exact ? unit : size))};
                const SmoothStops stops(random);
                Drawn drawn;
                setRadialSource(drawn.paint, drawn.source, start, end, m, stops.get(), spread);
                compare(drawn, stops.get(), spread, radialOf(m, start, end), origin, random, errors,
                        c.name + (": " + text(m)) + text(start) + text(end));
                if (HasFatalFailure()) return;
            }
            EXPECT_LT(errors.mean(), 0.6) << c.name;
            EXPECT_GT(errors.count, 1000) << c.name;
        }
}

TEST(GradientSource, ConicFollowsItsRamp)
{
    Random random(3);
    for (const MMSpread spread : kSpreads) {
        Errors errors;
        for (int round = 0; round < 400; ++round) {
            const Point origin(random.between(0, 32000), random.between(0, 32000));
            const Matrix2D m = transformAt(origin, random);
            const MMPoint2D centre = at(random.between(-300, 300), random.between(-300, 300));
            const double start = random.between(-800, 800);
            const double sweep = round % 2 ? 360 : random.between(-900, 900);
            const Degrees from = fx(start), to = fx(start + sweep);
            const SmoothStops stops(random);
            Drawn drawn;
            setConicSource(drawn.paint, drawn.source, centre, from, to, m, stops.get(), spread);
            const Parameter parameter = [&](Point device) {
                return model::conicParameter(model::inverse(m, device), model::ofPoint(centre),
                                             model::ofFixed(from), model::ofFixed(to));
            };
            compare(drawn, stops.get(), spread, parameter, origin, random, errors, text(m));
            if (HasFatalFailure()) return;
        }
        EXPECT_LT(errors.mean(), 0.6);
    }
}

// On ramps longer than the table, within a pixel of their place; and so do all sixteen.
TEST(GradientSource, HardStopsStayInPlace)
{
    Random random(4);
    for (int round = 0; round < 300; ++round) {
        const Point origin(random.between(5000, 27000), random.between(5000, 27000));
        const Matrix2D m = {
            kFixedOne,        0, 0, round % 2 ? kFixedOne : -kFixedOne, fx(origin.real()),
            fx(origin.imag())};
        const double length = random.ratio(200, 30000);
        const Fixed offset = fx(random.between(0.1, 0.9));
        const Pixel colours[] = {0xFF000000, 0xFF400000, 0xFFC0FFFF, 0xFFFFFFFF};
        const Fixed offsets[] = {0, offset, offset, kFixedOne};
        const GradientStops stops = {colours, offsets, 4};
        const MMSpread spread = kSpreads[round % 3];
        const MMPoint2D centre = {0, 0}, end = at(length, 0);
        const MMSourceCircle from = {at(length / 3, 0), 0}, to = {centre, fx(length)};
        Parameter parameter;
        Drawn drawn;
        if (round % 4 < 2) {
            setLinearSource(drawn.paint, drawn.source, centre, end, m, stops, spread);
            parameter = [&](Point device) {
                return model::linearParameter(model::inverse(m, device), 0, length);
            };
        } else {
            setRadialSource(drawn.paint, drawn.source, from, to, m, stops, spread);
            parameter = radialOf(m, from, to);
        }
        // Where the x axis meets the hard stop, seen from the middle of the turned ramp.
        const double place = model::ofFixed(offset);
        const double x = round % 4 < 2 ? place * length : length / 3 + place * (length * 2 / 3);
        Errors errors;
        compare(drawn, stops, spread, parameter, origin + Point(std::min(x, 5000.0), 0), random,
                errors, "length " + std::to_string(length) + " offset " + std::to_string(offset),
                place);
        if (HasFatalFailure()) return;
    }
}

TEST(GradientSource, StripesHaveTheirExactColours)
{
    // Two stops at each border of 9 stripes, and of 40, more than there are cuts.
    for (const int stripes : {9, 40}) {
        std::vector<Pixel> colours;
        std::vector<Fixed> offsets;
        for (int i = 0; i < stripes; ++i)
            for (int end = 0; end < 2; ++end) {
                colours.push_back(0xFF000000 + static_cast<Pixel>(i * 0x050301));
                offsets.push_back(kFixedOne * (i + end) / stripes);
            }
        Drawn drawn;
        setLinearSource(drawn.paint, drawn.source, {0, 0}, at(stripes * 50.0, 0), kIdentityMatrix,
                        {colours.data(), offsets.data(), static_cast<uint32_t>(colours.size())},
                        kSpreadPad);
        for (int x = 0; x < stripes * 50; ++x) {
            if (stripes > 9 && (x % 50 < 2 || x % 50 > 47)) continue; // 2000 pixels by 1024
            ASSERT_EQ(drawn.row(0, x, 1)[0], colours[static_cast<size_t>(x / 50 * 2)])
                << stripes << " stripes, column " << x;
        }
    }
}

// Also where calls begin in the middle of a run of four.
TEST(GradientSource, PixelsDoNotDependOnTheCall)
{
    Random random(5);
    for (int round = 0; round < 300; ++round) {
        const Matrix2D m = transformAt({random.between(0, 3000), random.between(0, 100)}, random);
        const SmoothStops stops(random);
        const MMSpread spread = kSpreads[round % 3];
        Drawn drawn;
        const MMSourceCircle from = {at(0, random.between(0, 200)), fx(random.between(0, 100))};
        const MMSourceCircle to = {at(0, 0), fx(random.between(10, 200))};
        if (round % 4 == 0)
            setLinearSource(drawn.paint, drawn.source, from.centre, at(100, 3), m, stops.get(),
                            spread);
        else if (round % 4 == 1)
            setConicSource(drawn.paint, drawn.source, from.centre, 0, 90_fx, m, stops.get(),
                           spread);
        else
            setRadialSource(drawn.paint, drawn.source, from, to, m, stops.get(), spread);
        expectSameInPieces(drawn.paint, random.whole(0, 100), random.whole(0, 3000), random,
                           text(m));
        if (HasFatalFailure()) return;
    }
}

// From a circle of 1/65536 of a pixel to one that a target of 32,767 pixels hardly sees the bend
// of.
TEST(GradientSource, RadiiMayBeAnything)
{
    Random random(6);
    const Pixel colours[] = {0xFF000000, 0xFFFFFFFF};
    const Fixed offsets[] = {0, kFixedOne};
    const GradientStops stops = {colours, offsets, 2};
    for (const Fixed radius : {1, 2, 100, 6553, kFixedOne, 100 * kFixedOne, 32767 * kFixedOne})
        for (const double scale : {0.001, 1.0, 30.0})
            for (const double focus : {0.0, 0.3, 0.99, 1.0, 2.0})
                for (const MMSpread spread : kSpreads) {
                    const Point origin(random.between(0, 32767), random.between(0, 32767));
                    const Matrix2D m = {fx(scale),        0, 0, fx(scale), fx(origin.real()),
                                        fx(origin.imag())};
                    const MMSourceCircle from = {
                        {static_cast<Fixed>(std::min(radius * focus, 2e9)), 0}, 0};
                    const MMSourceCircle to = {{0, 0}, radius};
                    Drawn drawn;
                    setRadialSource(drawn.paint, drawn.source, from, to, m, stops, spread);
                    Errors errors;
                    for (const Point corner : {Point(0, 0), Point(32600, 32766), origin})
                        compare(drawn, stops, spread, radialOf(m, from, to), corner, random, errors,
                                text(m) + text(from) + text(to));
                    if (HasFatalFailure()) return;
                }
}

TEST(GradientSource, DegenerateOnes)
{
    const Pixel colours[] = {0xFF102030, 0x80FF4000};
    const Fixed offsets[] = {0, kFixedOne};
    const GradientStops two = {colours, offsets, 2}, one = {colours, offsets, 1};
    const Matrix2D singular = {kFixedOne, 2 * kFixedOne, 2 * kFixedOne, 4 * kFixedOne, 0, 0};
    const MMSourceCircle point = {at(5, 5), 0}, circle = {at(5, 5), 9_fx}, other = {at(9, 5), 0};
    constexpr Pixel kLast = 0x80802000; // premultiplied
    Drawn drawn;
    MMPaint& paint = drawn.paint;
    const auto pixel = [&] { return paint.paintType == kPaintSource ? drawn.row(3, 4, 1)[0] : 1; };

    for (const GradientStops& none :
         {GradientStops{colours, offsets, 0}, GradientStops{nullptr, offsets, 2},
          GradientStops{colours, nullptr, 2}}) {
        setLinearSource(paint, drawn.source, {0, 0}, at(9, 9), kIdentityMatrix, none, kSpreadPad);
        EXPECT_EQ(paint.paintType, kPaintNone);
        setRadialSource(paint, drawn.source, point, circle, kIdentityMatrix, none, kSpreadPad);
        EXPECT_EQ(paint.paintType, kPaintNone);
        setConicSource(paint, drawn.source, {0, 0}, 0, 360_fx, kIdentityMatrix, none, kSpreadPad);
        EXPECT_EQ(paint.paintType, kPaintNone);
    }
    for (const MMSpread spread : kSpreads) {
        setLinearSource(paint, drawn.source, at(9, 9), at(9, 9), kIdentityMatrix, two, spread);
        EXPECT_EQ(pixel(), kLast);
        EXPECT_EQ(paint.sourceIsOpaque, 0);
        setLinearSource(paint, drawn.source, {0, 0}, at(9, 9), singular, two, spread);
        EXPECT_EQ(pixel(), kLast);
        setRadialSource(paint, drawn.source, point, circle, singular, two, spread);
        EXPECT_EQ(pixel(), kLast);
        setConicSource(paint, drawn.source, {0, 0}, 0, 360_fx, {}, two, spread);
        EXPECT_EQ(pixel(), kLast);
        setConicSource(paint, drawn.source, {0, 0}, 90_fx, 90_fx, kIdentityMatrix, two, spread);
        EXPECT_EQ(pixel(), kLast);
        setRadialSource(paint, drawn.source, circle, circle, kIdentityMatrix, two, spread);
        EXPECT_EQ(paint.paintType, kPaintNone);
        setRadialSource(paint, drawn.source, point, other, kIdentityMatrix, two, spread);
        EXPECT_EQ(paint.paintType, kPaintNone);

        setLinearSource(paint, drawn.source, {0, 0}, at(9, 9), kIdentityMatrix, one, spread);
        EXPECT_EQ(pixel(), colours[0]);
        EXPECT_EQ(paint.sourceIsOpaque, 1);
        setRadialSource(paint, drawn.source, point, circle, kIdentityMatrix, one, spread);
        EXPECT_EQ(pixel(), colours[0]);
        setConicSource(paint, drawn.source, {0, 0}, 0, 360_fx, kIdentityMatrix, one, spread);
        EXPECT_EQ(pixel(), colours[0]);
    }
    // Stops out of order and beyond the ends.
    const Fixed wild[] = {INT32_MIN, INT32_MAX, -5, 7};
    const Pixel wildColours[] = {0xFF000000, 0xFF00FF00, 0xFFFF0000, 0xFF0000FF};
    setLinearSource(paint, drawn.source, {0, 0}, at(9, 0), kIdentityMatrix, {wildColours, wild, 4},
                    kSpreadPad);
    EXPECT_EQ(drawn.row(0, 100, 1)[0], 0xFF0000FFu);
}

// Any numbers, from rows and columns beyond any target too: nothing overflows, nothing is written
// but what was asked for, and the colours are premultiplied.
TEST(GradientSource, WithstandsAnyNumbers)
{
    Random random(7);
    const auto any = [&] { return random.any(); };
    for (int round = 0; round < 20000; ++round) {
        const Matrix2D m = {any(), any(), any(), any(), any(), any()};
        std::vector<Pixel> colours;
        std::vector<Fixed> offsets;
        for (int i = random.whole(1, 40); i > 0; --i) {
            colours.push_back(random.engine());
            offsets.push_back(any());
        }
        const GradientStops stops = {colours.data(), offsets.data(),
                                     static_cast<uint32_t>(colours.size())};
        const auto spread = static_cast<MMSpread>(random.whole(0, 3));
        Drawn drawn;
        const MMSourceCircle from = {{any(), any()}, any()}, to = {{any(), any()}, any()};
        if (round % 4 == 0)
            setLinearSource(drawn.paint, drawn.source, from.centre, to.centre, m, stops, spread);
        else if (round % 4 == 1)
            setConicSource(drawn.paint, drawn.source, from.centre, any(), any(), m, stops, spread);
        else
            setRadialSource(drawn.paint, drawn.source, from, to, m, stops, spread);
        if (drawn.paint.paintType != kPaintSource) continue;
        for (int call = 0; call < 4; ++call) {
            const bool sane = call % 2 == 0;
            const int y = sane ? random.whole(0, 32767) : any();
            const int x = sane ? random.whole(0, 32640) : std::min(any(), INT32_MAX - 128);
            for (const Pixel pixel : drawn.row(y, x, random.whole(1, 128)))
                ASSERT_TRUE(isPremultiplied(pixel)) << text(m) << text(from) << text(to);
        }
    }
}
