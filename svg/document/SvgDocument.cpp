// SPDX-License-Identifier: MIT
#include "svg/document/SvgDocument.h"

#include "svg/document/Entities.h"
#include "svg/document/Namespaces.h"
#include "svg/document/References.h"
#include "svg/geometry/ViewBox.h"
#include "svg/style/Escapes.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Svg {

namespace {

// Of a drawing that says nothing about its size.
constexpr double kDefaultWidth = 300;
constexpr double kDefaultHeight = 150;

// White space matters between the words of a text.
constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_ws_pcdata;

bool isCss(pugi::xml_node style)
{
    const std::string_view type = trimmed(style.attribute("type").value());
    return type.empty() || equalsIgnoringCase(trimmed(type.substr(0, type.find(';'))), "text/css");
}

// Calls function with reference and media of each style sheet that a processing instruction names.
template <class Function>
void forStyleSheets(std::string_view prolog, Function function)
{
    constexpr std::string_view kInstruction = "<?xml-stylesheet";
    for (size_t at = prolog.find(kInstruction); at != prolog.npos;
         at = prolog.find(kInstruction, at)) {
        at += kInstruction.size();
        const std::string_view inside = prolog.substr(at, prolog.find("?>", at) - at);
        // It looks like an element's attributes.
        pugi::xml_document instruction;
        const std::string element = "<x " + std::string(inside) + "/>";
        if (!instruction.load_buffer(element.data(), element.size())) continue;
        const pugi::xml_node node = instruction.document_element();
        const std::string reference = node.attribute("href").value();
        if (isCss(node) && !reference.empty() && reference[0] != '#')
            function(reference, node.attribute("media").value());
    }
}

void setDefaults(const std::vector<AttributeDefault>& defaults, pugi::xml_document& document)
{
    struct Setter : pugi::xml_tree_walker {
        const std::vector<AttributeDefault>& defaults;
        explicit Setter(const std::vector<AttributeDefault>& list) : defaults(list) {}
        bool for_each(pugi::xml_node& node) override
        {
            for (const AttributeDefault& d : defaults) {
                if (d.element == node.name() && !node.attribute(d.attribute.c_str()))
                    node.append_attribute(d.attribute.c_str()) = d.value.c_str();
            }
            return true;
        }
    };
    if (defaults.empty()) return;
    Setter setter(defaults);
    document.traverse(setter);
}

// One of the wanted languages is, or is the beginning of, one of the list.
bool listsLanguage(std::string_view list, const std::vector<std::string>& wanted)
{
    while (!list.empty()) {
        const size_t comma = list.find(',');
        const std::string_view language = trimmed(list.substr(0, comma));
        for (const std::string& want : wanted) {
            if (equalsIgnoringCase(language.substr(0, want.size()), want) &&
                (language.size() == want.size() || language[want.size()] == '-'))
                return true;
        }
        list = comma == list.npos ? std::string_view() : list.substr(comma + 1);
    }
    return false;
}

} // namespace

std::string SvgDocument::parse(std::string text)
{
    if (text.size() > options_.limits.documentBytes) return "is too large";
    if (!decompress(text, options_.limits.documentBytes)) return "is damaged or too large";
    if (!expandEntities(text, options_.limits.documentBytes)) return "has entities without end";
    for (size_t at = text.find('\n'); at != text.npos; at = text.find('\n', at + 1))
        lineEnds_.push_back(static_cast<std::ptrdiff_t>(at));
    const pugi::xml_parse_result result =
        document_.load_buffer(text.data(), text.size(), kParseFlags);
    if (!result) return result.description();
    setDefaults(readAttributeDefaults(text), document_);
    lookForKeywords(text);
    const auto rootAt = static_cast<size_t>(document_.document_element().offset_debug());
    return readRoot(std::string_view(text).substr(0, rootAt));
}

void SvgDocument::lookForKeywords(const std::string& text)
{
    blends_ = blends_ || text.find("mix-blend-mode") != text.npos;
    namesContexts_ = namesContexts_ || text.find("context-") != text.npos;
}

std::string SvgDocument::readRoot(std::string_view prolog)
{
    root_ = document_.document_element();
    resolveNamespaces(root_);
    if (root_.name() != std::string_view("svg")) return "not an SVG drawing";

    struct IdCollector : pugi::xml_tree_walker {
        std::unordered_map<std::string_view, pugi::xml_node>& byId;
        size_t count = 0;
        explicit IdCollector(std::unordered_map<std::string_view, pugi::xml_node>& map) : byId(map)
        {
        }
        bool for_each(pugi::xml_node& node) override
        {
            ++count;
            if (const pugi::xml_attribute id = node.attribute("id")) byId.emplace(id.value(), node);
            pugi::xml_attribute style = node.attribute("style");
            if (std::strstr(style.value(), "/*"))
                style.set_value(withoutComments(style.value()).c_str());
            if (std::strchr(style.value(), '\\')) style.set_value(unescaped(style.value()).c_str());
            return true;
        }
    };
    IdCollector collector(byId_);
    document_.traverse(collector);
    nodeCount_ = collector.count;
    readSheets(prolog);

    // A side that is not given follows from the view box, and from the other side by its
    // proportions.
    const std::optional<Box> box = parseViewBox(root_.attribute("viewBox").value());
    Viewport viewport;
    viewport.width = box ? box->width() : kDefaultWidth;
    viewport.height = box ? box->height() : kDefaultHeight;
    viewport.windowWidth = viewport.width;
    viewport.windowHeight = viewport.height;
    const LengthContext lengths{viewport};
    const Properties properties(root_, sheet_);
    const std::string_view widthText = properties[Property::Width];
    const std::string_view heightText = properties[Property::Height];
    const std::optional<double> width = findSize(widthText, lengths, Axis::X);
    const std::optional<double> height = findSize(heightText, lengths, Axis::Y);
    size_.width = width.value_or(viewport.width);
    size_.height = height.value_or(viewport.height);
    const auto isShare = [](std::string_view text) { return !text.empty() && text.back() == '%'; };
    hasExtent_ = box || (width && !isShare(widthText)) || (height && !isShare(heightText));
    if (box && width && !height && !isShare(widthText))
        size_.height = size_.width * box->height() / box->width();
    if (box && height && !width && !isShare(heightText))
        size_.width = size_.height * box->width() / box->height();
    if (!(size_.width > 0 && size_.height > 0)) return "drawing has no size";
    return "";
}

// The sheets that the text before the root names, and those of style elements.
void SvgDocument::readSheets(std::string_view prolog)
{
    pugi::xml_node current = root_;
    const StyleSheet::Surroundings around{[this](const std::string& reference) {
                                              std::string text;
                                              resources_.read(reference, text);
                                              lookForKeywords(text);
                                              return text;
                                          },
                                          [&](const std::string& what) {
                                              remarks_.push_back({what, current});
                                          }};
    forStyleSheets(prolog, [&](const std::string& reference, std::string_view media) {
        if (StyleSheet::isForScreens(media, around)) sheet_.addFrom(reference, around);
    });

    struct StyleCollector : pugi::xml_tree_walker {
        std::vector<pugi::xml_node> styles;
        bool for_each(pugi::xml_node& node) override
        {
            if (node.name() == std::string_view("style") && isCss(node)) styles.push_back(node);
            return true;
        }
    };
    StyleCollector collector;
    document_.traverse(collector);
    for (const pugi::xml_node style : collector.styles) {
        current = style;
        if (!StyleSheet::isForScreens(style.attribute("media").value(), around)) continue;
        std::string text;
        for (const pugi::xml_node child : style.children())
            text += child.value();
        sheet_.add(text, around);
    }
}

Box SvgDocument::viewBox() const
{
    const Box whole{0, 0, size_.width, size_.height};
    return parseViewBox(root_.attribute("viewBox").value()).value_or(whole);
}

pugi::xml_node SvgDocument::find(std::string_view id) const
{
    const auto found = byId_.find(id);
    return found == byId_.end() ? pugi::xml_node() : found->second;
}

pugi::xml_node SvgDocument::target(pugi::xml_node node) const
{
    const std::string_view href = trimmed(hrefOf(node));
    return href.size() > 1 && href[0] == '#' ? find(href.substr(1)) : pugi::xml_node();
}

bool SvgDocument::meetsConditions(pugi::xml_node node) const
{
    if (const pugi::xml_attribute languages = node.attribute("systemLanguage")) {
        if (!listsLanguage(languages.value(), options_.languages)) return false;
    }
    return !node.attribute("requiredExtensions");
}

Style SvgDocument::styleOf(pugi::xml_node node, const Viewport& viewport) const
{
    std::vector<pugi::xml_node> path;
    for (; node && node.type() == pugi::node_element; node = node.parent())
        path.push_back(node);
    Style style;
    while (!path.empty()) {
        style = style.child(Properties(path.back(), sheet_), viewport);
        path.pop_back();
    }
    return style;
}

uint32_t SvgDocument::lineOf(pugi::xml_node node) const
{
    const auto found = std::lower_bound(lineEnds_.begin(), lineEnds_.end(), node.offset_debug());
    return static_cast<uint32_t>(found - lineEnds_.begin()) + 1;
}

} // namespace Svg
} // namespace KAVO
