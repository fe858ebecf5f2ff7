// SPDX-License-Identifier: MIT
// Draws an SVG document through the library.
#pragma once

#include "common/Picture.h"
#include "graphics2d/MMContext2D.h"
#include "svg2png/Affine.h"
#include "svg2png/Gradients.h"
#include "svg2png/Images.h"
#include "svg2png/PathEncoder.h"
#include "svg2png/Shapes.h"
#include "svg2png/Style.h"
#include "svg2png/SvgDocument.h"
#include "svg2png/Text.h"

#include <set>

struct RenderOptions {
    bool antiAlias = true;
};

class Renderer {
public:
    // The picture is opaque; what is drawn mixes with what it holds.
    Renderer(const SvgDocument& document, Picture& picture, const RenderOptions& options);

    // Draws the whole document; viewport maps the root element's viewport of the given size to the
    // picture.
    void draw(const ViewportSize& viewport);

    // What was met and not drawn, or not drawn fully.
    const std::set<std::string>& shortcomings() const { return shortcomings_; }

    uint32_t peakScratchWords() const { return context_.scratchStack.peakWords; }
    bool outOfMemory() const { return context_.outOfMemory != 0; }
    const Box& bounds() const { return bounds_; } // of everything drawn, in pixels

private:
    // What an element hands down to its children.
    struct State {
        Style style;
        Affine toDevice;
        ViewportSize viewport;
        double glyphOverhang = 0; // above 0: what is painted are glyphs, which reach this far
                                  // beyond the bounds, user units
        int depth = 0;
    };

    struct TextRun;
    struct Tiling;
    struct TileRange;

    // What a paint of the context points into.
    struct PaintStore {
        GradientPaint gradient;
        Picture tiles;
    };

    // Elements, and uses of uses, can be nested without end. A pattern counts as several levels, as
    // each of them takes a picture of its own.
    static constexpr int kMostDepth = 200;
    static constexpr int kPatternDepth = 50;

    void drawElement(pugi::xml_node node, const State& parent);
    void drawChildren(pugi::xml_node node, const State& state);
    void drawViewport(pugi::xml_node node, const State& state, double width, double height);
    void drawUse(pugi::xml_node node, const State& state);
    void drawSwitch(pugi::xml_node node, const State& state);
    void drawShape(pugi::xml_node node, const State& state);
    void drawImage(pugi::xml_node node, const State& state);
    void drawOutline(const Shape& shape, const State& state);
    void drawOnePaint(const Shape& shape, const PathSpace& space, const Box& deviceBox,
                      bool stroked);
    void drawGeometry(const Shape& shape, const PathSpace& space, bool stroked);
    void drawOutline(const Outline& outline, const PathSpace& space);
    bool drawRoundedBox(const RoundedBox& box, const PathSpace& space);

    void drawText(pugi::xml_node node, const State& state);
    void drawTextArea(pugi::xml_node node, const State& state);
    void drawRun(const TextRun& run, const State& state);
    void drawUnderline(const TextRun& run, const State& state);
    void anchorChunk(std::vector<TextRun>& runs, size_t first);
    void setFont(const Style& style, const PathSpace& space);
    bool setTextPaint(const Style& style, State state, const Box& bounds, double overhang);
    void noteMissingGlyphs(const TextContent& content);
    bool affordsGlyphs(const TextContent& content, const PathSpace& space);

    // Set up the context's paints for something with these bounds in user space; false when they
    // paint nothing.
    bool setFill(const State& state, const Box& userBounds);
    bool setStroke(const State& state, const Box& userBounds);
    bool setPaint(MMPaint& paint, PaintStore& store, const PaintValue& value, double opacity,
                  const State& state, const Box& userBounds);
    bool setServer(MMPaint& paint, PaintStore& store, pugi::xml_node server, const State& state,
                   const Box& userBounds);
    bool setTiles(MMPaint& paint, Picture& tiles, pugi::xml_node pattern, const State& state,
                  const Box& userBounds);
    Picture drawTiles(const Tiling& tiling, const TileRange& range, State state, uint32_t ground);
    Tiling readTiling(pugi::xml_node pattern, const State& state, const Box& userBounds) const;
    void setPen(const State& state, const PathSpace& space);
    void setDashes(const Style& style, const PathSpace& space);
    void setTransform(const PathSpace& space);
    void clipTo(const Box& deviceBox);
    void noteUnsupported(pugi::xml_node node, const Properties& properties);
    void clearBounds();
    void uniteBounds(bool shifted);
    Point pictureCentre() const { return {picture_.width / 2.0, picture_.height / 2.0}; }
    bool isOutside(const Box& deviceBox) const;

    const SvgDocument& document_;
    Picture& picture_;
    RenderOptions options_;
    KAVO::Graphics2D::MMContext2D context_;
    std::set<std::string> shortcomings_;
    ImageStore images_;
    PaintStore fillStore_;
    PaintStore strokeStore_;
    std::vector<KAVO::Fixed> dashes_;
    std::set<uint16_t> charactersMet_; // by noteMissingGlyphs
    double glyphPixels_ = 0;           // of large glyphs, by affordsGlyphs
    Picture shadow_;                   // for ShiftedTarget
    Box bounds_;
    size_t elementsLeft_;
};
