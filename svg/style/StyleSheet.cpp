// SPDX-License-Identifier: MIT
#include "svg/style/StyleSheet.h"

#include "svg/values/TextScanner.h"

#include <algorithm>

namespace KAVO {
namespace Svg {

namespace {

constexpr int kMostImports = 8;  // of sheets that import sheets
constexpr int kMostBrackets = 8; // of media rules in media rules

std::string withoutComments(const std::string& text)
{
    std::string result;
    for (size_t i = 0; i < text.size();) {
        if (text.compare(i, 2, "/*") == 0) {
            const size_t end = text.find("*/", i + 2);
            i = end == text.npos ? text.size() : end + 2;
            result += ' ';
        } else if (text.compare(i, 4, "<!--") == 0) {
            i += 4;
        } else if (text.compare(i, 3, "-->") == 0) {
            i += 3;
        } else {
            result += text[i++];
        }
    }
    return result;
}

// The first of the characters outside of quotes.
size_t findOutsideQuotes(std::string_view text, std::string_view wanted)
{
    char quote = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (wanted.find(c) != wanted.npos) {
            return i;
        } else if (c == '"' || c == '\'') {
            quote = c;
        }
    }
    return text.npos;
}

// Takes a block in braces off the front and gives what is inside.
std::string_view takeBlock(std::string_view& text)
{
    size_t depth = 0;
    for (size_t i = 0; i < text.size();) {
        const size_t found = findOutsideQuotes(text.substr(i), "{}");
        if (found == text.npos) break;
        i += found;
        depth = text[i] == '{' ? depth + 1 : depth - 1;
        if (depth == 0) {
            const std::string_view inside = text.substr(1, i - 1);
            text.remove_prefix(i + 1);
            return inside;
        }
        ++i;
    }
    const std::string_view inside = text.substr(std::min<size_t>(1, text.size()));
    text = {};
    return inside;
}

} // namespace

void StyleSheet::add(std::string text, const Import& import)
{
    texts_.push_back(withoutComments(text));
    parse(texts_.back(), import, 0);
}

void StyleSheet::parse(std::string_view text, const Import& import, int depth)
{
    for (;;) {
        text = trimmed(text);
        if (text.empty()) return;
        if (text.front() == '@') {
            parseAtRule(text, import, depth);
            continue;
        }
        const size_t brace = findOutsideQuotes(text, "{");
        if (brace == text.npos) return;
        const std::string_view selectors = text.substr(0, brace);
        text.remove_prefix(brace);
        addRule(selectors, takeBlock(text));
    }
}

void StyleSheet::parseAtRule(std::string_view& text, const Import& import, int depth)
{
    const size_t end = findOutsideQuotes(text, ";{");
    const std::string_view head = trimmed(text.substr(0, end));
    const bool hasBlock = end != text.npos && text[end] == '{';
    text.remove_prefix(end == text.npos ? text.size() : hasBlock ? end : end + 1);
    const std::string_view block = hasBlock ? takeBlock(text) : std::string_view();

    if (head.substr(0, 6) == "@media" && depth < kMostBrackets) {
        const std::string_view media = trimmed(head.substr(6));
        if (media.find("screen") != media.npos || media.find("all") != media.npos)
            parse(block, import, depth + 1);
    } else if (head.substr(0, 7) == "@import" && texts_.size() < kMostImports) {
        std::string_view reference = trimmed(head.substr(7));
        if (reference.substr(0, 4) == "url(") reference = reference.substr(4);
        const size_t from = reference.find_first_not_of(" \t\"'");
        const size_t to = reference.find_first_of("\"')", from);
        if (from == reference.npos) return;
        std::string imported = import(std::string(reference.substr(from, to - from)));
        texts_.push_back(withoutComments(imported));
        parse(texts_.back(), import, depth);
    }
}

void StyleSheet::addRule(std::string_view selectors, std::string_view body)
{
    const size_t first = declarations_.size();
    parseDeclarations(body, declarations_);
    const size_t last = declarations_.size();
    // One selector that is wrong makes the whole rule wrong.
    const std::optional<std::vector<Selector>> list = Selector::parseList(selectors);
    if (!list) return;
    for (const Selector& selector : *list) {
        byKey_[selector.key()].push_back(rules_.size());
        rules_.push_back({selector, first, last});
    }
}

void StyleSheet::match(pugi::xml_node node, std::vector<Declaration>& declarations) const
{
    std::vector<size_t> matching;
    const auto collect = [&](const std::string& key) {
        const auto found = byKey_.find(key);
        if (found == byKey_.end()) return;
        for (const size_t rule : found->second) {
            if (rules_[rule].selector.matches(node, siblings_)) matching.push_back(rule);
        }
    };
    collect("");
    collect(node.name());
    if (const pugi::xml_attribute id = node.attribute("id")) collect(std::string("#") + id.value());
    forWords(node.attribute("class").value(),
             [&](std::string_view word) { collect("." + std::string(word)); });
    std::sort(matching.begin(), matching.end(), [&](size_t a, size_t b) {
        const uint32_t first = rules_[a].selector.specificity();
        const uint32_t second = rules_[b].selector.specificity();
        return first != second ? first < second : a < b;
    });
    matching.erase(std::unique(matching.begin(), matching.end()), matching.end());
    for (const size_t rule : matching)
        declarations.insert(declarations.end(),
                            declarations_.begin() + static_cast<std::ptrdiff_t>(rules_[rule].first),
                            declarations_.begin() + static_cast<std::ptrdiff_t>(rules_[rule].last));
}

} // namespace Svg
} // namespace KAVO
