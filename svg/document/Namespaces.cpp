// SPDX-License-Identifier: MIT
#include "svg/document/Namespaces.h"

#include <string>
#include <string_view>
#include <vector>

namespace KAVO {
namespace Svg {

namespace {

constexpr std::string_view kSvg = "http://www.w3.org/2000/svg";
constexpr std::string_view kXhtml = "http://www.w3.org/1999/xhtml";
constexpr std::string_view kXlink = "http://www.w3.org/1999/xlink";
constexpr std::string_view kDeclaration = "xmlns";

// What a prefix stands for from an element on.
struct Binding {
    int depth;
    std::string_view prefix; // "" for names without one
    std::string_view name;
};

class Resolver : public pugi::xml_tree_walker {
public:
    // Names without a prefix are of SVG where nothing else is said, unless the root has one.
    explicit Resolver(std::string_view rootName)
        : bindings_{{0, "", rootName.find(':') == rootName.npos ? kSvg : ""},
                    {0, "svg", kSvg},
                    {0, "xlink", kXlink}}
    {
    }
    bool for_each(pugi::xml_node& node) override
    {
        if (node.type() != pugi::node_element) return true;
        resolve(node, depth() + 2); // the root is at 1, and its children are at 0 here
        return true;
    }
    void resolve(pugi::xml_node node, int depth);

private:
    std::string_view nameOf(std::string_view prefix) const;

    std::vector<Binding> bindings_;
};

std::string_view Resolver::nameOf(std::string_view prefix) const
{
    for (size_t i = bindings_.size(); i-- > 0;) {
        if (bindings_[i].prefix == prefix) return bindings_[i].name;
    }
    return {};
}

void Resolver::resolve(pugi::xml_node node, int depth)
{
    while (bindings_.back().depth >= depth && depth > 0)
        bindings_.pop_back();
    for (const pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view name = attribute.name();
        if (name.substr(0, kDeclaration.size()) != kDeclaration) continue;
        if (name.size() == kDeclaration.size())
            bindings_.push_back({depth, "", attribute.value()});
        else if (name[kDeclaration.size()] == ':')
            bindings_.push_back({depth, name.substr(kDeclaration.size() + 1), attribute.value()});
    }

    const std::string_view name = node.name();
    const size_t colon = name.find(':');
    const std::string_view ofName = nameOf(colon == name.npos ? "" : name.substr(0, colon));
    const std::string_view local = name.substr(colon + 1); // the whole of it without a colon
    // Style sheets of XHTML count like those of SVG.
    const bool isSvg = ofName == kSvg || (ofName == kXhtml && local == "style");
    if (isSvg && colon != name.npos)
        node.set_name(std::string(local).c_str());
    else if (!isSvg && colon == name.npos)
        node.set_name((":" + std::string(name)).c_str());

    for (pugi::xml_attribute attribute : node.attributes()) {
        const std::string_view full = attribute.name();
        const size_t split = full.find(':');
        if (split == full.npos || full.substr(split) != ":href") continue;
        const std::string_view prefix = full.substr(0, split);
        if (prefix != "xlink" && nameOf(prefix) == kXlink) attribute.set_name("xlink:href");
    }
}

} // namespace

void resolveNamespaces(pugi::xml_node root)
{
    Resolver resolver(root.name());
    resolver.resolve(root, 1);
    root.traverse(resolver);
}

} // namespace Svg
} // namespace KAVO
