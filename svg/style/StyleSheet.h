// SPDX-License-Identifier: MIT
// Style sheets: rules of selectors and declarations.
#pragma once

#include "svg/style/Properties.h"
#include "svg/style/Selector.h"

#include <deque>
#include <functional>
#include <string>
#include <unordered_map>

namespace KAVO {
namespace Svg {

// The text with a space in place of each of its comments.
std::string withoutComments(const std::string& text);

class StyleSheet {
public:
    struct Surroundings {
        // Finds the text of another sheet; empty when it cannot be had.
        std::function<std::string(const std::string& reference)> import;
        // Hears what is left out that should have counted, or might have.
        std::function<void(const std::string& what)> note;
    };

    // Appends the rules of a text. Rules that are not understood are passed over, as the
    // standard wants it; of the rules for certain media those for all and for screens count.
    void add(const std::string& text, const Surroundings& around);

    // Those of another sheet.
    void addFrom(const std::string& reference, const Surroundings& around);

    // A list of media takes in a screen. Notes what it cannot tell.
    static bool isForScreens(std::string_view media, const Surroundings& around);

    bool empty() const { return rules_.empty(); }

    // Appends the declarations that apply to the element, the most specific ones last. All elements
    // are of one tree, which does not change.
    void match(pugi::xml_node node, std::vector<Declaration>& declarations) const;

private:
    struct Rule {
        Selector selector;
        size_t first; // of its declarations
        size_t last;
    };
    void parse(std::string_view text, const Surroundings& around, int depth);
    void parseAtRule(std::string_view& text, const Surroundings& around, int depth);
    void parseImport(std::string_view head, const Surroundings& around);
    void addRule(std::string_view selectors, std::string_view body);

    std::deque<std::string> texts_; // that the declarations point into
    std::vector<Declaration> declarations_;
    std::vector<Rule> rules_;
    // Rules by the id, class or element name that their last part asks for: "#id", ".class",
    // "name", or "" for all others.
    std::unordered_map<std::string, std::vector<size_t>> byKey_;
    size_t sheets_ = 0;         // that were added
    bool mayImport_ = false;    // no rule has come yet in the text that is being read
    mutable Siblings siblings_; // what matching has counted so far
};

} // namespace Svg
} // namespace KAVO
