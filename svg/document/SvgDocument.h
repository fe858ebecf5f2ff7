// SPDX-License-Identifier: MIT
// An SVG document: its elements, found by id, its style sheet, and how large it wants to be.
#pragma once

#include "svg/MMSvgDocument.h"
#include "svg/document/Resources.h"
#include "svg/geometry/Affine.h"
#include "svg/style/Style.h"
#include "svg/style/StyleSheet.h"

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace KAVO {
namespace Svg {

class SvgDocument {
public:
    SvgDocument(const LoadOptions& options, Resources resources)
        : options_(options), resources_(std::move(resources))
    {
    }

    // Returns an empty string, or what is wrong with the document.
    std::string parse(std::string text);

    pugi::xml_node root() const { return root_; }
    size_t nodeCount() const { return nodeCount_; }
    const LoadOptions& options() const { return options_; }
    const Resources& resources() const { return resources_; }
    const StyleSheet& sheet() const { return sheet_; }
    // Whether blend modes occur, so that it matters what is drawn apart from what lies below.
    bool blends() const { return blends_; }
    // Whether context-fill or context-stroke occur, so that boxes of used elements matter.
    bool namesContexts() const { return namesContexts_; }

    // The element with that id, or a null node.
    pugi::xml_node find(std::string_view id) const;
    // The element that the href attribute of this one names, or a null node.
    pugi::xml_node target(pugi::xml_node node) const;

    // Whether its systemLanguage and requiredExtensions let the element be drawn.
    bool meetsConditions(pugi::xml_node node) const;

    // The style that an element has where it stands, whoever refers to it.
    Style styleOf(pugi::xml_node node, const Viewport& viewport) const;

    // Size in user units that the root element asks for.
    Size size() const { return size_; }
    // Whether it says how large it is, or what its coordinates span.
    bool hasExtent() const { return hasExtent_; }
    // What its own coordinates span.
    Box viewBox() const;

    // What loading had to leave out, and the element that asked for it.
    struct Remark {
        std::string what;
        pugi::xml_node node;
    };
    const std::vector<Remark>& remarks() const { return remarks_; }

    uint32_t lineOf(pugi::xml_node node) const; // from 1 on

private:
    std::string readRoot(std::string_view prolog);
    void readSheets(std::string_view prolog);
    void lookForKeywords(const std::string& text);

    LoadOptions options_;
    Resources resources_;
    pugi::xml_document document_;
    pugi::xml_node root_;
    std::unordered_map<std::string_view, pugi::xml_node> byId_;
    std::vector<std::ptrdiff_t> lineEnds_;
    StyleSheet sheet_;
    std::vector<Remark> remarks_;
    size_t nodeCount_ = 0;
    bool blends_ = false;
    bool namesContexts_ = false;
    bool hasExtent_ = false;
    Size size_;
};

} // namespace Svg
} // namespace KAVO
