// SPDX-License-Identifier: MIT
// Rows between upright edges, which are alike, come out the same together and one at a time, and
// those of a rectangle as those of any other outline.
#include "graphics2d/PaintSetup.h"
#include "graphics2d/convenience/MMPathBuilder.h"
#include "tests/support/Picture.h"

#include <gtest/gtest.h>

#include <random>

using namespace KAVO;

namespace {

using namespace KAVO::Graphics2D;

constexpr int kSide = 270; // more rows than are drawn at once

struct Scene {
    MMPaint paint = {};
    uint8_t filter = kFilterNearest;
    bool refined;
    bool antiAlias;
    Fixed left, top, width, height;
};

Scene randomScene(std::mt19937& random, const std::vector<Pixel>& texels)
{
    const auto below = [&](uint32_t end) { return static_cast<int32_t>(random() % end); };
    const auto place = [&](uint32_t end) { // on a pixel's edge, on its middle or anywhere
        constexpr uint32_t kSteps[] = {0x10000, 0x8000, 1};
        return fixFromInt(below(end) - 3) +
               (below(0x10000) & -static_cast<int32_t>(kSteps[below(3)]));
    };
    Scene scene;
    scene.refined = below(2) != 0;
    scene.antiAlias = below(2) != 0;
    scene.left = place(kSide);
    scene.top = place(kSide / 2);
    scene.width = place(kSide) + 3 * kFixedOne;
    scene.height = place(2 * kSide) + 3 * kFixedOne;
    if (below(4) == 0) { // whole rows, which follow each other without a gap
        scene.left = -kFixedOne;
        scene.width = fixFromInt(2 * kSide);
    }
    constexpr MMPaintType kTypes[] = {kPaintSolid, kPaintXOR, kPaintPattern, kPaintPattern};
    MMPaint& paint = scene.paint;
    paint.paintType = kTypes[below(4)];
    paint.paintOpacity = static_cast<uint8_t>(below(2) == 0 ? 255 : below(256));
    paint.paintColour = static_cast<Pixel>(random());
    if (paint.paintType != kPaintPattern) return scene;
    scene.filter = static_cast<uint8_t>(below(3));
    const MMPixmap image = {
        32, 32, 32 * 4, 0, const_cast<Pixel*>(texels.data()), static_cast<uint32_t>(below(2))};
    Matrix2D transform = kIdentityMatrix;
    if (below(2) != 0) { // magnified, or nearly as large as it is, or smaller
        constexpr Fixed kScales[] = {0x53333, 0x10003, 0xE000};
        transform.scale(kScales[below(3)], kScales[below(3)]);
    }
    transform.translate(place(kSide), place(kSide)); // the image may end within a block of rows
    setPattern(paint, image, transform, static_cast<MMPatternFilter>(scene.filter), scene.refined);
    paint.patternTransform.a -= below(2); // as inverted identities come out
    paint.patternTransform.d -= below(2);
    return scene;
}

// A rectangle, or the same with one more point on its upper side, that is not known to be one.
MMPathBuilder outlineOf(const Scene& scene, bool isRectangle)
{
    MMPathBuilder path;
    if (isRectangle) {
        path.rect(scene.left, scene.top, scene.width, scene.height);
        return path;
    }
    path.moveTo(scene.left, scene.top);
    path.lineTo(scene.left + scene.width / 2, scene.top);
    path.lineTo(scene.left + scene.width, scene.top);
    path.lineTo(scene.left + scene.width, scene.top + scene.height);
    path.lineTo(scene.left, scene.top + scene.height);
    path.close();
    return path;
}

// Cut to some rows at a time.
std::vector<Pixel> drawn(const Scene& scene, int32_t rowsAtOnce, bool isRectangle = true)
{
    Picture picture(kSide);
    MMContext2D& context = picture.context;
    std::mt19937 background(7);
    for (int i = 0; i < kSide * kSide; ++i)
        context.target.pixels[i] = static_cast<Pixel>(background());
    context.refined = scene.refined;
    context.antiAlias = scene.antiAlias;
    context.patternFilter = scene.filter;
    context.fillPaint = scene.paint;
    const MMPathBuilder path = outlineOf(scene, isRectangle);
    for (int32_t row = 0; row < kSide; row += rowsAtOnce) {
        context.clipTop = static_cast<int16_t>(row);
        context.clipBottom = static_cast<int16_t>(std::min(row + rowsAtOnce, kSide));
        context.drawPath(path.words());
        EXPECT_EQ(context.spanRows, 1u);
    }
    return picture.pixels;
}

std::ostream& operator<<(std::ostream& out, const Scene& scene)
{
    const MMPaint& paint = scene.paint;
    return out << "paint " << paint.paintType << ", opacity " << int{paint.paintOpacity}
               << ", filter " << int{scene.filter} << ", refined " << scene.refined << ", smooth "
               << scene.antiAlias << ", at " << scene.left << " " << scene.top << ", size "
               << scene.width << " " << scene.height << ", scale " << paint.patternTransform.a
               << " " << paint.patternTransform.d;
}

TEST(RowBlocks, ComeOutAsTheirRows)
{
    std::mt19937 random(20);
    std::vector<Pixel> texels(32 * 32);
    for (Pixel& texel : texels)
        texel = static_cast<Pixel>(random());
    for (int n = 0; n < 300; ++n) {
        const Scene scene = randomScene(random, texels);
        const std::vector<Pixel> blocks = drawn(scene, kSide);
        ASSERT_EQ(blocks, drawn(scene, 1)) << "scene " << n << ": " << scene;
        ASSERT_EQ(blocks, drawn(scene, kSide, false)) << "as any outline, " << n << ": " << scene;
    }
}

} // namespace
