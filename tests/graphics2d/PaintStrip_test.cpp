// The gradient and pattern strip fillers against plain models, over random and hostile fields.
#include "PaintModel.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace KAVO::Graphics2D;

constexpr int kWidth = 300;
constexpr int kRows = 2;
constexpr int kGuard = 4;

class PaintStrip : public testing::TestWithParam<int> {
protected:
    std::mt19937 random{20240};

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

    // Two of everything: one for the library, one for the model.
    std::vector<Pixel> pixels[2];
    MMContext2D context[2];
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
        const bool flat = oneIn(2);
        const Coverage step = flat || count < 2 ? 0 : within(-first, (255 << 16) - first) / count;
        std::vector<Pixel> content(kWidth * kRows + 2 * kGuard);
        for (Pixel& p : content)
            p = colour();
        const int fraction = within(0, 0xFFFF);
        for (int k = 0; k < 2; ++k) {
            pixels[k] = content;
            MMContext2D& c = context[k];
            c.target = {kWidth, kRows, kWidth * 4, 0, pixels[k].data() + kGuard, 0};
            c.spanRow = row;
            c.spanPixels = c.target.pixels + row * kWidth;
            c.spanStart = (start << 16) | fraction;
            c.spanEnd = (start + count) * 65536 + within(0, 1) * 0xFFFF;
            c.spanEnd = context[0].spanEnd;
            c.spanCoverage = first;
            c.spanCoverageNext = first + step;
            c.spanCoverageStep = step;
            c.spanTailCoverage = tail ? std::max(1, first / 2) : -1;
            c.currentPaint = {};
        }
    }

    void makeStops(bool hostile, Fixed reach)
    {
        const int count = within(1, 5);
        stopColours.resize(count);
        stopOffsets.resize(count);
        for (int i = 0; i < count; ++i) {
            stopColours[i] = colour();
            stopOffsets[i] = hostile ? anything() : within(0, reach);
        }
        if (!hostile) std::sort(stopOffsets.begin(), stopOffsets.end());
        if (count > 1 && oneIn(4)) stopOffsets[count - 1] = stopOffsets[count - 2];
        MMPaint& p = context[0].currentPaint;
        p.gradientStopCount = count;
        p.gradientStopColors = stopColours.data();
        p.gradientStopOffsets = stopOffsets.data();
    }

    void makeLinear(bool hostile)
    {
        MMPaint& p = context[0].currentPaint;
        const Fixed steps[] = {0, 1, -1, within(-0x4000, 0x4000), within(-0x200, 0x200)};
        p.gradientStepX = hostile ? anything() : steps[within(0, 4)];
        p.gradientStepY = hostile ? anything() : within(-0x4000, 0x4000);
        p.gradientOriginX = hostile ? anything() : within(-100 * 65536, 400 << 16);
        p.gradientOriginY = hostile ? anything() : within(-100 * 65536, 100 << 16);
        makeStops(hostile, oneIn(2) ? 0x10000 : 0x4000 * 300);
    }

    void makeRadial(bool hostile)
    {
        MMPaint& p = context[0].currentPaint;
        const Fixed scale = within(1, 4) << within(13, 16);
        const bool circle = oneIn(2);
        p.radialXToU = hostile ? anything() : circle ? scale : within(-scale, scale);
        p.radialXToV = hostile ? anything() : circle ? 0 : within(-scale, scale);
        p.radialYToU = hostile ? anything() : circle ? 0 : within(-scale, scale);
        p.radialYToV = hostile ? anything() : circle ? scale : within(-scale, scale);
        p.radialCenterX = hostile ? anything() : within(-50 * 65536, 350 << 16);
        p.radialCenterY = hostile ? anything() : within(-150 * 65536, 150 << 16);
        makeStops(hostile, fixMul(scale, within(1, 300) << 16));
    }

    void makePattern(bool hostile)
    {
        const int w = oneIn(6) ? 1 : within(1, 90);
        const int h = oneIn(6) ? 1 : within(1, 90);
        image.assign(static_cast<size_t>(w * h), 0);
        image.shrink_to_fit(); // no slack: a read outside is a sanitizer's to find
        for (Pixel& t : image)
            t = colour();
        MMPaint& p = context[0].currentPaint;
        p.patternImage = {
            static_cast<uint16_t>(w), static_cast<uint16_t>(h), 0, 0, image.data(), 0};
        const Fixed whole[] = {0x10000, 0xFFFF, 0x10000, -0x10000, 0x8000, -0x4000};
        Matrix2D& m = p.patternTransform;
        for (Fixed* e : {&m.a, &m.b, &m.c, &m.d})
            *e = hostile ? anything() : oneIn(3) ? whole[within(0, 5)] : within(-0x18000, 0x18000);
        if (oneIn(3)) m.b = 0;
        m.e = hostile ? anything() : within(-w * 65536, w << 16);
        m.f = hostile ? anything() : within(-h * 65536, h << 16);
        if (oneIn(3)) {
            m.e &= ~0xFFFF;
            m.f &= ~0xFFFF;
            context[0].spanStart &= ~0xFFFF;
            context[1].spanStart = context[0].spanStart;
        }
    }

    void expectSame(const char* what, int round)
    {
        for (size_t i = 0; i < pixels[0].size(); ++i)
            ASSERT_EQ(pixels[0][i], pixels[1][i]) << what << " pixel " << i << " round " << round;
        ASSERT_EQ(context[0].spanCoverageNext, context[1].spanCoverageNext) << what << round;
        ASSERT_EQ(context[0].spanTailCoverage, context[1].spanTailCoverage) << what << round;
    }
};

struct Paint {
    const char* name;
    void (MMContext2D::*opaque)();
    void (MMContext2D::*translucent)();
};
constexpr Paint kPaints[] = {
    {"linear", &MMContext2D::drawLinearGradientStrip, &MMContext2D::drawLinearGradientTStrip},
    {"radial", &MMContext2D::drawRadialGradientStrip, &MMContext2D::drawRadialGradientTStrip},
    {"nearest", &MMContext2D::drawPatternStrip, &MMContext2D::drawPatternTStrip},
    {"bilinear", &MMContext2D::drawBiLinPatternStrip, &MMContext2D::drawBiLinPatternTStrip},
    {"bicubic", &MMContext2D::drawBiCubPatternStrip, &MMContext2D::drawBiCubPatternTStrip},
};

TEST_P(PaintStrip, MatchesThePlainModel)
{
    const Paint& paint = kPaints[GetParam()];
    for (int round = 0; round < 12000; ++round) {
        const bool hostile = oneIn(4);
        const bool translucent = oneIn(2);
        makeSpan();
        GetParam() == 0   ? makeLinear(hostile)
        : GetParam() == 1 ? makeRadial(hostile)
                          : makePattern(hostile);
        context[1].currentPaint = context[0].currentPaint;
        (context[0].*(translucent ? paint.translucent : paint.opaque))();
        GetParam() == 0   ? PaintModel::linear(context[1], translucent)
        : GetParam() == 1 ? PaintModel::radial(context[1], translucent)
                          : PaintModel::pattern(context[1], translucent, GetParam() - 2);
        ASSERT_NO_FATAL_FAILURE(expectSame(paint.name, round));
    }
}

INSTANTIATE_TEST_SUITE_P(All, PaintStrip, testing::Range(0, 5),
                         [](const auto& info) { return kPaints[info.param].name; });

} // namespace
