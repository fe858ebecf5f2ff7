// SPDX-License-Identifier: MIT
#include "svg/document/Entities.h"

#include "svg/values/TextScanner.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <string_view>

namespace KAVO {
namespace Svg {

namespace {

constexpr int kMostNesting = 16; // of entities that hold references to entities

using Entities = std::map<std::string_view, std::string>;

// Where in the text the brackets of the document type declaration stand; nothing when it has none.
struct Subset {
    size_t open;
    size_t close;
};

std::optional<Subset> findSubset(const std::string& text)
{
    const size_t declaration = text.find("<!DOCTYPE");
    if (declaration == text.npos) return std::nullopt;
    const size_t open = text.find('[', declaration);
    const size_t close = text.find(']', open == text.npos ? declaration : open);
    if (open == text.npos || close == text.npos || text.find('>', declaration) < open)
        return std::nullopt;
    return Subset{open, close};
}

// References to ASCII characters count where an entity is declared, so that they may be markup.
std::string withCharacters(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const bool isNumber = text.substr(0, 2) == "&#";
        const bool isHex = text.substr(0, 3) == "&#x";
        const size_t end = isNumber ? text.substr(0, 16).find(';') : text.npos;
        uint32_t code = 0;
        if (end != text.npos)
            std::from_chars(text.data() + (isHex ? 3 : 2), text.data() + end, code,
                            isHex ? 16 : 10);
        const bool isAscii = code > 0 && code < 0x80;
        result += isAscii ? static_cast<char>(code) : text.front();
        text.remove_prefix(isAscii ? end + 1 : 1);
    }
    return result;
}

// Takes the next word, text in quotes or list in parentheses off the front.
std::string_view takeToken(std::string_view& text)
{
    text = trimmed(text);
    if (text.empty()) return {};
    const char first = text.front();
    const bool quoted = first == '"' || first == '\'';
    const size_t end = quoted         ? text.find(first, 1)
                       : first == '(' ? text.find(')')
                                      : text.find_first_of(" \t\r\n>(\"'", 1);
    const size_t length = std::min(text.size(), quoted || first == '(' ? end + 1 : end);
    const std::string_view token = text.substr(0, length == 0 ? text.size() : length);
    text.remove_prefix(token.size());
    return token;
}

// Declarations of the form <!ENTITY name "text">.
Entities readEntities(std::string_view subset)
{
    constexpr std::string_view kDeclaration = "<!ENTITY";
    Entities entities;
    for (size_t at = subset.find(kDeclaration); at != subset.npos;
         at = subset.find(kDeclaration, at + 1)) {
        std::string_view rest = trimmed(subset.substr(at + kDeclaration.size()));
        const size_t end = rest.find_first_of(" \t\r\n");
        if (end == rest.npos) break;
        const std::string_view name = rest.substr(0, end);
        rest = trimmed(rest.substr(end));
        if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) continue; // in a file
        const size_t close = rest.find(rest.front(), 1);
        if (close != rest.npos) entities.emplace(name, withCharacters(rest.substr(1, close - 1)));
    }
    return entities;
}

bool expand(std::string_view text, const Entities& entities, uint64_t mostBytes, int depth,
            std::string& result)
{
    while (!text.empty()) {
        const size_t mark = text.find('&');
        result += text.substr(0, mark);
        if (result.size() > mostBytes) return false;
        if (mark == text.npos) return true;
        text.remove_prefix(mark);
        const size_t end = text.substr(0, 256).find(';');
        const auto found =
            end == text.npos ? entities.end() : entities.find(text.substr(1, end - 1));
        if (found == entities.end()) {
            result += '&';
            text.remove_prefix(1);
            continue;
        }
        if (depth == kMostNesting) return false;
        if (!expand(found->second, entities, mostBytes, depth + 1, result)) return false;
        text.remove_prefix(end + 1);
    }
    return true;
}

} // namespace

bool expandEntities(std::string& text, uint64_t mostBytes)
{
    const std::optional<Subset> subset = findSubset(text);
    if (!subset) return true;
    const std::string_view whole = text;
    const Entities entities =
        readEntities(whole.substr(subset->open, subset->close - subset->open));
    if (entities.empty()) return true;
    std::string result(whole.substr(0, subset->close));
    if (!expand(whole.substr(subset->close), entities, mostBytes, 0, result)) return false;
    text = std::move(result);
    return true;
}

// Declarations of the form <!ATTLIST element (attribute type #IMPLIED | #FIXED "value" |
// "value")*>.
std::vector<AttributeDefault> readAttributeDefaults(const std::string& text)
{
    constexpr std::string_view kDeclaration = "<!ATTLIST";
    std::vector<AttributeDefault> defaults;
    const std::optional<Subset> subset = findSubset(text);
    if (!subset) return defaults;
    const std::string_view all =
        std::string_view(text).substr(subset->open, subset->close - subset->open);
    for (size_t at = all.find(kDeclaration); at != all.npos; at = all.find(kDeclaration, at + 1)) {
        std::string_view rest = all.substr(at + kDeclaration.size());
        const std::string_view element = takeToken(rest);
        for (;;) {
            const std::string_view attribute = takeToken(rest);
            if (attribute.empty() || attribute.front() == '>') break;
            if (takeToken(rest) == "NOTATION") takeToken(rest);
            std::string_view value = takeToken(rest);
            if (value == "#FIXED") value = takeToken(rest);
            if (value.size() < 2 || value.front() == '#') continue;
            defaults.push_back({std::string(element), std::string(attribute),
                                withCharacters(value.substr(1, value.size() - 2))});
        }
    }
    return defaults;
}

} // namespace Svg
} // namespace KAVO
