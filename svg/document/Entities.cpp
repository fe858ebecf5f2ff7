// SPDX-License-Identifier: MIT
#include "svg/document/Entities.h"

#include "svg/values/TextScanner.h"

#include <map>
#include <string_view>

namespace KAVO {
namespace Svg {

namespace {

constexpr int kMostNesting = 16; // of entities that hold references to entities

using Entities = std::map<std::string_view, std::string_view>;

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
        if (close != rest.npos) entities.emplace(name, rest.substr(1, close - 1));
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
    const size_t declaration = text.find("<!DOCTYPE");
    if (declaration == text.npos) return true;
    const size_t open = text.find('[', declaration);
    const size_t close = text.find("]", open == text.npos ? declaration : open);
    if (open == text.npos || close == text.npos || text.find('>', declaration) < open) return true;
    const std::string_view whole = text;
    const Entities entities = readEntities(whole.substr(open, close - open));
    if (entities.empty()) return true;
    std::string result(whole.substr(0, close));
    if (!expand(whole.substr(close), entities, mostBytes, 0, result)) return false;
    text = std::move(result);
    return true;
}

} // namespace Svg
} // namespace KAVO
