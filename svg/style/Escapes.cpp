// SPDX-License-Identifier: MIT
#include "svg/style/Escapes.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>

namespace KAVO {
namespace Svg {

namespace {

void appendUtf8(uint32_t code, std::string& text)
{
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = 0xFFFD;
    const auto append = [&](uint32_t byte) { text += static_cast<char>(byte); };
    if (code < 0x80) {
        append(code);
        return;
    }
    const int more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3; // bytes of six bits each
    append((0xF00u >> more & 0xFF) | code >> (6 * more));
    for (int left = more - 1; left >= 0; --left)
        append(0x80 | (code >> (6 * left) & 0x3F));
}

} // namespace

bool isNameCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
}

void takeEscape(std::string_view& text, std::string& name)
{
    uint32_t code = 0;
    const char* end = text.data() + std::min<size_t>(text.size(), 6);
    const char* digits = std::from_chars(text.data(), end, code, 16).ptr;
    const auto count = static_cast<size_t>(digits - text.data());
    if (count == 0) {
        name += text.front();
        text.remove_prefix(1);
        return;
    }
    text.remove_prefix(count);
    if (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    appendUtf8(code, name);
}

std::string unescaped(std::string_view declarations)
{
    constexpr std::string_view kPlain = "#.+*~&$%^=?@|<>"; // in references
    std::string result;
    while (!declarations.empty()) {
        const char c = declarations.front();
        declarations.remove_prefix(1);
        if (c != '\\' || declarations.empty()) {
            result += c;
            continue;
        }
        const std::string_view before = declarations;
        std::string character;
        takeEscape(declarations, character);
        const bool isPlain =
            isNameCharacter(character.front()) || kPlain.find(character.front()) != kPlain.npos;
        if (!isPlain)
            character = '\\' + std::string(before.substr(0, before.size() - declarations.size()));
        result += character;
    }
    return result;
}

} // namespace Svg
} // namespace KAVO
