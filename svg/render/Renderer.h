// SPDX-License-Identifier: MIT
// Draws an SVG document through a context.
#pragma once

#include "graphics2d/layers/MMLayer.h"
#include "svg/document/SvgDocument.h"
#include "svg/geometry/BasicShapes.h"
#include "svg/geometry/PathEncoder.h"
#include "svg/geometry/Shapes.h"
#include "svg/images/ImageStore.h"
#include "svg/images/Picture.h"
#include "svg/paint/Gradients.h"
#include "svg/render/Session.h"
#include "svg/text/Text.h"

#include <functional>

namespace KAVO {
namespace Svg {

struct PixelArea;

class Renderer {
public:
    // The pixels of the context's target are premultiplied, and it draws by the refined rules.
    Renderer(const SvgDocument& document, Graphics2D::MMContext2D& context, Session& session,
             Report& report);

    // Draws the whole document; frame maps the root element's viewport of the given size to the
    // target. aspectRatio goes before the root's own unless it is null; opacity and depth are those
    // of what the document is drawn inside.
    void draw(const Affine& frame, const Size& viewport, const char* aspectRatio,
              double opacity = 1, int depth = 0);

private:
    struct ContextPaints;

    // What an element hands down to its children.
    struct State {
        Style style;
        Affine toDevice;
        Viewport viewport;
        double glyphOverhang = 0; // above 0: what is painted are glyphs, which reach this far
                                  // beyond the bounds, user units
        int depth = 0;
        bool strokesCount = false; // in boxes of elements, with half their width all around
        const ContextPaints* contextPaints = nullptr; // null: there are none
    };

    // What context-fill and context-stroke stand for inside a marker or a used element.
    struct ContextPaints {
        const State& state;
        Box bounds; // user space of that state; empty: those of what is painted
    };

    // Draws what an element holds by the renderer that it is given, a filter's or this one.
    using Content = std::function<void(Renderer& renderer, const State& state)>;

    struct TextRun;
    struct Tiling;
    struct TileRange;
    class TileDrawing;
    class PictureDrawing;

    // What a paint of the context points into.
    struct PaintStore {
        GradientPaint gradient;
        Picture tiles;
    };

    // A pattern counts as several levels of nesting, as each takes a picture of its own.
    static constexpr int kPatternDepth = 50;

    static constexpr int kMostLayers = 50; // inside one another: each takes a picture of its own

    // Keeps an element from drawing itself, while an object of this class lives.
    class Active {
    public:
        Active(Renderer& renderer, pugi::xml_node node) : renderer_(renderer)
        {
            renderer.active_.push_back(node);
        }
        ~Active() { renderer_.active_.pop_back(); }
        Active(const Active&) = delete;
        Active& operator=(const Active&) = delete;

    private:
        Renderer& renderer_;
    };
    bool isActive(pugi::xml_node node) const;

    // --- The tree: Renderer.cpp, Viewports.cpp
    // An element on its own: its style and transform within its parent's. False when it draws
    // nothing.
    bool enter(pugi::xml_node node, const Properties& properties, State& state);
    void applyTransform(pugi::xml_node node, const Properties& properties, State& state);
    void applyOwnTransform(pugi::xml_node node, const Properties& properties, State& state);
    void drawElement(pugi::xml_node node, const State& parent);
    // With its filters, clip path, mask and opacity.
    void drawLayered(pugi::xml_node node, const Properties& properties, const State& state,
                     const Content& content);
    void drawEntered(pugi::xml_node node, const Properties& properties, const State& state);
    void drawChildren(pugi::xml_node node, const State& state);
    void drawSwitch(pugi::xml_node node, const State& state);
    void drawUse(pugi::xml_node node, const Properties& properties, const State& state);
    void drawUseOfFile(pugi::xml_node node, const Properties& properties, const State& state);
    Box boundsForContexts(pugi::xml_node use, const Properties& properties, const State& state);
    void drawUsed(pugi::xml_node target, const Properties& properties, const State& state,
                  const Box& bounds);
    // How large a viewport is, and where.
    struct Frame {
        Size size;
        Affine place;
    };
    static Frame frameOfSvg(const Properties& properties, const State& state);
    static Frame frameOfUsed(const Properties& properties, const State& outer,
                             const Properties& ofTarget, const State& state);
    // Sets outer to the transform of the viewport's own rectangle.
    static bool enterViewport(pugi::xml_node node, const Frame& frame, State& state, Affine& outer);
    void drawViewport(pugi::xml_node node, State state, const Frame& frame);
    // The box of what an element fills, in its own user space; empty for what has no geometry.
    Box boundsOf(pugi::xml_node node, const Properties& properties, const State& state);
    std::optional<State> measuring(pugi::xml_node child, const Properties& properties,
                                   const State& state);
    void includeBounds(pugi::xml_node child, const State& state, Box& box);
    Box boundsInViewport(pugi::xml_node node, const Frame& frame, State state);
    Box boundsOfUsed(pugi::xml_node node, const Properties& properties, const State& state);

    // --- Layers.cpp
    class Coverage;
    template <class Function>
    void drawInLayer(const Graphics2D::MMLayerOptions& options, Function draw);
    // What draws nothing outside of a box of some space.
    void drawInside(const Box& box, const Affine& toDevice, const std::function<void()>& draw);
    void coverOutline(const Outline& outline, bool evenOdd, const Affine& toDevice);
    void fillClip(const MMPaint& paint);
    void drawAsOne(const MMPaint& paint, const std::function<void(const MMPaint& paint)>& draw);
    bool strokesText(pugi::xml_node node, const Style& style) const;
    bool overlaps(pugi::xml_node node, const Style& style) const;
    // The element that a property refers to, when it is one of the wanted kind and not being drawn
    // already: a reference in a circle counts as none.
    pugi::xml_node referenced(pugi::xml_node node, std::string_view value, std::string_view wanted);
    // What the property clip-path cuts to: a basic shape, the children of an element, or neither.
    struct Clip {
        std::optional<ShapeOutline> shape; // user space
        pugi::xml_node element;
        explicit operator bool() const { return shape || element; }
    };
    Clip clipOf(pugi::xml_node node, const Properties& properties, const State& state);
    void narrowTo(const Clip& clip, const State& state, const Box& bounds);
    bool clipState(pugi::xml_node clip, const State& state, const Box& bounds, State& inner);
    bool coverByClip(const Clip& clip, const State& state, const Box& bounds, Coverage& coverage);
    bool coverByMask(pugi::xml_node mask, const State& state, const Box& bounds,
                     Coverage& coverage);

    // --- Filters.cpp
    bool isFiltered(const Properties& properties) const;
    void drawFiltered(pugi::xml_node node, const Properties& properties, const State& state,
                      const Content& content);
    bool drawThroughFilters(pugi::xml_node node, const Properties& properties, const State& state,
                            const Content& content);
    class FilterPictures;

    // --- Shapes: Shapes.cpp, Markers.cpp, Paints.cpp
    void drawShape(pugi::xml_node node, const Properties& properties, const State& state);
    void drawOutline(const Shape& shape, const State& state, bool markers);
    void paintShape(const Shape& shape, const Box& bounds, const State& state, bool markers);
    void drawFill(const Shape& shape, const PathSpace& space, const State& state,
                  const Box& bounds);
    void drawStroke(const Shape& shape, const PathSpace& space, const State& state,
                    const Box& bounds);
    void drawPen(const Shape& shape, const PathSpace& space, const State& state, const Box& bounds);
    void drawMarkers(const Outline& outline, const State& state);
    void drawMarker(pugi::xml_node marker, const struct Vertex& vertex, bool first,
                    const State& state, const ContextPaints& paints);
    void drawGeometry(const Shape& shape, const PathSpace& space);
    bool affordsRows(const Outline& outline, const PathSpace& space) const;
    void drawPath(const Outline& outline, const PathSpace& space);
    bool drawRoundedBox(const RoundedBox& box, const PathSpace& space);
    bool setFill(const State& state, const Box& userBounds);
    bool setStroke(const State& state, const Box& userBounds);
    bool setPaint(MMPaint& paint, PaintStore& store, const PaintValue& value, double opacity,
                  const State& state, const Box& userBounds);
    void noteServer(pugi::xml_node server);
    bool setServer(MMPaint& paint, PaintStore& store, pugi::xml_node server, const State& state,
                   const Box& userBounds, double opacity);
    bool setTiles(MMPaint& paint, Picture& tiles, pugi::xml_node pattern, const State& state,
                  const Box& userBounds);
    void drawTiles(const Tiling& tiling, const TileRange& range, State state, const PixelArea& area,
                   Picture& tiles);
    bool copyTiles(const Tiling& tiling, State state, const PixelArea& area, Picture& tiles);
    bool sampleTiles(const Tiling& tiling, State state, const PixelArea& area, Picture& tiles);
    Tiling readTiling(pugi::xml_node pattern, const State& state, const Box& userBounds) const;
    void setPen(const Shape& shape, const State& state, const PathSpace& space);
    void setDashes(const Shape& shape, const Style& style, const PathSpace& space);
    Box visiblePart(const Box& userBounds, const State& state) const;

    // --- Images: Images.cpp
    void drawImage(pugi::xml_node node, const Properties& properties, const State& state);
    void drawImageIn(pugi::xml_node node, const LoadedImage& image, const Box& box,
                     const State& state);
    const LoadedImage* imageOf(pugi::xml_node node);
    void drawPicture(const LoadedImage& image, const Affine& frame, const Size& size,
                     const char* aspectRatio, const Style& style);

    // --- Text: TextDrawing.cpp, TextLayout.cpp, TextOnPath.cpp, TextOutlines.cpp
    void drawText(pugi::xml_node node, const State& state);
    void drawTextArea(pugi::xml_node node, const State& state);
    size_t layOnPath(const TextContent& content, size_t index, const State& state,
                     const PathSpace& space, std::vector<TextRun>& runs, Point& pen);
    Outline outlineForText(pugi::xml_node textPath, const State& state);
    void drawRuns(const std::vector<TextRun>& runs, const State& state, const Box& bounds);
    void drawRun(const TextRun& run, const State& state);
    bool needsOutlines(const Style& style) const;
    void drawOutlinedRuns(const std::vector<TextRun>& runs, size_t first, size_t end,
                          const State& state, const Box& bounds);
    void drawTextShape(const Outline& outline, State state, const Style& style, const Box& bounds);
    void pickRun(const TextRun& run, const PathSpace& space);
    void drawLine(const TextRun& run, const Style& style, double offset, const State& state,
                  const Box& bounds);
    Box boundsOfText(pugi::xml_node node, const State& state);
    static Box boundsOfRuns(const std::vector<TextRun>& runs);
    void noteParts(pugi::xml_node node);
    void measure(TextRun& run, const PathSpace& space);
    std::vector<TextRun> layOut(const TextContent& content, const State& state,
                                const PathSpace& space);
    void fitLength(pugi::xml_node node, TextContent& content, const State& state,
                   const PathSpace& space, std::vector<TextRun>& runs);
    void anchorChunk(std::vector<TextRun>& runs, size_t first);
    void setFont(const Style& style, const PathSpace& space);
    bool setTextPaint(const Style& style, State state, const Box& bounds, double overhang);
    void noteMissingGlyphs(pugi::xml_node node, const TextContent& content);
    bool affordsGlyphs(pugi::xml_node node, const TextContent& content, const PathSpace& space,
                       double stretch = 1);

    // --- The target: Target.cpp
    void clipTo(const Box& deviceBox);
    void clearBounds();
    void uniteBounds();
    Point targetCentre() const;
    bool isOutside(const Box& deviceBox) const;

    void note(const std::string& what, pugi::xml_node node) { report_.note(what, document_, node); }
    void noteUndrawn(pugi::xml_node node, const Properties& properties);
    void noteUndrawnValues(pugi::xml_node node, const Properties& properties);

    const SvgDocument& document_;
    Graphics2D::MMContext2D& context_;
    Session& session_;
    Report& report_;
    std::shared_ptr<ImageStore> images_; // shared with those that draw parts of this drawing
    PaintStore fillStore_;
    PaintStore strokeStore_;
    std::vector<Fixed> dashes_;
    std::vector<pugi::xml_node> active_; // elements that are being drawn by reference
    pugi::xml_node current_;             // the element that is being drawn
    bool clipping_ = false;              // only what is covered counts: white, without strokes
    int layers_ = 0;                     // that are open
};

} // namespace Svg
} // namespace KAVO
