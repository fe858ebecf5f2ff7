// SPDX-License-Identifier: MIT
// The work of drawing images, counted rather than timed.
#include "graphics2d/convenience/MMContextState.h"
#include "tests/counted_work/Blocks.h"
#include "tests/support/UserUnits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

// However far an image is magnified, only the pixels that are visible are sampled, each once.
// Beyond the image's edges that takes some 24 blocks for a pixel; a whole row of the image would be
// 500 times as long.
TEST(ImageWork, AnImageMagnifiedAMillionTimesTakesTheVisiblePixelsOnly)
{
    constexpr int32_t kSide = 64;
    std::vector<Pixel> pixels(kSide * kSide);
    std::vector<Pixel> texels(8 * 8, 0xFF336699);
    const MMPixmap image = {8, 8, 8 * 4, 0, texels.data(), 0};
    for (const uint8_t refined : {0, 1})
        for (const Degrees angle : {0, 30, 90, 181})
            for (const bool throughTransform : {false, true}) {
                MMContext2D context;
                setTarget(context, pixels.data(), kSide, kSide);
                context.refined = refined;
                std::fill(pixels.begin(), pixels.end(), 0);
                blocksRun = 0;
                if (throughTransform) {
                    context.transform = {INT32_MAX, 0, 0, INT32_MAX, 0, 0};
                    context.transform.rotate(angle * kFixedOne);
                    context.drawImage(&image, -0.5_fx, -0.5_fx, 1_fx, 1_fx, 0);
                } else { // a 32nd of a texel over 32,767 pixels
                    const MMFixedRegion from = {0, 0, 0x800, 0x800};
                    const MMFixedRegion to = {-16000_fx, -16000_fx, 16767_fx, 16767_fx};
                    const MMPixmap target = context.target;
                    context.drawImage(&image, &from, &target, &to, angle * kFixedOne);
                }
                EXPECT_GT(std::count(pixels.begin(), pixels.end(), 0xFF336699), 0) << angle;
                EXPECT_GT(blocksRun, uint64_t{kSide}) << angle;
                EXPECT_LE(blocksRun, uint64_t{kSide} * kSide * 60) << angle;
                EXPECT_LE(context.scratchStack.peakWords, 1024u);
            }
}

} // namespace
