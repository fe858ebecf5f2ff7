// SPDX-License-Identifier: MIT
#include "svg/MMSvgDocument.h"

#include "svg/geometry/ViewBox.h"
#include "svg/render/ContextGuard.h"
#include "svg/render/Renderer.h"

#include <algorithm>
#include <cmath>

namespace KAVO {
namespace Svg {

using namespace Graphics2D;

namespace {

// The placement with both sides. What has the drawing's proportions but for less than a pixel is
// filled to its edges.
struct Rectangle {
    Affine frame; // from the drawing's viewport, at the origin, to the device
    Size size;

    static std::optional<Rectangle> make(const Placement& place, const Size& drawing)
    {
        Size size{place.width, place.height};
        if (size.width == 0 && size.height == 0) size = drawing;
        if (size.width == 0) size.width = size.height * drawing.width / drawing.height;
        if (size.height == 0) size.height = size.width * drawing.height / drawing.width;
        const bool fits = size.width > 0 && size.height > 0 && std::isfinite(place.x) &&
                          std::isfinite(place.y) && size.width <= 1e9 && size.height <= 1e9;
        if (!fits) return std::nullopt;
        const double width = size.height * drawing.width / drawing.height;
        const double stretch = std::fabs(width - size.width) < 1 ? size.width / width : 1;
        return Rectangle{translation(place.x, place.y) * Affine{stretch, 0, 0, 1, 0, 0},
                         {size.width / stretch, size.height}};
    }
};

bool isUsable(const MMPixmap& target)
{
    return target.pixels && target.width > 0 && target.height > 0 && target.width <= kLargestSide &&
           target.height <= kLargestSide && target.rowBytes >= target.width * sizeof(Pixel) &&
           target.rowBytes % sizeof(Pixel) == 0;
}

} // namespace

struct MMSvgDocument::Parts {
    LoadOptions options;
    std::unique_ptr<SvgDocument> document;
    std::string problem;
    Report report;
    RenderResult result;

    bool load(std::string bytes, const std::string& folder);
    void draw(MMContext2D& context, const Rectangle& rectangle, const char* aspectRatio);
};

bool MMSvgDocument::Parts::load(std::string bytes, const std::string& folder)
{
    report = {};
    result = {};
    document = std::make_unique<SvgDocument>(
        options, Resources(folder, options.files, options.limits.documentBytes));
    problem = document->parse(std::move(bytes));
    if (!problem.empty()) document.reset();
    if (document) {
        for (const SvgDocument::Remark& remark : document->remarks())
            report.note(remark.what, *document, remark.node);
    }
    return problem.empty();
}

void MMSvgDocument::Parts::draw(MMContext2D& context, const Rectangle& rectangle,
                                const char* aspectRatio)
{
    const ContextGuard guard(context);
    context.accumulateBounds = 1;
    context.refined = 1;
    const auto clip = [](int value, int most) {
        return static_cast<int16_t>(std::clamp(value, 0, most));
    };
    context.clipLeft = clip(context.clipLeft, context.target.width);
    context.clipTop = clip(context.clipTop, context.target.height);
    context.clipRight = clip(context.clipRight, context.target.width);
    context.clipBottom = clip(context.clipBottom, context.target.height);
    Session session(*document);
    Renderer(*document, context, session, report)
        .draw(rectangle.frame, rectangle.size, aspectRatio);
    result.outOfMemory = context.outOfMemory != 0;
    result.peakScratchWords = context.scratchStack.peakWords;
    const Box& bounds = session.bounds;
    result.bounds = {1, 1, 0, 0};
    if (!bounds.empty())
        result.bounds = {toFixed(bounds.left), toFixed(bounds.top), toFixed(bounds.right),
                         toFixed(bounds.bottom)};
}

MMSvgDocument::MMSvgDocument(LoadOptions options) : parts_(std::make_unique<Parts>())
{
    parts_->options = std::move(options);
}

MMSvgDocument::~MMSvgDocument() = default;
MMSvgDocument::MMSvgDocument(MMSvgDocument&&) noexcept = default;
MMSvgDocument& MMSvgDocument::operator=(MMSvgDocument&&) noexcept = default;

bool MMSvgDocument::loadFile(const std::string& fileName)
{
    std::string bytes;
    parts_->document.reset();
    parts_->problem = readFile(fileName, parts_->options.limits.documentBytes, bytes);
    if (!parts_->problem.empty()) return false;
    const size_t slash = fileName.rfind('/');
    return parts_->load(std::move(bytes),
                        slash == fileName.npos ? "" : fileName.substr(0, slash + 1));
}

bool MMSvgDocument::loadBytes(std::string_view bytes)
{
    std::string folder = parts_->options.folder;
    if (!folder.empty() && folder.back() != '/') folder += '/';
    return parts_->load(std::string(bytes), folder);
}

const std::string& MMSvgDocument::problem() const
{
    return parts_->problem;
}

Size MMSvgDocument::size() const
{
    return parts_->document ? parts_->document->size() : Size();
}

bool MMSvgDocument::render(const MMPixmap& target, const Placement& place,
                           const RenderOptions& options)
{
    if (!parts_->document || !isUsable(target)) return false;
    const std::optional<Rectangle> rectangle = Rectangle::make(place, size());
    if (!rectangle) return false;
    MMContext2D context;
    context.target = target;
    context.clipRight = static_cast<int16_t>(target.width);
    context.clipBottom = static_cast<int16_t>(target.height);
    context.antiAlias = options.antiAlias;
    parts_->draw(context, *rectangle, place.aspectRatio);
    return true;
}

bool MMSvgDocument::render(MMContext2D& context, const Placement& place)
{
    if (!parts_->document || !isUsable(context.target)) return false;
    const std::optional<Rectangle> rectangle = Rectangle::make(place, size());
    if (!rectangle) return false;
    parts_->draw(context, *rectangle, place.aspectRatio);
    return true;
}

const RenderResult& MMSvgDocument::result() const
{
    return parts_->result;
}

std::vector<Shortcoming> MMSvgDocument::shortcomings() const
{
    return parts_->report.list();
}

std::string MMSvgDocument::elementAt(const Placement& place, double x, double y) const
{
    if (!parts_->document) return "";
    const std::optional<Rectangle> rectangle = Rectangle::make(place, size());
    if (!rectangle || !std::isfinite(x) || !std::isfinite(y)) return "";

    // One pixel, under which the drawing is moved so that the point lies in it.
    constexpr int kSide = 64;
    constexpr int kMiddle = kSide / 2;
    const double left = std::floor(x) - kMiddle;
    const double top = std::floor(y) - kMiddle;
    Pixel pixels[kSide * kSide];
    MMContext2D context;
    context.target = {kSide, kSide, kSide * sizeof(Pixel), 0, pixels, 0};
    context.clipLeft = context.clipTop = kMiddle;
    context.clipRight = kMiddle + 2; // spans lie half a pixel to the right
    context.clipBottom = kMiddle + 1;
    context.refined = 1;
    context.pickX = toFixed(x - left) + kFixedHalf;
    context.pickY = kMiddle * kFixedOne;
    Session session(*parts_->document);
    session.pick = true;
    Report report;
    Renderer(*parts_->document, context, session, report)
        .draw(translation(-left, -top) * rectangle->frame, rectangle->size, place.aspectRatio);
    for (pugi::xml_node node = session.picked; node; node = node.parent()) {
        if (const pugi::xml_attribute id = node.attribute("id")) return id.value();
    }
    return "";
}

bool parseColour(std::string_view text, Pixel* colour)
{
    const std::optional<uint32_t> found = findColour(text, 0xFF000000);
    if (found) *colour = *found;
    return found.has_value();
}

} // namespace Svg
} // namespace KAVO
