// SPDX-License-Identifier: MIT
// Reads the little languages inside SVG attributes: numbers, words and separators.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace KAVO {
namespace Svg {

class TextScanner {
public:
    explicit TextScanner(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    std::string_view rest() const { return rest_; }

    void skip(size_t count) { rest_.remove_prefix(count); }
    void skipSpace();
    void skipSeparator(); // white space with at most one comma in it

    // Each consumes what it found, and nothing when it returns false.
    bool character(char c);
    bool number(double& value); // sign, digits, fraction, exponent; at most 1e30
    bool flag(bool& value);     // a single 0 or 1
    std::string_view letters(); // may be empty
    std::string_view word();    // letters, digits, '-', '_'; may be empty

private:
    std::string_view rest_;
};

std::string_view trimmed(std::string_view text);

// Numbers between separators, up to the first thing that is none; read gets its place.
std::vector<double> parseNumbers(std::string_view text, size_t* read = nullptr);

// Where the wanted character stands first outside of quotes and of brackets that the text
// opens, or npos. A backslash takes the meaning from the next character.
size_t findOutside(std::string_view text, char wanted);

// Of ASCII letters alone.
std::string lowerCase(std::string_view text);

// For keywords and units.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

// Calls function for each word of a list separated by white space.
template <class Function>
void forWords(std::string_view list, Function function)
{
    constexpr std::string_view kSpace = " \t\r\n\f";
    for (size_t i = list.find_first_not_of(kSpace); i != list.npos;) {
        const size_t end = list.find_first_of(kSpace, i);
        function(list.substr(i, end - i));
        i = end == list.npos ? end : list.find_first_not_of(kSpace, end);
    }
}

} // namespace Svg
} // namespace KAVO
