// SPDX-License-Identifier: MIT
// Characters that style sheets write as a backslash and what follows it.
#pragma once

#include <string>
#include <string_view>

namespace KAVO {
namespace Svg {

// Whether names are made of such characters.
bool isNameCharacter(char c);

// Takes off what follows a backslash, of which there is some: a code point in up to six hexadecimal
// digits with a space after it, or a character as it is. Appends the character to name.
void takeEscape(std::string_view& text, std::string& name);

// Declarations with the characters that escapes stand for, but for those that would part or end
// something if they were written as they are.
std::string unescaped(std::string_view declarations);

} // namespace Svg
} // namespace KAVO
