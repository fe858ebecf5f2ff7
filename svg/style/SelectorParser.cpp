// SPDX-License-Identifier: MIT
// Reads selectors.
#include "svg/style/Escapes.h"
#include "svg/style/Selector.h"
#include "svg/values/TextScanner.h"

#include <algorithm>
#include <cstring>

namespace KAVO {
namespace Svg {

namespace {

constexpr int kMostNesting = 8; // of :not() and :is() in their own arguments
constexpr double kMostSiblings = 1e9;

std::string takeName(std::string_view& text)
{
    std::string name;
    while (!text.empty() &&
           (isNameCharacter(text.front()) || (text.front() == '\\' && text.size() > 1))) {
        if (text.front() == '\\') {
            text.remove_prefix(1);
            takeEscape(text, name);
        } else {
            name += text.front();
            text.remove_prefix(1);
        }
    }
    return name;
}

// A name, or what stands in quotes; nothing more may follow.
std::optional<std::string> wholeWord(std::string_view text)
{
    if (text.size() >= 2 && (text.front() == '"' || text.front() == '\''))
        return text.back() == text.front()
                   ? std::optional<std::string>(text.substr(1, text.size() - 2))
                   : std::nullopt;
    std::string name = takeName(text);
    if (!text.empty() || name.empty()) return std::nullopt;
    return name;
}

template <class Function>
bool forItems(std::string_view list, Function function)
{
    for (;;) {
        const size_t comma = findOutside(list, ',');
        if (!function(trimmed(list.substr(0, comma)))) return false;
        if (comma == list.npos) return true;
        list.remove_prefix(comma + 1);
    }
}

// Leaves the scanner where it was when there is none.
bool takeInteger(TextScanner& scanner, int32_t& value)
{
    double number = 0;
    TextScanner after = scanner;
    if (!after.number(number)) return false;
    const std::string_view literal =
        scanner.rest().substr(0, scanner.rest().size() - after.rest().size());
    if (literal.find_first_of(".eE") != literal.npos) return false;
    value = static_cast<int32_t>(std::clamp(number, -kMostSiblings, kMostSiblings));
    scanner = after;
    return true;
}

} // namespace

class SelectorParser {
public:
    explicit SelectorParser(int depth) : depth_(depth) {}

    std::optional<Selector> parse(std::string_view text) const;
    std::optional<std::vector<Selector>> parseList(std::string_view text) const;

private:
    using Condition = Selector::Condition;
    using Pseudo = Selector::Pseudo;

    bool parsePart(std::string_view& text, Selector::Part& part) const;
    bool parseCondition(std::string_view& text, Condition& condition) const;
    static bool parseAttribute(std::string_view& text, Condition& condition);
    bool parsePseudo(std::string_view& text, Condition& condition) const;
    bool parseFunction(const std::string& name, std::string_view argument,
                       Condition& condition) const;
    static std::optional<Selector::Series> parseSeries(std::string_view text);
    static uint32_t specificityOf(const Condition& condition);

    int depth_;
};

bool SelectorParser::parseAttribute(std::string_view& text, Condition& condition)
{
    text.remove_prefix(1);
    const size_t end = findOutside(text, ']');
    if (end == text.npos) return false;
    std::string_view inside = trimmed(text.substr(0, end));
    text.remove_prefix(end + 1);
    condition.kind = Condition::Attribute;
    condition.name = takeName(inside);
    if (!inside.empty() && inside.front() == '|' && inside.substr(0, 2) != "|=") {
        inside.remove_prefix(1); // a namespace
        condition.name += ":" + takeName(inside);
    }
    inside = trimmed(inside);
    if (condition.name.empty()) return false;
    if (inside.empty()) return true;
    const size_t equals = inside.find('=');
    if (equals > 1 || (equals == 1 && !std::strchr("~|^$*", inside[0]))) return false;
    condition.comparison = inside[0];
    inside = trimmed(inside.substr(equals + 1));
    if (inside.size() > 2 && (inside.back() == 'i' || inside.back() == 's') &&
        std::strchr(" \t\r\n\"'", inside[inside.size() - 2])) {
        condition.ignoresCase = inside.back() == 'i';
        inside = trimmed(inside.substr(0, inside.size() - 1));
    }
    const std::optional<std::string> value = wholeWord(inside);
    if (value) condition.value = *value;
    return value.has_value();
}

// An+B, odd or even.
std::optional<Selector::Series> SelectorParser::parseSeries(std::string_view text)
{
    const std::string lower = lowerCase(text);
    if (lower == "odd") return Selector::Series{2, 1};
    if (lower == "even") return Selector::Series{2, 0};
    Selector::Series series{0, 0};
    TextScanner scanner(lower);
    int32_t number = 0;
    if (takeInteger(scanner, number)) {
        if (scanner.atEnd()) return Selector::Series{0, number};
    } else {
        number = scanner.character('-') ? -1 : 1;
        if (number == 1) scanner.character('+');
    }
    if (!scanner.character('n')) return std::nullopt;
    series.step = number;
    scanner.skipSpace();
    if (scanner.atEnd()) return series;
    const bool minus = scanner.character('-');
    if (!minus && !scanner.character('+')) return std::nullopt;
    scanner.skipSpace();
    const bool digit = scanner.peek() >= '0' && scanner.peek() <= '9';
    if (!digit || !takeInteger(scanner, number) || !scanner.atEnd()) return std::nullopt;
    series.offset = minus ? -number : number;
    return series;
}

bool SelectorParser::parseFunction(const std::string& name, std::string_view argument,
                                   Condition& condition) const
{
    static constexpr struct {
        std::string_view name;
        Pseudo pseudo;
    } kPositions[] = {{"nth-child", Pseudo::NthChild},
                      {"nth-last-child", Pseudo::NthLastChild},
                      {"nth-last-of-type", Pseudo::NthLastOfType},
                      {"nth-of-type", Pseudo::NthOfType}};
    for (const auto& position : kPositions) {
        if (position.name != name) continue;
        const std::optional<Selector::Series> series = parseSeries(argument);
        condition.pseudo = position.pseudo;
        condition.series = series.value_or(Selector::Series());
        return series.has_value();
    }
    if (name == "lang") {
        condition.pseudo = Pseudo::Lang;
        return forItems(argument, [&](std::string_view item) {
            const std::optional<std::string> range = item == "*" ? "*" : wholeWord(item);
            if (range) condition.languages.push_back(*range);
            return range.has_value();
        });
    }
    if (name != "not" && name != "is" && name != "where") return false;
    if (depth_ == kMostNesting) return false;
    std::optional<std::vector<Selector>> arguments = SelectorParser(depth_ + 1).parseList(argument);
    if (!arguments) return false;
    condition.name = name;
    condition.pseudo = name == "not" ? Pseudo::Not : Pseudo::Is;
    condition.arguments = std::move(*arguments);
    return true;
}

// After its colon. Pseudo-elements hold for no element.
bool SelectorParser::parsePseudo(std::string_view& text, Condition& condition) const
{
    static constexpr struct {
        std::string_view name;
        Pseudo pseudo;
    } kPlain[] = {{"active", Pseudo::Never},
                  {"after", Pseudo::Never},
                  {"any-link", Pseudo::Link},
                  {"before", Pseudo::Never},
                  {"checked", Pseudo::Never},
                  {"disabled", Pseudo::Never},
                  {"empty", Pseudo::Empty},
                  {"enabled", Pseudo::Never},
                  {"first-child", Pseudo::NthChild},
                  {"first-letter", Pseudo::Never},
                  {"first-line", Pseudo::Never},
                  {"first-of-type", Pseudo::NthOfType},
                  {"focus", Pseudo::Never},
                  {"focus-visible", Pseudo::Never},
                  {"focus-within", Pseudo::Never},
                  {"hover", Pseudo::Never},
                  {"last-child", Pseudo::NthLastChild},
                  {"last-of-type", Pseudo::NthLastOfType},
                  {"link", Pseudo::Link},
                  {"only-child", Pseudo::Only},
                  {"only-of-type", Pseudo::OnlyOfType},
                  {"root", Pseudo::Root},
                  {"selection", Pseudo::Never},
                  {"target", Pseudo::Never},
                  {"visited", Pseudo::Never}};
    condition.kind = Condition::PseudoClass;
    if (!text.empty() && text.front() == ':') text.remove_prefix(1);
    const std::string name = lowerCase(takeName(text));
    if (!text.empty() && text.front() == '(') {
        text.remove_prefix(1);
        const size_t end = findOutside(text, ')');
        if (end == text.npos) return false;
        const std::string_view argument = trimmed(text.substr(0, end));
        text.remove_prefix(end + 1);
        return parseFunction(name, argument, condition);
    }
    for (const auto& plain : kPlain) {
        if (plain.name != name) continue;
        condition.pseudo = plain.pseudo;
        return true;
    }
    return false;
}

bool SelectorParser::parseCondition(std::string_view& text, Condition& condition) const
{
    const char mark = text.front();
    if (mark == '[') return parseAttribute(text, condition);
    text.remove_prefix(1);
    if (mark == ':') return parsePseudo(text, condition);
    condition.kind = mark == '#' ? Condition::Id : Condition::Class;
    condition.name = takeName(text);
    return !condition.name.empty();
}

bool SelectorParser::parsePart(std::string_view& text, Selector::Part& part) const
{
    const size_t before = text.size();
    const auto takeType = [&] {
        if (!text.empty() && text.front() == '*')
            text.remove_prefix(1);
        else
            part.name = takeName(text);
    };
    takeType();
    if (!text.empty() && text.front() == '|') { // a namespace, which elements have lost already
        text.remove_prefix(1);
        part.name.clear();
        takeType();
    }
    while (!text.empty() && std::strchr("#.[:", text.front())) {
        Condition condition{};
        if (!parseCondition(text, condition)) return false;
        part.conditions.push_back(std::move(condition));
    }
    return text.size() != before;
}

// That of :not() and :is() is the largest among their arguments, that of :where() none.
uint32_t SelectorParser::specificityOf(const Condition& condition)
{
    if (condition.kind == Condition::Id) return 0x10000;
    if (condition.arguments.empty()) return 0x100;
    uint32_t most = 0;
    for (const Selector& argument : condition.arguments)
        most = std::max(most, argument.specificity());
    return condition.name == "where" ? 0 : most;
}

std::optional<Selector> SelectorParser::parse(std::string_view text) const
{
    Selector selector;
    text = trimmed(text);
    while (!text.empty()) {
        Selector::Part part;
        if (!selector.parts_.empty()) {
            text = trimmed(text);
            if (std::strchr(">+~", text.front())) {
                part.combinator = text.front();
                text = trimmed(text.substr(1));
            }
        }
        if (text.empty() || !parsePart(text, part)) return std::nullopt;
        selector.specificity_ += !part.name.empty();
        for (const Condition& condition : part.conditions)
            selector.specificity_ += specificityOf(condition);
        selector.parts_.push_back(std::move(part));
    }
    if (selector.parts_.empty()) return std::nullopt;
    return selector;
}

std::optional<std::vector<Selector>> SelectorParser::parseList(std::string_view text) const
{
    std::vector<Selector> list;
    const bool understood = forItems(text, [&](std::string_view item) {
        std::optional<Selector> selector = parse(item);
        if (selector) list.push_back(std::move(*selector));
        return selector.has_value();
    });
    if (!understood) return std::nullopt;
    return list;
}

std::optional<Selector> Selector::parse(std::string_view text)
{
    return SelectorParser(0).parse(text);
}

std::optional<std::vector<Selector>> Selector::parseList(std::string_view text)
{
    return SelectorParser(0).parseList(text);
}

} // namespace Svg
} // namespace KAVO
