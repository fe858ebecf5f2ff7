// SPDX-License-Identifier: MIT
// Elements with filters: drawn into a picture of their own, as much of it as the visible part of
// the result needs, and put on the target as an image.
#include "svg/document/References.h"
#include "svg/filters/FilterBuilder.h"
#include "svg/render/PictureDrawing.h"
#include "svg/render/PicturePixmap.h"
#include "svg/values/TextScanner.h"

#include <cmath>
#include <deque>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// Pixels of all primitives of all filters that a drawing shows.
constexpr double kMostFilterWork = 1 << 30;

// Draws into the picture that it is asked for.
class DrawnImage : public Effect {
public:
    explicit DrawnImage(std::function<Picture(const PixelArea&)> draw) : draw_(std::move(draw)) {}

    void apply(const std::vector<const FilterImage*>&, FilterImage& result) const override
    {
        const bool linear = result.isLinear();
        result = FilterImage(draw_(result.area()), result.area(), result.area());
        result.convert(linear);
    }

private:
    std::function<Picture(const PixelArea&)> draw_;
};

} // namespace

// Draws what filters start from.
class Renderer::FilterPictures {
public:
    FilterPictures(Renderer& renderer, const State& state) : renderer_(renderer), state_(state) {}

    // By draw(renderer, state), which gets both as they are within the picture.
    template <class Function>
    Picture of(const PixelArea& area, Function draw) const
    {
        Picture picture(area.width(), area.height(), 0);
        if (area.empty()) return picture;
        const Affine shift = translation(-area.left, -area.top);
        State state = state_;
        state.style.opacity = 1;
        state.toDevice = shift * state.toDevice;
        // What context-fill stands for lies in the picture, too.
        std::deque<State> outer;
        std::deque<ContextPaints> paints;
        const ContextPaints** link = &state.contextPaints;
        while (*link) {
            outer.push_back((*link)->state);
            outer.back().toDevice = shift * outer.back().toDevice;
            paints.push_back({outer.back(), (*link)->bounds});
            *link = &paints.back();
            link = &outer.back().contextPaints;
        }
        PictureDrawing drawing(renderer_, picture);
        drawing.renderer().layers_ = renderer_.layers_ + 1;
        draw(drawing.renderer(), state);
        return picture;
    }

    // What an feImage element shows; nothing when there is no such thing.
    EffectPointer image(pugi::xml_node node, const Box& region) const
    {
        const pugi::xml_node target = renderer_.document_.target(node);
        const std::string_view href = trimmed(hrefOf(node));
        const bool isMissing = href.empty() || (href[0] == '#' && !target);
        if (isMissing || renderer_.isActive(node)) {
            renderer_.note(isMissing ? "filter image of nothing that is there"
                                     : "filter image of what it filters",
                           node);
            return makeFlood(0);
        }
        return std::make_unique<DrawnImage>([=](const PixelArea& area) {
            return of(area, [&](Renderer& renderer, State& state) {
                const Active active(renderer, node);
                if (!target) {
                    if (const LoadedImage* image = renderer.imageOf(node))
                        renderer.drawImageIn(node, *image, region, state);
                    return;
                }
                state.style = renderer.document_.styleOf(target.parent(), state.viewport);
                state.style.opacity = 1;
                renderer.drawElement(target, state);
            });
        });
    }

    // The paint of the element's fill or stroke all over a box of user space.
    EffectPointer paint(bool stroke, const Box& box, const Box& bounds) const
    {
        return std::make_unique<DrawnImage>([=](const PixelArea& area) {
            return of(area, [&](Renderer& renderer, State& state) {
                if (stroke) {
                    state.style.fill = state.style.stroke;
                    state.style.fillOpacity = state.style.strokeOpacity;
                }
                const auto space = PathSpace::make(state.toDevice, renderer.targetCentre());
                if (!space || !renderer.setFill(state, bounds)) return;
                Shape shape;
                shape.outline = Outline::rectangle(box);
                renderer.context_.strokePaint.paintType = kPaintNone;
                renderer.drawGeometry(shape, *space);
            });
        });
    }

private:
    Renderer& renderer_;
    const State& state_;
};

bool Renderer::isFiltered(const Properties& properties) const
{
    const std::string_view value = properties[Property::Filter];
    return !value.empty() && value != "none" && value != "inherit" && !clipping_ && !session_.pick;
}

void Renderer::drawFiltered(pugi::xml_node node, const Properties& properties, const State& state,
                            const Content& content)
{
    if (!isFiltered(properties) || !drawThroughFilters(node, properties, state, content))
        content(*this, state);
}

// False when the element is to be drawn without them.
bool Renderer::drawThroughFilters(pugi::xml_node node, const Properties& properties,
                                  const State& state, const Content& content)
{
    if (layers_ == kMostLayers) {
        note("clips, masks and opacities inside one another beyond the limit", node);
        return false;
    }
    const FilterPictures pictures(*this, state);
    const Box bounds = boundsOf(node, properties, state);
    const FilterTarget target{
        document_,
        state.style,
        state.toDevice,
        bounds,
        state.viewport,
        [&](pugi::xml_node image, const Box& region) { return pictures.image(image, region); },
        [&](bool stroke, const Box& region) { return pictures.paint(stroke, region, bounds); }};
    FilterBuilder builder(target);
    const FilterOutcome outcome = readFilters(properties[Property::Filter], builder);
    for (const FilterBuilder::Problem& problem : builder.problems())
        note(problem.what, problem.node ? problem.node : node);
    if (outcome == FilterOutcome::NotDrawn) return true;
    if (outcome == FilterOutcome::Ignored) return false;

    FilterGraph& graph = builder.graph();
    const PixelArea clip{context_.clipLeft, context_.clipTop, context_.clipRight,
                         context_.clipBottom};
    if (!graph.plan(clip)) {
        note("filter of an area beyond the limit", node);
        return false;
    }
    const PixelArea area = graph.sourceArea();
    session_.filterWork += area.pixels();
    std::optional<FilterImage> result;
    {
        const Picture picture = pictures.of(area, content);
        graph.trim(filledPart(picture, area));
        session_.filterWork += graph.work();
        if (session_.filterWork > kMostFilterWork) {
            note("filters of more work than the limit", node);
            return false;
        }
        result = FilterImage(picture, area, graph.sourceArea());
    }
    result = graph.run(std::move(*result));
    if (!result) {
        note("filter of more memory than the limit", node);
        return false;
    }
    if (result->area().empty()) return true;
    const Picture picture = result->picture();
    const MMPixmap pixmap = pixmapOf(picture, true);
    context_.patternFilter = kFilterNearest;
    context_.imageOpacity = 255;
    context_.transform = {kFixedOne,
                          0,
                          0,
                          kFixedOne,
                          result->area().left * kFixedOne,
                          result->area().top * kFixedOne};
    clearBounds();
    context_.drawImage(&pixmap, 0, 0, fixFromInt(picture.width), fixFromInt(picture.height), 0);
    uniteBounds();
    return true;
}

} // namespace Svg
} // namespace KAVO
