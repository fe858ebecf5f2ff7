// SPDX-License-Identifier: MIT
// Filter elements: their region, and what their primitives take and say.
#include "svg/document/ElementNames.h"
#include "svg/document/References.h"
#include "svg/filters/FilterBuilder.h"
#include "svg/filters/Primitive.h"
#include "svg/style/Style.h"

#include <map>

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kMostPrimitives = 200;
constexpr Box kDefaultShares{-0.1, -0.1, 1.1, 1.1}; // of a filter's region

using Result = FilterBuilder::Result;

Box commonBox(const Box& a, const Box& b)
{
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

class ElementReader {
public:
    ElementReader(pugi::xml_node filter, FilterBuilder& builder)
        : filter_(filter), builder_(builder), target_(builder.target()),
          chain_(target_.document, filter),
          style_(target_.document.styleOf(filter, target_.viewport)),
          primitivesInBox_(chain_["primitiveUnits"] == std::string_view("objectBoundingBox"))
    {
    }

    FilterOutcome read()
    {
        const bool inBox = chain_["filterUnits"] != std::string_view("userSpaceOnUse");
        if ((inBox || primitivesInBox_) && !target_.bounds.hasArea()) {
            if (!target_.bounds.empty()) return FilterOutcome::Ignored;
            return builder_.fail("bounding box of nothing", filter_);
        }
        region_ = boxOf(chain_, inBox, &kDefaultShares, {});
        if (!region_.hasArea()) return FilterOutcome::NotDrawn;
        source_ = previous_ = builder_.source(region_);
        // The nearest filter of the chain that has primitives.
        for (const pugi::xml_node filter : chain_.elements()) {
            if (filter.name() == std::string_view("filter") && filter.find_child(isPrimitive))
                return addPrimitives(filter);
        }
        return FilterOutcome::NotDrawn;
    }

private:
    static bool isPrimitive(pugi::xml_node node)
    {
        return std::string_view(node.name()).substr(0, 2) == "fe";
    }

    FilterOutcome addPrimitives(pugi::xml_node filter)
    {
        if (const pugi::xml_node animation =
                filter.find_node([](pugi::xml_node node) { return isAnimation(node.name()); }))
            builder_.note("animation", animation);
        size_t count = 0;
        for (const pugi::xml_node node : filter.children()) {
            if (!isPrimitive(node)) continue;
            if (++count > kMostPrimitives)
                return builder_.fail("filter of more primitives than the limit", filter);
            if (!addPrimitive(node)) return FilterOutcome::Ignored;
        }
        return FilterOutcome::Drawn;
    }

    // In user space; what an attribute does not say is as in the shares of the whole, of the
    // bounding box or of the viewport, or, when those are null, as in the other box.
    template <class Attributes>
    Box boxOf(const Attributes& attributes, bool inBox, const Box* shares,
              const Box& otherwise) const
    {
        Viewport units = target_.viewport;
        if (inBox) units.width = units.height = 1;
        const Box& bounds = target_.bounds;
        const LengthContext lengths = style_.lengths(units);
        const auto length = [&](const char* name, Axis axis, double share, double fallback) {
            const double whole = axis == Axis::X ? units.width : units.height;
            const double size = axis == Axis::X ? bounds.width() : bounds.height();
            const auto given = findLength(attributes[name], lengths, axis);
            if (!given && !shares) return fallback;
            return given.value_or(share * whole) * (inBox ? size : 1);
        };
        const auto place = [&](const char* name, Axis axis, double share, double fallback) {
            const double origin = axis == Axis::X ? bounds.left : bounds.top;
            const bool isGiven = shares || findLength(attributes[name], lengths, axis);
            return length(name, axis, share, fallback) + (inBox && isGiven ? origin : 0);
        };
        const Box s = shares ? *shares : Box();
        const double x = place("x", Axis::X, s.left, otherwise.left);
        const double y = place("y", Axis::Y, s.top, otherwise.top);
        return {x, y, x + length("width", Axis::X, s.width(), otherwise.width()),
                y + length("height", Axis::Y, s.height(), otherwise.height())};
    }

    bool addPrimitive(pugi::xml_node node)
    {
        const Style style =
            style_.child(Properties(node, target_.document.sheet()), target_.viewport);
        Primitive primitive{node, style, target_, primitivesInBox_, {}, {}, {}, {}};
        std::vector<size_t> inputs;
        if (!readInputs(primitive, inputs)) return false;
        const Box& defaultBox = primitive.needsRegion() ? region_ : primitive.inputRegion;
        primitive.wholeRegion = boxOf(primitive, primitivesInBox_, nullptr, defaultBox);
        primitive.region = commonBox(primitive.wholeRegion, region_);
        if (primitive.inputRegion.empty()) primitive.inputRegion = region_;

        if (node.name() == std::string_view("feDropShadow")) {
            previous_ =
                builder_.addShadow(Result{inputs[0], {}}, primitive.blur(2), primitive.offset(2),
                                   primitive.flood(), primitive.region, style.linearFilters);
        } else {
            EffectPointer effect = makeEffect(primitive);
            if (!effect) {
                builder_.fail("<" + std::string(node.name()) + ">" + primitive.problem, node);
                return false;
            }
            previous_ = builder_.add(std::move(effect), std::move(inputs), primitive.region,
                                     style.linearFilters);
        }
        if (!primitive.problem.empty())
            builder_.note("<" + std::string(node.name()) + ">" + primitive.problem, node);
        if (const pugi::xml_attribute name = node.attribute("result"))
            results_[name.value()] = previous_;
        return true;
    }

    bool readInputs(Primitive& primitive, std::vector<size_t>& inputs)
    {
        const auto add = [&](pugi::xml_node node, const char* attribute) {
            const std::optional<Result> input = readInput(node, attribute);
            if (!input) return false;
            inputs.push_back(input->step);
            primitive.inputRegion.include(input->region);
            return true;
        };
        const int count = primitive.inputs();
        if (count < 0) {
            for (const pugi::xml_node child : primitive.node.children("feMergeNode"))
                if (!add(child, "in")) return false;
        }
        return (count < 1 || add(primitive.node, "in")) &&
               (count < 2 || add(primitive.node, "in2"));
    }

    std::optional<Result> readInput(pugi::xml_node node, const char* attribute)
    {
        const std::string_view name = node.attribute(attribute).value();
        if (name == "SourceGraphic") return source_;
        if (name == "SourceAlpha") {
            if (!alpha_) alpha_ = builder_.add(makeAlpha(), {source_.step}, region_, false);
            return alpha_;
        }
        if (name == "FillPaint" || name == "StrokePaint")
            return builder_.add(target_.paint(name == "StrokePaint", region_), {}, region_, false);
        if (name == "BackgroundImage" || name == "BackgroundAlpha") {
            builder_.fail("filter input " + std::string(name), node);
            return std::nullopt;
        }
        const auto found = results_.find(name);
        return found == results_.end() ? previous_ : found->second;
    }

    pugi::xml_node filter_;
    FilterBuilder& builder_;
    const FilterTarget& target_;
    ReferenceChain chain_; // of filters from which this one takes what it lacks
    Style style_;
    bool primitivesInBox_;
    Box region_; // user space
    Result source_;
    std::optional<Result> alpha_;
    Result previous_;
    std::map<std::string_view, Result> results_;
};

} // namespace

FilterOutcome readFilterElement(pugi::xml_node filter, FilterBuilder& builder)
{
    return ElementReader(filter, builder).read();
}

} // namespace Svg
} // namespace KAVO
