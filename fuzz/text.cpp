// SPDX-License-Identifier: MIT
// Text in any state and with any lists, by engines that refuse some of the calls.
#include "fuzz/HostileScene.h"
#include "tests/support/FakeFontEngine.h"
#include "tests/support/FakeLayoutEngine.h"

using namespace KAVO;
using namespace KAVO::Graphics2D;

namespace {

constexpr uint32_t kLongest = 40; // glyphs may be a thousand pixels high

std::vector<uint16_t> readText(ByteReader& in)
{
    std::vector<uint16_t> text = in.array<uint16_t>(in.below(kLongest));
    text.push_back(0);
    return text;
}

// Bits for most calls of the font engine, usually none.
uint32_t readRefusals(ByteReader& in)
{
    return in.below(4) == 3 ? in.byte() : 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fakeFontEngine = {};
    fakeLayoutEngine = {};
    {
        ByteReader in(data, size);
        fakeFontEngine.refused = readRefusals(in);
        HostileScene scene(in, false); // text takes rows to be whole
        MMContext2D& context = scene.context;
        context.fontSize = in.fixed();
        context.lineHeight = in.fixed();
        context.fontStyle = in.byte();
        context.fontWeight = in.byte();
        if (in.below(4) == 0) context.updateFont();
        context.textAnchor = in.byte();
        context.preserveSpace = in.byte();
        context.penX = in.fixed();
        context.penY = in.fixed();
        context.wrapWidth = in.fixed();
        context.wrapOffsetX = in.fixed();
        context.wrapOffsetY = in.fixed();
        context.textDecoration = in.below(3);
        const std::vector<Fixed> xs = in.array<Fixed>(in.below(8));
        const std::vector<Fixed> ys = in.array<Fixed>(in.below(8));
        const std::vector<Degrees> turns = in.array<Degrees>(in.below(8));
        context.charX = xs.data();
        context.charXCount = static_cast<uint32_t>(xs.size());
        context.charY = ys.data();
        context.charYCount = static_cast<uint32_t>(ys.size());
        context.charRotate = turns.data();
        context.charRotateCount = static_cast<uint32_t>(turns.size());
        fakeFontEngine.refused = readRefusals(in);
        const bool layoutFails = in.below(2) != 0;
        if (layoutFails) fakeLayoutEngine.failAt = 1 + in.byte();

        const Fixed x = in.fixed(), y = in.fixed();
        std::vector<uint16_t> text = readText(in);
        std::vector<uint16_t> second = readText(in);
        uint16_t* lines[] = {text.data(), second.data(), nullptr};
        Fixed width, height;
        MMFixedRegion box = {in.fixed(), 0, in.fixed(), 0};
        switch (in.below(6)) {
        case 0:
            context.drawText(lines, static_cast<uint8_t>(in.below(4)), x, y);
            break;
        case 1:
            context.drawText(text.data(), x, y);
            break;
        case 2:
            context.getTextSize(text.data(), in.half(), width, height);
            context.getTextBBox(second.data(), x, y, &box);
            break;
        case 3:
            context.renderText(text.data(), in.half(), in.byte(), in.word());
            break;
        case 4:
            ParseText2(text.data(), text.data());
            context.destroyTextLayout(context.createTextLayout(text.data(), in.fixed()));
            break;
        default:
            context.drawWrappedText(text.data(), 0, 0);
        }
        if (layoutFails) context.outOfMemory = 0; // said by the library as if it had no memory
        scene.check(context.dashCount != 0);
        require(fakeFontEngine.glyphsAlive == 0, "all glyphs are given back");
        require(fakeLayoutEngine.objectsAlive == 0, "all objects of the layout are given back");
    }
    require(fakeFontEngine.exits <= fakeFontEngine.inits, "the font engine is ended once");
    return 0;
}
