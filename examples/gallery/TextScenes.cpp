// SPDX-License-Identifier: MIT
// Text: sizes, styles, paints, and paragraphs in three scripts.
#include "gallery/Canvas.h"
#include "graphics2d/convenience/MMGradient.h"
#include "platform/freetype/LightHinting.h"

using namespace KAVO;

using namespace KAVO::Graphics2D;

namespace {

constexpr Pixel kInk = 0xFF222222;

void setFont(MMContext2D& context, double size, uint8_t weight = 4, uint32_t style = 0)
{
    context.fontSize = fixed(size);
    context.fontWeight = weight;
    context.fontStyle = style;
    context.updateFont();
}

void requireGlyphs(Canvas& canvas, const uint16_t* text)
{
    for (; *text != 0; ++text) {
        if (*text != '\n' && !hasGlyph(canvas.context(), *text))
            canvas.problem = "no glyph for character " + std::to_string(*text);
    }
}

void drawLine(Canvas& canvas, const char* utf8, double x, double y)
{
    MMText text(utf8);
    requireGlyphs(canvas, text.units());
    canvas.context().drawText(text.units(), fixed(x), fixed(y));
}

// lineHeight: in font sizes.
void drawParagraph(Canvas& canvas, const char* fontFile, const char* utf8, double size,
                   double lineHeight = 1.35)
{
    canvas.useFont(fontFile);
    MMContext2D& context = canvas.context();
    MMText text(utf8);
    requireGlyphs(canvas, text.units());
    canvas.fill(kInk);
    canvas.place();
    setFont(context, size);
    context.lineHeight = fixed(size * lineHeight);
    context.wrapWidth = fixed(kPanelWidth - 30);
    context.wrapOffsetX = fixed(15);
    context.penX = 0;
    context.penY = fixed(size + 10);
    context.textDecoration = 1;
    context.drawWrappedText(text.units(), 0, 0);
}

} // namespace

// From 8 to 48 pixels, then bold and slanted.
void drawSizeScene(Canvas& canvas)
{
    canvas.useFont(LATIN_FONT);
    MMContext2D& context = canvas.context();
    canvas.fill(kInk);
    canvas.place();
    double y = 6;
    for (const double size : {8, 10, 12, 14, 18, 24, 36, 48}) {
        y += size * 1.05;
        setFont(context, size);
        drawLine(canvas, size < 24 ? "Quick vexing jumps" : "Quick jumps", 10, y);
    }
    setFont(context, 14, 7);
    drawLine(canvas, "bold weight", 236, 24);
    setFont(context, 14, 4, 1);
    drawLine(canvas, "slanted style", 236, 46);
    setFont(context, 14, 7, 1);
    drawLine(canvas, "bold and slanted", 236, 68);
    for (const bool hinted : {false, true}) {
        canvas.useFont(LATIN_FONT); // and a glyph cache of its own
        FS_set_light_hinting(hinted);
        canvas.fill(kInk);
        canvas.place();
        setFont(canvas.context(), 11);
        drawLine(canvas, hinted ? "hinted: fine print" : "plain: fine print", 236,
                 hinted ? 108 : 92);
    }
    FS_set_light_hinting(0);
}

// Letters turned one by one and as a line, painted with a gradient and an image, and clipped.
void drawLetterScene(Canvas& canvas)
{
    canvas.useFont(LATIN_FONT);
    MMContext2D& context = canvas.context();
    canvas.fill(kInk);
    canvas.place();
    setFont(context, 20);
    static const Degrees turns[] = {degrees(-40), degrees(-28), degrees(-16), degrees(-4),
                                    degrees(8),   degrees(20),  degrees(32),  degrees(44)};
    context.charRotate = turns;
    context.charRotateCount = 8;
    drawLine(canvas, "tumbling", 16, 36);
    context.charRotate = nullptr;
    context.charRotateCount = 0;
    canvas.place(150, 50, 1, -15);
    drawLine(canvas, "uphill", 0, 0);
    canvas.place(240, 12, 1, 15);
    drawLine(canvas, "downhill", 0, 20);

    MMGradient gradient({{0, 0xFFD00000}, {0.5_fx, 0xFFE09F3E}, {1_fx, 0xFF1C77C3}});
    canvas.place();
    gradient.setLinear(context, context.fillPaint, {10_fx, 0}, {370_fx, 0});
    setFont(context, 48, 7);
    drawLine(canvas, "Gradient", 14, 112);

    Picture image(8, 8, 0xFF2A7F78);
    for (int i = 0; i < 64; ++i) {
        if ((i + i / 8) % 4 < 2) image.pixels[static_cast<size_t>(i)] = 0xFFE09F3E;
    }
    const MMPixmap pixmap = {8, 8, 32, 0, image.pixels.data(), 0};
    canvas.place(14, 124, 8);
    setPattern(context.fillPaint, pixmap, context.transform, kFilterBilinear);
    context.patternFilter = kFilterBilinear;
    canvas.place();
    drawLine(canvas, "Tiles", 14, 176);

    canvas.fill(0xFFB23A48);
    const int16_t left = static_cast<int16_t>(fixFloor(context.transform.e) + 200);
    const int16_t top = static_cast<int16_t>(fixFloor(context.transform.f) + 138);
    context.clipLeft = left;
    context.clipRight = static_cast<int16_t>(left + 150);
    context.clipTop = top;
    context.clipBottom = static_cast<int16_t>(top + 26);
    drawLine(canvas, "clipped", 190, 172);
    context.clipLeft = context.clipTop = 0;
    context.clipRight = static_cast<int16_t>(canvas.picture.width);
    context.clipBottom = static_cast<int16_t>(canvas.picture.height);
}

void drawEnglishScene(Canvas& canvas)
{
    drawParagraph(canvas, LATIN_FONT,
                  "The library breaks a paragraph into lines that fit a given width, and "
                  "draws them one below the other. Words are kept whole, and only an "
                  "extraordinarily-long-compound-of-words is broken where it may be.\n"
                  "A new line begins where the text says so.",
                  15);
}

void drawChineseScene(Canvas& canvas)
{
    drawParagraph(canvas, CHINESE_FONT,
                  "\u56fe\u5f62\u5e93\u628a\u4e00\u6bb5\u6587\u5b57\u5206\u6210\u82e5\u5e72"
                  "\u884c\uff0c\u6bcf\u884c\u90fd\u4e0d\u8d85\u8fc7\u7ed9\u5b9a\u7684\u5bbd"
                  "\u5ea6\u3002\u6c49\u5b57\u4e4b\u95f4\u53ef\u4ee5\u6362\u884c\uff0c\u4f46"
                  "\u6807\u70b9\u4e0d\u4f1a\u51fa\u73b0\u5728\u884c\u9996\u3002",
                  20);
}

void drawThaiScene(Canvas& canvas)
{
    drawParagraph(
        canvas, THAI_FONT,
        "\u0e20\u0e32\u0e29\u0e32\u0e44\u0e17\u0e22\u0e40\u0e02\u0e35\u0e22\u0e19\u0e15\u0e34"
        "\u0e14\u0e01\u0e31\u0e19\u0e42\u0e14\u0e22\u0e44\u0e21\u0e48\u0e21\u0e35\u0e0a\u0e48"
        "\u0e2d\u0e07\u0e27\u0e48\u0e32\u0e07\u0e23\u0e30\u0e2b\u0e27\u0e48\u0e32\u0e07\u0e04"
        "\u0e33 \u0e08\u0e36\u0e07\u0e15\u0e49\u0e2d\u0e07\u0e43\u0e0a\u0e49\u0e1e\u0e08\u0e19"
        "\u0e32\u0e19\u0e38\u0e01\u0e23\u0e21\u0e2b\u0e32\u0e17\u0e35\u0e48\u0e15\u0e31\u0e14"
        "\u0e1a\u0e23\u0e23\u0e17\u0e31\u0e14",
        20, 1.8); // two marks may stand on a letter
}
