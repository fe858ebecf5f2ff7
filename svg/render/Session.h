// SPDX-License-Identifier: MIT
// What all renderers of one drawing share: what is left of its limits, and what was met on the way.
#pragma once

#include "svg/MMSvgDocument.h"
#include "svg/document/SvgDocument.h"
#include "svg/text/GlyphOutlines.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace KAVO {
namespace Svg {

// Shortcomings, each kept once with the element that showed it first.
class Report {
public:
    void note(const std::string& what, const SvgDocument& document, pugi::xml_node node)
    {
        const auto [place, isNew] = places_.emplace(what, list_.size());
        if (isNew) list_.push_back({what, node.name(), document.lineOf(node)});
    }
    const std::vector<Shortcoming>& list() const { return list_; }

private:
    std::map<std::string, size_t> places_;
    std::vector<Shortcoming> list_;
};

struct Session {
    explicit Session(const SvgDocument& document)
        : limits(document.options().limits),
          elementsLeft(document.nodeCount() + limits.usedElements),
          imagePixelsLeft(limits.imagePixels)
    {
    }

    const Limits& limits;
    uint64_t elementsLeft; // that may still be drawn
    uint64_t imagePixelsLeft;
    double glyphPixels = 0;           // of large glyphs
    double tilePixels = 0;            // of pictures of patterns inside patterns
    double filterWork = 0;            // pixels of all filter primitives
    std::set<uint16_t> charactersMet; // looked up in the font
    GlyphOutlines glyphs;
    Box bounds; // of everything drawn, in pixels

    // While an element is looked for nothing is drawn: what covered the point last.
    bool pick = false;
    pugi::xml_node picked;
};

} // namespace Svg
} // namespace KAVO
