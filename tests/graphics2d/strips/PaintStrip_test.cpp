// SPDX-License-Identifier: MIT
// The strip fillers against plain models, over random and hostile fields.
#include "PaintModel.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
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
     PaintModel::flat},
    {"radial", &MMContext2D::drawRadialGradientStrip, &MMContext2D::drawRadialGradientTStrip,
     PaintModel::flat},
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
    Pixel stopColour;
    Fixed stopOffset;

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
            c.target = {kWidth, kRows, kWidth * 4, 0, pixels[k].data() + kGuard, 0};
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

    void makeColour()
    {
        paint.paintColour = colour();
        paint.paintOpacity = static_cast<uint8_t>(within(0, 255));
    }

    // Its ramps are held against exact ones where they are set up.
    void makeGradientOfOneStop()
    {
        stopColour = colour();
        stopOffset = anything();
        paint.gradientStopCount = 1;
        paint.gradientStopColors = &stopColour;
        paint.gradientStopOffsets = &stopOffset;
        for (Fixed* field :
             {&paint.gradientStepX, &paint.gradientStepY, &paint.gradientOriginX,
              &paint.gradientOriginY, &paint.radialXToU, &paint.radialXToV, &paint.radialYToU,
              &paint.radialYToV, &paint.radialCenterX, &paint.radialCenterY})
            *field = anything();
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
        m.e = field(-w * 65536, w << 16);
        m.f = field(-h * 65536, h << 16);
        if (oneIn(3)) {
            m.e &= ~0xFFFF;
            m.f &= ~0xFFFF;
        }
    }
};

TEST_P(PaintStrip, MatchesThePlainModel)
{
    for (int round = 0; round < 12000; ++round) {
        hostile = oneIn(4);
        const bool translucent = oneIn(2);
        makeSpan();
        if (GetParam() < 3)
            makeColour();
        else if (GetParam() < 5)
            makeGradientOfOneStop();
        else
            makePattern();
        context[1].currentPaint = paint;
        const Paint& filler = kPaints[GetParam()];
        (context[0].*(translucent ? filler.translucent : filler.opaque))();
        filler.model(context[1], translucent);
        for (size_t i = 0; i < pixels[0].size(); ++i)
            ASSERT_EQ(pixels[0][i], pixels[1][i]) << "pixel " << i << " round " << round;
        ASSERT_EQ(context[0].spanCoverageNext, context[1].spanCoverageNext) << round;
        ASSERT_EQ(context[0].spanTailCoverage, context[1].spanTailCoverage) << round;
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
