// SPDX-License-Identifier: MIT
// Reads the little languages inside SVG attributes: numbers, words and separators.
#pragma once

#include <string_view>
#include <vector>

class TextScanner {
public:
    explicit TextScanner(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    std::string_view rest() const { return rest_; }

    void skipSpace();
    void skipSeparator(); // white space with at most one comma in it

    // Each consumes what it found, and nothing when it returns false.
    bool character(char c);
    bool number(double& value); // sign, digits, fraction, exponent; kept within a billion
    bool flag(bool& value);     // a single 0 or 1
    std::string_view word();    // letters, digits, '-', '_'; may be empty

private:
    std::string_view rest_;
};

std::string_view trimmed(std::string_view text);

// Numbers between separators, up to the first thing that is none.
std::vector<double> parseNumbers(std::string_view text);

// What a length's units refer to.
struct LengthContext {
    double percentBase = 0; // length of 100 %
    double fontSize = 16;
};

// A number with an optional unit, in user units; fallback when the text is none.
double parseLength(std::string_view text, const LengthContext& context, double fallback);
