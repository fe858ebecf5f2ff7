// SPDX-License-Identifier: MIT
#include "svg2png/SvgDocument.h"

#include "svg2png/Style.h"
#include "svg2png/TextScanner.h"

#include <filesystem>

namespace {

// Of a drawing that says nothing about its size.
constexpr double kDefaultWidth = 300;
constexpr double kDefaultHeight = 150;

// White space matters between the words of a text.
constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_ws_pcdata;

struct IdCollector : pugi::xml_tree_walker {
    std::unordered_map<std::string, pugi::xml_node>& byId;
    size_t nodeCount = 0;
    explicit IdCollector(std::unordered_map<std::string, pugi::xml_node>& map) : byId(map) {}
    bool for_each(pugi::xml_node& node) override
    {
        ++nodeCount;
        const pugi::xml_attribute id = node.attribute("id");
        if (id) byId.emplace(id.value(), node);
        return true;
    }
};

// Where the box goes along one axis: Min, Mid or Max of the room that is left.
double alignment(std::string_view keyword, double room)
{
    if (keyword == "Min") return 0;
    return keyword == "Max" ? room : room / 2;
}

} // namespace

std::string SvgDocument::load(const std::string& fileName)
{
    std::error_code error;
    if (std::filesystem::is_directory(fileName, error)) return "is a folder";
    const size_t slash = fileName.rfind('/');
    directory_ = slash == fileName.npos ? "" : fileName.substr(0, slash + 1);
    return readRoot(document_.load_file(fileName.c_str(), kParseFlags));
}

std::string SvgDocument::parse(std::string_view text)
{
    return readRoot(document_.load_buffer(text.data(), text.size(), kParseFlags));
}

std::string SvgDocument::readRoot(const pugi::xml_parse_result& result)
{
    if (!result) return result.description();
    root_ = document_.document_element();
    if (localName(root_.name()) != "svg") return "not an SVG drawing";
    IdCollector collector(byId_);
    document_.traverse(collector);
    nodeCount_ = collector.nodeCount;

    const std::optional<Box> box = parseViewBox(root_.attribute("viewBox").value());
    const double boxWidth = box ? box->width() : kDefaultWidth;
    const double boxHeight = box ? box->height() : kDefaultHeight;
    width_ = parseLength(root_.attribute("width").value(), {boxWidth, 16}, boxWidth);
    height_ = parseLength(root_.attribute("height").value(), {boxHeight, 16}, boxHeight);
    if (!(width_ > 0 && height_ > 0)) return "drawing has no size";
    return "";
}

pugi::xml_node SvgDocument::find(const std::string& id) const
{
    const auto found = byId_.find(id);
    return found == byId_.end() ? pugi::xml_node() : found->second;
}

pugi::xml_node SvgDocument::target(pugi::xml_node node) const
{
    const std::string href = hrefOf(node);
    return href.size() > 1 && href[0] == '#' ? find(href.substr(1)) : pugi::xml_node();
}

ReferenceChain::ReferenceChain(const SvgDocument& document, pugi::xml_node node)
{
    constexpr size_t kMostReferences = 32; // they may go in a circle
    while (node && elements_.size() < kMostReferences) {
        elements_.push_back(node);
        node = document.target(node);
    }
}

const char* ReferenceChain::operator[](const char* name) const
{
    for (const pugi::xml_node element : elements_) {
        if (const pugi::xml_attribute attribute = element.attribute(name)) return attribute.value();
    }
    return "";
}

std::string hrefOf(pugi::xml_node node)
{
    const pugi::xml_attribute href = node.attribute("href");
    return href ? href.value() : node.attribute("xlink:href").value();
}

std::optional<Box> parseViewBox(const char* text)
{
    const std::vector<double> v = parseNumbers(text);
    if (v.size() != 4 || v[2] <= 0 || v[3] <= 0) return std::nullopt;
    return Box{v[0], v[1], v[0] + v[2], v[1] + v[3]};
}

Affine fitViewBox(const char* preserveAspectRatio, const Box& box, double width, double height)
{
    TextScanner scanner(preserveAspectRatio);
    scanner.skipSpace();
    std::string_view align = scanner.word();
    if (align == "defer") {
        scanner.skipSpace();
        align = scanner.word();
    }
    scanner.skipSpace();
    const bool slice = scanner.word() == "slice";

    double sx = width / box.width();
    double sy = height / box.height();
    if (align != "none") sx = sy = slice ? std::max(sx, sy) : std::min(sx, sy);
    const bool known = align.size() == 8; // xMidYMid and its like
    const double x = alignment(known ? align.substr(1, 3) : "Mid", width - box.width() * sx);
    const double y = alignment(known ? align.substr(5, 3) : "Mid", height - box.height() * sy);
    return {sx, 0, 0, sy, x - box.left * sx, y - box.top * sy};
}
