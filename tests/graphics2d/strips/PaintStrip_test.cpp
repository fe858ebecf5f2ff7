// SPDX-License-Identifier: MIT
// The strip fillers against plain models, over random and hostile fields.
#include "GradientModel.h"
#include "PaintModel.h"
#include "graphics2d/strips/CircleFollower.h"
#include "graphics2d/strips/StripDispatch.h"
#include "tests/support/ChosenLevel.h"
#include "tests/support/Targets.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <random>
#include <sstream>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr int kWidth = 300;
constexpr int kRows = 2;
constexpr int kGuard = 4;

struct Paint {
    const char* name;
    void (MMContext2D::*opaque)();
    void (MMContext2D::*translucent)();
    void (*model)(MMContext2D&, bool translucent);
};
constexpr Paint kPaints[] = {
    {"solid", &MMContext2D::drawSolidStrip, &MMContext2D::drawSolidTStrip, PaintModel::solid},
    {"xor", &MMContext2D::drawSolidXORStrip, &MMContext2D::drawSolidXORStrip,
     PaintModel::exclusiveOr},
    {"faded", &MMContext2D::drawTransStrip, &MMContext2D::drawTransStrip, PaintModel::faded},
    {"linear", &MMContext2D::drawLinearGradientStrip, &MMContext2D::drawLinearGradientTStrip,
     PaintModel::linear},
    {"radial", &MMContext2D::drawRadialGradientStrip, &MMContext2D::drawRadialGradientTStrip,
     PaintModel::radial},
    {"nearest", &MMContext2D::drawPatternStrip, &MMContext2D::drawPatternTStrip,
     PaintModel::pattern<0>},
    {"bilinear", &MMContext2D::drawBiLinPatternStrip, &MMContext2D::drawBiLinPatternTStrip,
     PaintModel::pattern<1>},
    {"bicubic", &MMContext2D::drawBiCubPatternStrip, &MMContext2D::drawBiCubPatternTStrip,
     PaintModel::pattern<2>},
};

class PaintStrip : public testing::TestWithParam<int> {
protected:
    std::mt19937 random{20240};
    bool hostile = false;

    int32_t within(int32_t low, int32_t high)
    {
        return std::uniform_int_distribution<int32_t>(low, high)(random);
    }
    bool oneIn(int n) { return within(1, n) == 1; }
    Pixel colour()
    {
        const auto p = static_cast<Pixel>(random());
        return oneIn(3) ? p | 0xFF000000 : oneIn(4) ? (p & 0x80808080) * 255 / 128 : p;
    }
    Fixed anything()
    {
        const auto v = static_cast<Fixed>(random());
        return oneIn(3) ? v : v >> within(0, 31);
    }
    Fixed field(Fixed low, Fixed high) { return hostile ? anything() : within(low, high); }

    // Two of everything: one for the library, one for the model.
    std::vector<Pixel> pixels[2];
    MMContext2D context[2];
    MMPaint& paint = context[0].currentPaint;
    std::vector<Pixel> image;
    std::vector<Pixel> stopColours;
    std::vector<Fixed> stopOffsets;

    void makeSpan()
    {
        const int row = within(0, kRows - 1);
        const int start = oneIn(3) ? 0 : within(0, kWidth - 1);
        const int room = kWidth - start;
        const int count = oneIn(2)   ? within(-2, std::min(9, room))
                          : oneIn(2) ? room
                                     : within(0, room);
        // A tail needs a column of its own.
        const bool tail = start + count < kWidth && start + count >= 0 && oneIn(2);
        const Coverage first = oneIn(2) ? within(0, 255) << 16 : within(0, 255 << 16);
        const bool flat = oneIn(2) || count < 2;
        const Coverage step = flat ? 0 : within(-first, (255 << 16) - first) / count;
        const Coverage second = flat && oneIn(3) ? within(0, 255 << 16) : first + step;
        pixels[0].resize(kWidth * kRows + 2 * kGuard);
        for (Pixel& p : pixels[0])
            p = colour();
        pixels[1] = pixels[0];
        const int fraction = oneIn(3) ? 0 : within(0, 0xFFFF);
        const int endFraction = within(0, 1) * 0xFFFF;
        for (int k = 0; k < 2; ++k) {
            MMContext2D& c = context[k];
            classicTarget(c, pixels[k].data() + kGuard, kWidth, kRows);
            c.spanRow = row;
            c.spanPixels = c.target.pixels + row * kWidth;
            c.spanStart = (start << 16) | fraction;
            c.spanEnd = (start + count) * 65536 + endFraction;
            c.spanCoverage = first;
            c.spanCoverageNext = second;
            c.spanCoverageStep = step;
            c.spanTailCoverage = tail ? std::max(1, first / 2) : -1;
        }
        paint = {};
    }

    // What the fillers were given.
    std::string input() const
    {
        const MMContext2D& c = context[1];
        std::ostringstream out;
        out << std::hex << "span " << c.spanStart << " to " << c.spanEnd << " row " << c.spanRow
            << " coverage " << c.spanCoverage << " step " << c.spanCoverageStep << "\npaint";
        uint32_t words[sizeof(MMPaint) / 4];
        std::memcpy(words, &paint, sizeof words);
        for (uint32_t word : words)
            out << ' ' << word;
        for (size_t i = 0; i < stopOffsets.size(); ++i)
            out << "\nstop " << stopColours[i] << " at " << stopOffsets[i];
        return out.str();
    }

    void makeColour()
    {
        paint.paintColour = colour();
        paint.paintOpacity = static_cast<uint8_t>(within(0, 255));
    }

    // Either with anything in every field, and then one stop, or with what makes a gradient: often
    // in numbers so round that pixels fall exactly on stops and on the steps of the radius.
    void makeGradient(bool radial)
    {
        const bool round = oneIn(2);
        const auto number = [&](Fixed low, Fixed high) {
            const Fixed v = field(low, high);
            return round && !hostile ? v & ~0x3FFF : v;
        };
        const int count = hostile ? 1 : within(2, 5);
        stopColours.clear();
        stopOffsets.clear();
        for (int i = 0; i < count; ++i) {
            stopColours.push_back(colour());
            stopOffsets.push_back(number(radial ? 0x10000 : -0x400000, 0x1000000));
        }
        std::sort(stopOffsets.begin(), stopOffsets.end());
        if (oneIn(4)) stopOffsets.back() = stopOffsets[count / 2];
        paint.gradientStopCount = static_cast<uint32_t>(count);
        paint.gradientStopColors = stopColours.data();
        paint.gradientStopOffsets = stopOffsets.data();
        if (!radial) {
            paint.gradientOriginX = number(-0x400000, 0x1400000);
            paint.gradientOriginY = number(-0x400000, 0x400000);
            paint.gradientStepX = number(-0x20000, 0x20000);
            paint.gradientStepY = number(-0x20000, 0x20000);
            return;
        }
        const Fixed scale = round ? 0x10000 : within(0x4000, 0x40000);
        paint.radialCenterX = number(-0x400000, 0x1400000);
        paint.radialCenterY = number(-0x800000, 0x800000);
        paint.radialXToU = round ? scale : number(scale / 2, scale);
        paint.radialYToV = round ? scale : number(scale / 2, scale);
        paint.radialXToV = round ? 0 : number(-scale / 4, scale / 4);
        paint.radialYToU = round ? 0 : number(-scale / 4, scale / 4);
    }

    void makePattern()
    {
        const int w = oneIn(6) ? 1 : within(1, 90);
        const int h = oneIn(6) ? 1 : within(1, 90);
        image.assign(static_cast<size_t>(w * h), 0);
        image.shrink_to_fit(); // no slack: a read outside is a sanitizer's to find
        for (Pixel& t : image)
            t = colour();
        paint.patternImage = {
            static_cast<uint16_t>(w), static_cast<uint16_t>(h), 0, 0, image.data(), 0};
        const Fixed whole[] = {0x10000, 0xFFFF, 0x10000, -0x10000, 0x8000, -0x4000};
        Matrix2D& m = paint.patternTransform;
        for (Fixed* e : {&m.a, &m.b, &m.c, &m.d})
            *e = !hostile && oneIn(3) ? whole[within(0, 5)] : field(-0x18000, 0x18000);
        if (oneIn(3)) m.b = 0;
        if (oneIn(6)) m.a = within(-300, 300); // many fractions between few texels
        if (oneIn(5)) m = {whole[within(0, 1)], 0, 0, whole[within(0, 1)], 0, 0}; // copied
        m.e = field(-w * 65536, w << 16);
        m.f = field(-h * 65536, h << 16);
        if (oneIn(3)) {
            m.e &= ~0xFFFF;
            m.f &= ~0xFFFF;
        }
    }

    void makePaint()
    {
        if (GetParam() < 3)
            makeColour();
        else if (GetParam() < 5)
            makeGradient(GetParam() == 4);
        else
            makePattern();
    }
};

// A walk that stands still must fail, not hang.
struct Deadline {
    Deadline() { alarm(600); }
    ~Deadline() { alarm(0); }
};

TEST_P(PaintStrip, MatchesThePlainModel)
{
    const Deadline deadline;
    for (int round = 0; round < 12000; ++round) {
        hostile = oneIn(4);
        const bool translucent = oneIn(2);
        makeSpan();
        makePaint();
        context[1].currentPaint = paint;
        const Paint& filler = kPaints[GetParam()];
        const std::string before = input();
        (context[0].*(translucent ? filler.translucent : filler.opaque))();
        (hostile && (GetParam() == 3 || GetParam() == 4) ? PaintModel::flat
                                                         : filler.model)(context[1], translucent);
        for (size_t i = 0; i < pixels[0].size(); ++i)
            ASSERT_EQ(pixels[0][i], pixels[1][i]) << "pixel " << i << " round " << round << "\n"
                                                  << before;
        ASSERT_EQ(context[0].spanCoverageNext, context[1].spanCoverageNext) << before;
        ASSERT_EQ(context[0].spanTailCoverage, context[1].spanTailCoverage) << before;
    }
}

// The level that the processor offers and the compiler's own draw the same, in both modes.
TEST_P(PaintStrip, DrawsTheSameAtEveryLevel)
{
    const ChosenLevel base("base");
    MMContext2D baseContext;
    for (int round = 0; round < 4000; ++round) {
        makeSpan();
        makePaint();
        paint.patternHasAlpha = oneIn(2);
        context[1].currentPaint = paint;
        context[1].level = baseContext.level;
        context[0].refined = context[1].refined = oneIn(2);
        const Paint& filler = kPaints[GetParam()];
        const bool translucent = oneIn(2);
        const std::string before = input();
        for (MMContext2D& c : context)
            (c.*(translucent ? filler.translucent : filler.opaque))();
        for (size_t i = 0; i < pixels[0].size(); ++i)
            ASSERT_EQ(pixels[0][i], pixels[1][i]) << "pixel " << i << " round " << round << "\n"
                                                  << before;
    }
}

// By the refined rules a pixel is the same however its row is cut into spans.
TEST_P(PaintStrip, RefinedPixelsDependOnNoCuts)
{
    for (int round = 0; round < 3000; ++round) {
        hostile = oneIn(4);
        const bool translucent = oneIn(2);
        makeSpan();
        makePaint();
        paint.patternHasAlpha = GetParam() >= 5 && translucent;
        const Coverage coverage = within(0, 255 << 16);
        for (MMContext2D& c : context) {
            c.refined = 1;
            c.currentPaint = paint;
            c.spanStart = 0;
            c.spanEnd = kWidth << 16;
            c.spanCoverage = c.spanCoverageNext = coverage;
            c.spanCoverageStep = c.spanTailCoverage = 0;
        }
        const Paint& filler = kPaints[GetParam()];
        const auto draw = [&](MMContext2D& c) {
            (c.*(translucent ? filler.translucent : filler.opaque))();
        };
        draw(context[0]);
        for (int x = 0; x < kWidth;) {
            const int end = std::min(kWidth, x + within(1, oneIn(2) ? 8 : kWidth));
            context[1].spanStart = (x << 16) | within(0, 0xFFFF);
            context[1].spanEnd = (end << 16) | within(0, 0xFFFF);
            draw(context[1]);
            x = end;
        }
        for (size_t i = 0; i < pixels[0].size(); ++i)
            ASSERT_EQ(pixels[0][i], pixels[1][i]) << "pixel " << i << " round " << round << "\n"
                                                  << input();
    }
}

// The quick following of circles against its plain twin, over fields of every size.
TEST(CircleFollower, QuickStepsMatchPlainOnes)
{
    std::mt19937 random(7);
    const auto within = [&](Fixed low, Fixed high) {
        return std::uniform_int_distribution<Fixed>(low, high)(random);
    };
    for (int round = 0; round < 20000; ++round) {
        const bool whole = round % 2 != 0;
        const Fixed mask = whole ? ~0x7FFF : ~0;
        CircleFollower plain = {};
        plain.a = whole ? 0x10000 << within(0, 3) : within(0x1000, 0x80000);
        plain.dx = within(-0x4000000, 0x4000000) & ~0xFFFF;
        plain.vertex = within(-0x1000000, 0x1000000) & mask;
        plain.b = fixMul(plain.vertex, -2 * plain.a);
        plain.r = within(0x10000, round % 3 == 0 ? 0x8FFFFFF : 0x1000000) & mask;
        if (plain.dx >= plain.vertex) {
            plain.direction = kFixedOne;
            plain.risingMask = -1;
        }
        plain.start();
        const Fixed low = plain.r / 2, high = 2 * plain.r;
        RadialColour plainColour = {};
        plainColour.step = Channels{1000, 77, 0, 0xFFFFFF00};
        plainColour.halfStep = Channels{500, 38, 0, 0xFFFFFF80};
        const CircleFollower first = plain;
        CircleFollower quick = plain;
        RadialColour quickColour = plainColour;
        CircleFollower counting = plain;
        CountedSteps counted;
        bool crossed = false;
        for (int i = 0; i < 200 && !crossed;) {
            Channels colours[16];
            const int steps = quick.advanceUsual(quickColour, low, high, colours, 16);
            uint32_t counts[16];
            ASSERT_EQ(counting.advanceUsual(counted, low, high, counts, 16), steps);
            for (int k = 0; k < steps; ++k, ++i) {
                const Channels plainValue = plainColour.value;
                ASSERT_EQ(std::memcmp(&colours[k], &plainValue, sizeof plainValue), 0);
                ASSERT_EQ(plainColour.step[0] * CountedSteps::unitsOf(counts[k]) +
                              plainColour.halfStep[0] * CountedSteps::halvesOf(counts[k]),
                          plainValue[0]);
                ASSERT_FALSE(plain.advance(plainColour));
            }
            if (steps == 0) {
                crossed = quick.advance(quickColour);
                ASSERT_EQ(plain.advance(plainColour), crossed);
                ASSERT_EQ(counting.advance(counted), crossed);
                ++i;
            }
            ASSERT_TRUE(plain.r == quick.r && plain.error == quick.error && plain.dx == quick.dx)
                << "from dx " << first.dx << " vertex " << first.vertex << " a " << first.a << " r "
                << first.r << " after " << i;
            // The plain stepping learns how many steps are usual.
            quick.guess = counting.guess = plain.guess;
        }
    }
}

// On a row through the centre the distance is that of the column itself, down to one unit; no step
// leads to the centre or beyond, however much the distance has still to fall.
TEST(CircleFollower, CountsDownToOne)
{
    for (const Fixed vertex : {0, 0x9999}) { // the second begins 0.6 too near
        CircleFollower at = {};
        at.a = kFixedOne;
        at.b = -2 * vertex;
        at.vertex = vertex;
        at.dx = -5 * kFixedOne;
        at.r = 5 * kFixedOne;
        at.start();
        RadialColour colour = {};
        for (int distance = 4; distance > 0; --distance) {
            EXPECT_FALSE(at.advance(colour));
            if (vertex == 0) {
                EXPECT_EQ(at.r, distance * kFixedOne);
            }
            EXPECT_GE(at.r, kFixedOne);
        }
        EXPECT_EQ(at.r, kFixedOne);
    }
}

// Also where the type and one more would wrap to solid.
TEST(StripDispatch, UnknownPaintTypesAndFiltersDrawNothing)
{
    MMContext2D context;
    MMPaint& paint = context.currentPaint;
    for (const uint8_t opacity : {0, 254, 255}) {
        paint.paintOpacity = opacity;
        for (const uint32_t type :
             {kPaintNone + 0u, 14u, 15u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
            paint.paintType = type;
            EXPECT_EQ(chooseSpanFiller(context).filler, nullptr) << type;
            EXPECT_EQ(chooseEdgeFiller(context), nullptr) << type;
        }
        paint.paintType = kPaintPattern;
        for (const int filter : {3, 255}) {
            context.patternFilter = static_cast<uint8_t>(filter);
            EXPECT_EQ(chooseSpanFiller(context).filler, nullptr) << filter;
            EXPECT_EQ(chooseEdgeFiller(context), nullptr) << filter;
        }
    }
}

TEST(PickingStrip, HitsAtBothEndsAndOnWholeRowsOnly)
{
    MMContext2D context;
    context.spanStart = 0x20000;
    context.spanEnd = 0x48000;
    context.spanRow = 3;
    for (const auto& [x, y, hit] : {std::array{0x20000, 0x30000, 1},
                                    {0x48000, 0x30000, 1},
                                    {0x1FFFF, 0x30000, 0},
                                    {0x48001, 0x30000, 0},
                                    {0x30000, 0x38000, 0},
                                    {0x30000, 0x20000, 0}}) {
        context.pickHit = 0;
        context.pickX = x;
        context.pickY = y;
        context.drawPickingStrip();
        EXPECT_EQ(context.pickHit, hit) << x << "," << y;
    }
}

INSTANTIATE_TEST_SUITE_P(All, PaintStrip, testing::Range<int>(0, std::size(kPaints)),
                         [](const auto& info) { return kPaints[info.param].name; });

} // namespace
