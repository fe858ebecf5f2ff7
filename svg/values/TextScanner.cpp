// SPDX-License-Identifier: MIT
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <charconv>

namespace KAVO {
namespace Svg {

namespace {

constexpr double kLargestNumber = 1e30; // products of several stay finite

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace

void TextScanner::skipSpace()
{
    while (!rest_.empty() && isSpace(rest_.front()))
        rest_.remove_prefix(1);
}

void TextScanner::skipSeparator()
{
    skipSpace();
    if (character(',')) skipSpace();
}

bool TextScanner::character(char c)
{
    if (peek() != c || rest_.empty()) return false;
    rest_.remove_prefix(1);
    return true;
}

bool TextScanner::number(double& value)
{
    // from_chars knows no plus sign, and would take "inf" and "nan" for numbers.
    std::string_view text = rest_;
    const bool negative = !text.empty() && text.front() == '-';
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
    const bool startsWithDigit = !text.empty() && isDigit(text[0]);
    const bool startsWithPoint = text.size() > 1 && text[0] == '.' && isDigit(text[1]);
    if (!startsWithDigit && !startsWithPoint) return false;

    double magnitude = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (result.ec == std::errc::result_out_of_range) {
        // Too large or too small for a double; an exponent tells which.
        const std::string_view literal(text.data(), static_cast<size_t>(result.ptr - text.data()));
        const bool tiny = literal.find("e-") != literal.npos || literal.find("E-") != literal.npos;
        magnitude = tiny ? 0 : kLargestNumber;
    }
    magnitude = std::min(magnitude, kLargestNumber);
    value = negative ? -magnitude : magnitude;
    rest_ = text.substr(static_cast<size_t>(result.ptr - text.data()));
    return true;
}

bool TextScanner::flag(bool& value)
{
    if (peek() != '0' && peek() != '1') return false;
    value = peek() == '1';
    rest_.remove_prefix(1);
    return true;
}

std::string_view TextScanner::letters()
{
    size_t length = 0;
    while (length < rest_.size() && isLetter(rest_[length]))
        ++length;
    const std::string_view result = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return result;
}

std::string_view TextScanner::word()
{
    size_t length = 0;
    while (length < rest_.size() && (isLetter(rest_[length]) || isDigit(rest_[length]) ||
                                     rest_[length] == '-' || rest_[length] == '_'))
        ++length;
    const std::string_view result = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return result;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::vector<double> parseNumbers(std::string_view text, size_t* read)
{
    std::vector<double> values;
    TextScanner scanner(text);
    scanner.skipSpace();
    double value = 0;
    while (scanner.number(value)) {
        values.push_back(value);
        scanner.skipSeparator();
    }
    if (read) *read = text.size() - scanner.rest().size();
    return values;
}

size_t findOutside(std::string_view text, char wanted)
{
    char quote = 0;
    int brackets = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\') {
            ++i;
        } else if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == wanted && brackets <= 0) {
            return i;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(' || c == '[') {
            ++brackets;
        } else if (c == ')' || c == ']') {
            --brackets;
        }
    }
    return text.npos;
}

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

} // namespace Svg
} // namespace KAVO
