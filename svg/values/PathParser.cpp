// SPDX-License-Identifier: MIT
#include "svg/values/PathParser.h"

#include "svg/values/TextScanner.h"

#include <cctype>

namespace KAVO {
namespace Svg {

namespace {

class PathParser {
public:
    PathParser(std::string_view text, Outline& outline)
        : text_(text), scanner_(text), outline_(outline)
    {
    }

    bool parse();

private:
    bool endsWithComma() const; // what has been read
    bool parseSegment();
    bool parseArc();
    bool numbers(double* values, int count);
    bool points(Point* values, int count); // absolute, also for a relative command
    Point reflected(Point control) const { return outline_.current() * 2 - control; }

    std::string_view text_;
    TextScanner scanner_;
    Outline& outline_;
    char command_ = 'M'; // upper case
    bool relative_ = false;
    char previous_ = '\0'; // command of the segment before
    Point control_;        // last control point of that segment, if it is a curve
};

bool PathParser::endsWithComma() const
{
    const std::string_view read = text_.substr(0, text_.size() - scanner_.rest().size());
    const size_t last = read.find_last_not_of(" \t\r\n\f");
    return last != read.npos && read[last] == ',';
}

bool PathParser::numbers(double* values, int count)
{
    for (int i = 0; i < count; ++i) {
        if (!scanner_.number(values[i])) return false;
        scanner_.skipSeparator();
    }
    return true;
}

bool PathParser::points(Point* values, int count)
{
    for (int i = 0; i < count; ++i) {
        double xy[2];
        if (!numbers(xy, 2)) return false;
        values[i] = relative_ ? outline_.current() + Point{xy[0], xy[1]} : Point{xy[0], xy[1]};
    }
    return true;
}

bool PathParser::parseArc()
{
    double radii[3]; // and the rotation
    bool large = false;
    bool increasing = false;
    Point end;
    if (!numbers(radii, 3) || !scanner_.flag(large)) return false;
    scanner_.skipSeparator();
    if (!scanner_.flag(increasing)) return false;
    scanner_.skipSeparator();
    if (!points(&end, 1)) return false;
    outline_.arcTo(radii[0], radii[1], radii[2], large, increasing, end);
    return true;
}

// One set of arguments of the current command.
bool PathParser::parseSegment()
{
    const Point current = outline_.current();
    Point p[3];
    double value = 0;
    switch (command_) {
    case 'M':
        if (!points(p, 1)) return false;
        outline_.moveTo(p[0]);
        command_ = 'L'; // further pairs are lines
        previous_ = 'M';
        return true;
    case 'L':
        if (!points(p, 1)) return false;
        outline_.lineTo(p[0]);
        break;
    case 'H':
        if (!numbers(&value, 1)) return false;
        outline_.lineTo({relative_ ? current.x + value : value, current.y});
        break;
    case 'V':
        if (!numbers(&value, 1)) return false;
        outline_.lineTo({current.x, relative_ ? current.y + value : value});
        break;
    case 'C':
        if (!points(p, 3)) return false;
        outline_.curveTo(p[0], p[1], p[2]);
        control_ = p[1];
        break;
    case 'S':
        p[0] = previous_ == 'C' || previous_ == 'S' ? reflected(control_) : current;
        if (!points(p + 1, 2)) return false;
        outline_.curveTo(p[0], p[1], p[2]);
        control_ = p[1];
        break;
    case 'Q':
        if (!points(p, 2)) return false;
        outline_.quadraticTo(p[0], p[1]);
        control_ = p[0];
        break;
    case 'T':
        p[0] = previous_ == 'Q' || previous_ == 'T' ? reflected(control_) : current;
        if (!points(p + 1, 1)) return false;
        outline_.quadraticTo(p[0], p[1]);
        control_ = p[0];
        break;
    case 'A':
        if (!parseArc()) return false;
        break;
    default:
        return false;
    }
    previous_ = command_;
    return true;
}

bool PathParser::parse()
{
    bool first = true;
    for (;;) {
        scanner_.skipSpace();
        if (scanner_.atEnd()) return true;
        const char letter = scanner_.peek();
        scanner_.character(letter);
        command_ = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
        relative_ = letter != command_;
        if (first && command_ != 'M') return false;
        first = false;
        scanner_.skipSpace();
        if (command_ == 'Z') {
            outline_.close();
            previous_ = 'Z';
            continue;
        }
        do {
            if (!parseSegment()) return false;
        } while (!scanner_.atEnd() && !std::isalpha(static_cast<unsigned char>(scanner_.peek())));
        if (endsWithComma()) return false;
    }
}

} // namespace

bool parsePath(std::string_view text, Outline& outline)
{
    return PathParser(text, outline).parse();
}

std::optional<std::string_view> pathDataIn(std::string_view value)
{
    constexpr std::string_view kPath = "path(";
    if (!equalsIgnoringCase(value.substr(0, kPath.size()), kPath)) return std::nullopt;
    const size_t start = value.find_first_of("\"'");
    if (start == value.npos) return std::nullopt;
    const size_t end = value.find(value[start], start + 1);
    if (end == value.npos) return std::nullopt;
    return value.substr(start + 1, end - start - 1);
}

} // namespace Svg
} // namespace KAVO
