// SPDX-License-Identifier: MIT
#include "svg/style/StyleSheet.h"

#include "svg/style/Escapes.h"
#include "svg/style/MediaQuery.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace KAVO {
namespace Svg {

namespace {

constexpr size_t kMostSheets = 32; // with those that sheets import
constexpr int kMostBrackets = 8;   // of media rules in media rules

} // namespace

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

namespace {

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

void StyleSheet::add(const std::string& text, const Surroundings& around)
{
    ++sheets_;
    texts_.push_back(withoutComments(text));
    const bool before = std::exchange(mayImport_, true);
    parse(texts_.back(), around, 0);
    mayImport_ = before;
}

void StyleSheet::addFrom(const std::string& reference, const Surroundings& around)
{
    if (sheets_ >= kMostSheets) {
        around.note("more style sheets than the limit");
        return;
    }
    const std::string text = around.import(reference);
    if (text.empty()) around.note("style sheet that cannot be read: " + reference.substr(0, 40));
    add(text, around);
}

bool StyleSheet::isForScreens(std::string_view media, const Surroundings& around)
{
    const MediaMatch match = matchMedia(media);
    if (match == MediaMatch::Unknown)
        around.note("style rules for " + std::string(trimmed(media).substr(0, 40)));
    return match == MediaMatch::Yes;
}

void StyleSheet::parse(std::string_view text, const Surroundings& around, int depth)
{
    for (;;) {
        text = trimmed(text);
        if (text.empty()) return;
        if (text.front() == '@') {
            parseAtRule(text, around, depth);
            continue;
        }
        mayImport_ = false;
        const size_t brace = findOutsideQuotes(text, "{");
        if (brace == text.npos) return;
        const std::string_view selectors = text.substr(0, brace);
        text.remove_prefix(brace);
        const std::string_view body = takeBlock(text);
        if (findOutsideQuotes(body, "{") != body.npos) around.note("style rules inside rules");
        addRule(selectors, body);
    }
}

void StyleSheet::parseAtRule(std::string_view& text, const Surroundings& around, int depth)
{
    const size_t end = findOutsideQuotes(text, ";{");
    const std::string_view head = trimmed(text.substr(0, end));
    const bool hasBlock = end != text.npos && text[end] == '{';
    text.remove_prefix(end == text.npos ? text.size() : hasBlock ? end : end + 1);
    const std::string_view block = hasBlock ? takeBlock(text) : std::string_view();

    const std::string name = lowerCase(head.substr(0, head.find_first_of(" \t\r\n\f(\"'")));
    const std::string_view rest = head.substr(std::min(name.size(), head.size()));
    // Imports come before all other rules.
    const bool mayImport = std::exchange(mayImport_, mayImport_ && !hasBlock);
    if (name == "@media" && depth < kMostBrackets) {
        if (isForScreens(rest, around)) parse(block, around, depth + 1);
    } else if (name == "@import" && mayImport) {
        parseImport(rest, around);
    } else if (hasBlock) {
        for (const std::string_view undrawn :
             {"@container", "@font-face", "@layer", "@scope", "@supports"}) {
            if (name == undrawn) around.note(name);
        }
    }
}

// url(file) or "file", and media.
void StyleSheet::parseImport(std::string_view head, const Surroundings& around)
{
    head = trimmed(head);
    const bool isUrl = head.substr(0, 4) == "url(";
    const size_t end = isUrl ? head.find(')') : head.find_first_of("\"'", 1);
    std::string_view reference = head.substr(0, end);
    if (isUrl) reference.remove_prefix(4);
    const auto isAround = [](char c) { return std::strchr(" \t\r\n\"'", c) != nullptr; };
    while (!reference.empty() && isAround(reference.front()))
        reference.remove_prefix(1);
    while (!reference.empty() && isAround(reference.back()))
        reference.remove_suffix(1);
    const std::string_view media = end == head.npos ? std::string_view() : head.substr(end + 1);
    if (!reference.empty() && isForScreens(media, around)) addFrom(std::string(reference), around);
}

void StyleSheet::addRule(std::string_view selectors, std::string_view body)
{
    const size_t first = declarations_.size();
    if (body.find('\\') != body.npos) body = texts_.emplace_back(unescaped(body));
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
