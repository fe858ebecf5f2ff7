// SPDX-License-Identifier: MIT
#include "svg/geometry/BasicShapes.h"

#include "svg/values/PathParser.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <vector>

namespace KAVO {
namespace Svg {

namespace {

using Words = std::vector<std::string_view>;

// Words between white space; a slash is one of its own.
Words wordsOf(std::string_view text)
{
    Words words;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        const size_t end = text.front() == '/' ? 1 : text.find_first_of(" \t\r\n\f/");
        words.push_back(text.substr(0, end));
        text = end == text.npos ? std::string_view() : text.substr(end);
    }
    return words;
}

bool is(std::string_view word, std::string_view keyword)
{
    return equalsIgnoringCase(word, keyword);
}

std::optional<ShapeBox> findBox(std::string_view word)
{
    if (is(word, "fill-box") || is(word, "content-box") || is(word, "padding-box"))
        return ShapeBox::Fill;
    if (is(word, "stroke-box") || is(word, "border-box") || is(word, "margin-box"))
        return ShapeBox::Stroke;
    if (is(word, "view-box")) return ShapeBox::View;
    return std::nullopt;
}

// Takes the words from a keyword on off the list; the keyword itself goes, too.
Words takeFrom(Words& words, std::string_view keyword)
{
    const auto at = std::find_if(words.begin(), words.end(),
                                 [&](std::string_view word) { return is(word, keyword); });
    if (at == words.end()) return {};
    Words rest(at + 1, words.end());
    words.erase(at, words.end());
    return rest;
}

// Reads arguments against a box. After an error the shape is none.
class Reader {
public:
    Reader(const Box& box, const LengthContext& lengths)
        : box_(box), viewport_(lengths.viewport.sized(box.width(), box.height())),
          lengths_(LengthContext{viewport_, lengths.fontSize})
    {
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    bool valid() const { return valid_; }

    Outline circle(std::string_view arguments) { return ellipse(arguments, 1); }
    Outline ellipse(std::string_view arguments) { return ellipse(arguments, 2); }
    Outline inset(std::string_view arguments);
    Outline rect(std::string_view arguments);
    Outline xywh(std::string_view arguments);
    Outline polygon(std::string_view arguments, bool& evenOdd);
    Outline path(std::string_view arguments, bool& evenOdd);

private:
    double length(std::string_view word, Axis axis)
    {
        const std::optional<double> found = findLength(word, lengths_, axis);
        valid_ = valid_ && found;
        return found.value_or(0);
    }
    double size(std::string_view word, Axis axis)
    {
        const std::optional<double> found = findSize(word, lengths_, axis);
        valid_ = valid_ && found;
        return found.value_or(0);
    }
    Outline ellipse(std::string_view arguments, size_t radii);
    double radius(std::string_view word, Axis axis, Point centre);
    double place(std::string_view word, Axis axis);
    Point position(const Words& words);
    Outline rounded(const Box& inner, const Words& radii);
    void takeRule(std::string_view& arguments, bool& evenOdd);

    Box box_;
    Viewport viewport_;
    LengthContext lengths_;
    bool valid_ = true;
};

double Reader::radius(std::string_view word, Axis axis, Point centre)
{
    const double x[] = {std::fabs(centre.x - box_.left), std::fabs(box_.right - centre.x)};
    const double y[] = {std::fabs(centre.y - box_.top), std::fabs(box_.bottom - centre.y)};
    const bool closest = is(word, "closest-side");
    if (!closest && !is(word, "farthest-side")) return size(word, axis);
    const auto choose = [&](double a, double b) {
        return closest ? std::min(a, b) : std::max(a, b);
    };
    if (axis == Axis::X) return choose(x[0], x[1]);
    if (axis == Axis::Y) return choose(y[0], y[1]);
    return choose(choose(x[0], x[1]), choose(y[0], y[1]));
}

// A side, or a length from the left or top edge.
double Reader::place(std::string_view word, Axis axis)
{
    const bool isX = axis == Axis::X;
    const double from = isX ? box_.left : box_.top;
    const double span = isX ? box_.width() : box_.height();
    if (is(word, isX ? "left" : "top")) return from;
    if (is(word, "center")) return from + span / 2;
    if (is(word, isX ? "right" : "bottom")) return from + span;
    return from + length(word, axis);
}

// One or two places, or two sides each with a distance from it.
Point Reader::position(const Words& words)
{
    const auto isVertical = [](std::string_view word) {
        return is(word, "top") || is(word, "bottom");
    };
    const auto isSide = [&](std::string_view word) {
        return is(word, "left") || is(word, "right") || isVertical(word);
    };
    if (words.size() == 1)
        return isVertical(words[0]) ? Point{place("center", Axis::X), place(words[0], Axis::Y)}
                                    : Point{place(words[0], Axis::X), place("center", Axis::Y)};
    if (words.size() == 2) {
        const bool turned = isVertical(words[0]) || is(words[1], "left") || is(words[1], "right");
        return {place(words[turned ? 1 : 0], Axis::X), place(words[turned ? 0 : 1], Axis::Y)};
    }
    valid_ = valid_ && words.size() == 4 && isSide(words[0]) && isSide(words[2]);
    if (!valid_) return {};
    const size_t x = isVertical(words[0]) ? 2 : 0;
    const double dx = length(words[x + 1], Axis::X);
    const double dy = length(words[3 - x], Axis::Y);
    return {place(words[x], Axis::X) + (is(words[x], "right") ? -dx : dx),
            place(words[2 - x], Axis::Y) + (is(words[2 - x], "bottom") ? -dy : dy)};
}

// A circle has one radius, an ellipse two.
Outline Reader::ellipse(std::string_view arguments, size_t radii)
{
    Words words = wordsOf(arguments);
    const bool placed = std::any_of(words.begin(), words.end(),
                                    [](std::string_view word) { return is(word, "at"); });
    const Words where = takeFrom(words, "at");
    const Point c = placed ? position(where) : position({"center"});
    if (words.empty()) words.assign(radii, "closest-side");
    valid_ = valid_ && words.size() == radii;
    if (!valid_) return {};
    const double rx = radius(words.front(), radii == 1 ? Axis::Diagonal : Axis::X, c);
    const double ry = radius(words.back(), radii == 1 ? Axis::Diagonal : Axis::Y, c);
    Outline outline;
    if (!(rx > 0 && ry > 0)) return outline;
    outline.moveTo({c.x + rx, c.y});
    outline.arcTo(rx, ry, 0, false, true, {c.x - rx, c.y});
    outline.arcTo(rx, ry, 0, false, true, {c.x + rx, c.y});
    outline.close();
    return outline;
}

// One to four values for as many sides or corners: the missing ones are as those opposite.
template <class Value>
bool fillFour(std::vector<Value>& values)
{
    if (values.empty() || values.size() > 4) return false;
    if (values.size() == 1) values.push_back(values[0]);
    if (values.size() == 2) values.push_back(values[0]);
    if (values.size() == 3) values.push_back(values[1]);
    return true;
}

// With the radii of border-radius, clockwise from the top left corner.
Outline Reader::rounded(const Box& inner, const Words& radii)
{
    Words across = radii;
    Words down = takeFrom(across, "/");
    if (down.empty()) down = across;
    if (!inner.hasArea()) return {};
    if (radii.empty()) return Outline::rectangle(inner);
    valid_ = valid_ && fillFour(across) && fillFour(down);
    if (!valid_) return {};
    Point r[4];
    for (size_t i = 0; i < 4; ++i)
        r[i] = {size(across[i], Axis::X), size(down[i], Axis::Y)};
    double share = 1; // of the radii that have room
    const auto limit = [&](double sum, double room) {
        if (sum > room) share = std::min(share, room / sum);
    };
    limit(r[0].x + r[1].x, inner.width());
    limit(r[2].x + r[3].x, inner.width());
    limit(r[1].y + r[2].y, inner.height());
    limit(r[3].y + r[0].y, inner.height());
    for (Point& p : r)
        p = p * share;
    Outline outline;
    const auto corner = [&](Point radius, Point end) {
        if (radius.x > 0 && radius.y > 0)
            outline.arcTo(radius.x, radius.y, 0, false, true, end);
        else
            outline.lineTo(end);
    };
    outline.moveTo({inner.left + r[0].x, inner.top});
    outline.lineTo({inner.right - r[1].x, inner.top});
    corner(r[1], {inner.right, inner.top + r[1].y});
    outline.lineTo({inner.right, inner.bottom - r[2].y});
    corner(r[2], {inner.right - r[2].x, inner.bottom});
    outline.lineTo({inner.left + r[3].x, inner.bottom});
    corner(r[3], {inner.left, inner.bottom - r[3].y});
    outline.lineTo({inner.left, inner.top + r[0].y});
    corner(r[0], {inner.left + r[0].x, inner.top});
    outline.close();
    return outline;
}

// Distances from the four sides of the box.
Outline Reader::inset(std::string_view arguments)
{
    Words words = wordsOf(arguments);
    const Words radii = takeFrom(words, "round");
    valid_ = valid_ && fillFour(words);
    if (!valid_) return {};
    return rounded({box_.left + length(words[3], Axis::X), box_.top + length(words[0], Axis::Y),
                    box_.right - length(words[1], Axis::X),
                    box_.bottom - length(words[2], Axis::Y)},
                   radii);
}

// Top, right, bottom and left edge, all from the left and top of the box.
Outline Reader::rect(std::string_view arguments)
{
    Words words = wordsOf(arguments);
    const Words radii = takeFrom(words, "round");
    valid_ = valid_ && words.size() == 4;
    if (!valid_) return {};
    const auto edge = [&](std::string_view word, Axis axis, double whole) {
        if (is(word, "auto")) return whole;
        return (axis == Axis::X ? box_.left : box_.top) + length(word, axis);
    };
    return rounded({edge(words[3], Axis::X, box_.left), edge(words[0], Axis::Y, box_.top),
                    edge(words[1], Axis::X, box_.right), edge(words[2], Axis::Y, box_.bottom)},
                   radii);
}

Outline Reader::xywh(std::string_view arguments)
{
    Words words = wordsOf(arguments);
    const Words radii = takeFrom(words, "round");
    valid_ = valid_ && words.size() == 4;
    if (!valid_) return {};
    const double x = box_.left + length(words[0], Axis::X);
    const double y = box_.top + length(words[1], Axis::Y);
    return rounded({x, y, x + size(words[2], Axis::X), y + size(words[3], Axis::Y)}, radii);
}

// A fill rule and a comma may stand before the rest.
void Reader::takeRule(std::string_view& arguments, bool& evenOdd)
{
    const size_t comma = findOutside(arguments, ',');
    const std::string_view rule = trimmed(arguments.substr(0, comma));
    evenOdd = is(rule, "evenodd");
    if (comma != arguments.npos && (evenOdd || is(rule, "nonzero")))
        arguments = arguments.substr(comma + 1);
}

Outline Reader::polygon(std::string_view arguments, bool& evenOdd)
{
    takeRule(arguments, evenOdd);
    Outline outline;
    while (valid_ && !arguments.empty()) {
        const size_t comma = findOutside(arguments, ',');
        const Words words = wordsOf(arguments.substr(0, comma));
        arguments = comma == arguments.npos ? std::string_view() : arguments.substr(comma + 1);
        valid_ = words.size() == 2;
        if (!valid_) break;
        const Point p{box_.left + length(words[0], Axis::X), box_.top + length(words[1], Axis::Y)};
        if (outline.empty())
            outline.moveTo(p);
        else
            outline.lineTo(p);
    }
    if (outline.empty()) valid_ = false;
    return outline;
}

Outline Reader::path(std::string_view arguments, bool& evenOdd)
{
    takeRule(arguments, evenOdd);
    arguments = trimmed(arguments);
    const bool quoted = arguments.size() >= 2 && arguments.front() == arguments.back() &&
                        (arguments.front() == '"' || arguments.front() == '\'');
    Outline outline;
    Outline result;
    valid_ = quoted && parsePath(arguments.substr(1, arguments.size() - 2), outline);
    result.append(outline, translation(box_.left, box_.top));
    return result;
}

} // namespace

std::optional<BasicShape> parseBasicShape(std::string_view text)
{
    BasicShape shape;
    bool hasBox = false;
    text = trimmed(text);
    if (text.empty()) return std::nullopt;
    for (; !text.empty(); text = trimmed(text)) {
        TextScanner scanner(text);
        const std::string_view word = scanner.word();
        if (scanner.character('(')) {
            const std::string_view rest = scanner.rest();
            const size_t end = findOutside(rest, ')');
            if (!shape.function.empty() || word.empty() || end == rest.npos) return std::nullopt;
            shape.function = word;
            shape.arguments = rest.substr(0, end);
            text = rest.substr(end + 1);
            continue;
        }
        const std::optional<ShapeBox> box = findBox(word);
        if (!box || hasBox) return std::nullopt;
        shape.box = *box;
        hasBox = true;
        text = scanner.rest();
    }
    return shape;
}

std::optional<ShapeOutline> outlineOf(const BasicShape& shape, const Box& box,
                                      const LengthContext& lengths)
{
    Reader reader(box, lengths);
    ShapeOutline result;
    if (shape.function.empty())
        result.outline = Outline::rectangle(box);
    else if (is(shape.function, "circle"))
        result.outline = reader.circle(shape.arguments);
    else if (is(shape.function, "ellipse"))
        result.outline = reader.ellipse(shape.arguments);
    else if (is(shape.function, "inset"))
        result.outline = reader.inset(shape.arguments);
    else if (is(shape.function, "rect"))
        result.outline = reader.rect(shape.arguments);
    else if (is(shape.function, "xywh"))
        result.outline = reader.xywh(shape.arguments);
    else if (is(shape.function, "polygon"))
        result.outline = reader.polygon(shape.arguments, result.evenOdd);
    else if (is(shape.function, "path"))
        result.outline = reader.path(shape.arguments, result.evenOdd);
    else
        return std::nullopt;
    if (!reader.valid()) return std::nullopt;
    return result;
}

} // namespace Svg
} // namespace KAVO
