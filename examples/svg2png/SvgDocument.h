// SPDX-License-Identifier: MIT
// An SVG file: its elements, found by id, and how it is laid into a picture.
#pragma once

#include "svg2png/Affine.h"

#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class SvgDocument {
public:
    // Returns an empty string, or what is wrong with the file.
    std::string load(const std::string& fileName);
    // The same for a text; files that it refers to are looked for in the working directory.
    std::string parse(std::string_view text);

    pugi::xml_node root() const { return root_; }
    size_t nodeCount() const { return nodeCount_; }
    const std::string& directory() const { return directory_; } // of the file, "" or with a '/'

    // The element with that id, or a null node.
    pugi::xml_node find(const std::string& id) const;
    // The element that the href attribute of this one names, or a null node.
    pugi::xml_node target(pugi::xml_node node) const;

    // Size in user units that the root element asks for.
    double width() const { return width_; }
    double height() const { return height_; }

private:
    std::string readRoot(const pugi::xml_parse_result& result);

    pugi::xml_document document_;
    pugi::xml_node root_;
    std::unordered_map<std::string, pugi::xml_node> byId_;
    size_t nodeCount_ = 0;
    std::string directory_;
    double width_ = 0;
    double height_ = 0;
};

// A gradient or pattern with those that it refers to, from which it takes what it lacks.
class ReferenceChain {
public:
    ReferenceChain(const SvgDocument& document, pugi::xml_node node);

    const std::vector<pugi::xml_node>& elements() const { return elements_; } // nearest first

    // The nearest value of an attribute, "" when none of them has it.
    const char* operator[](const char* name) const;

private:
    std::vector<pugi::xml_node> elements_;
};

// Value of href or xlink:href, "" when there is none.
std::string hrefOf(pugi::xml_node node);

// A viewBox attribute; nothing when it is empty or malformed.
std::optional<Box> parseViewBox(const char* text);

// Maps the box into a viewport of the given size at the origin by a preserveAspectRatio attribute.
Affine fitViewBox(const char* preserveAspectRatio, const Box& box, double width, double height);
