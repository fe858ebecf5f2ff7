// SPDX-License-Identifier: MIT
#include "svg/text/Text.h"

#include "svg/values/TextScanner.h"

#include <algorithm>
#include <string>

namespace KAVO {
namespace Svg {

namespace {

constexpr int kMostNesting = 64;
constexpr uint32_t kReplacement = 0xFFFD;

class TextReader {
public:
    TextReader(const SvgDocument& document, TextContent& content, const Viewport& viewport)
        : document_(document), content_(content), viewport_(viewport),
          charactersLeft_(document.options().limits.characters)
    {
    }
    void read(pugi::xml_node node, const Style& style, int depth);
    void dropTrailingSpace();

private:
    void append(std::string_view utf8, const Style& style);
    void appendAll(pugi::xml_node node, const Style& style);
    void applyLists(pugi::xml_node node, size_t first, const Style& style);

    const SvgDocument& document_;
    TextContent& content_;
    Viewport viewport_;
    uint32_t charactersLeft_;
    double rise_ = 0;            // of the baseline by all shifts around it
    std::optional<size_t> path_; // that characters stand on
    bool afterSpace_ = true; // a space would collapse into the one before, or into the beginning
};

void TextReader::append(std::string_view utf8, const Style& style)
{
    const size_t styleIndex = content_.styles.size() - 1;
    for (const uint16_t unit : toUtf16(utf8)) {
        uint16_t code = unit;
        if (code == '\r' || (code == '\n' && !style.preserveSpace)) continue;
        if (code == '\t' || code == '\n') code = ' ';
        const bool space = code == ' ';
        if (space && afterSpace_ && !style.preserveSpace) continue;
        afterSpace_ = space;
        if (charactersLeft_ == 0) {
            content_.cut = true;
            return;
        }
        --charactersLeft_;
        TextCharacter character;
        character.code = code;
        character.style = styleIndex;
        character.path = path_;
        character.rise = rise_ - style.baseline * style.fontSize;
        content_.characters.push_back(character);
    }
}

// The element's lists speak of its characters from the first on; what an inner element said already
// stays.
void TextReader::applyLists(pugi::xml_node node, size_t first, const Style& style)
{
    struct PositionList {
        const char* attribute;
        std::optional<double> TextCharacter::*position;
        Axis axis;
    };
    const PositionList lists[] = {{"x", &TextCharacter::x, Axis::X},
                                  {"y", &TextCharacter::y, Axis::Y},
                                  {"dx", &TextCharacter::dx, Axis::X},
                                  {"dy", &TextCharacter::dy, Axis::Y}};
    std::vector<TextCharacter>& characters = content_.characters;
    const size_t count = characters.size() - first;
    for (const PositionList& list : lists) {
        const std::vector<double> values = parseLengths(node.attribute(list.attribute).value(),
                                                        style.lengths(viewport_), list.axis)
                                               .value_or(std::vector<double>());
        for (size_t i = 0; i < std::min(count, values.size()); ++i) {
            std::optional<double>& position = characters[first + i].*list.position;
            if (!position) position = values[i];
        }
    }
    const std::vector<double> turns = parseNumbers(node.attribute("rotate").value());
    for (size_t i = 0; i < count && !turns.empty(); ++i) {
        std::optional<double>& rotate = characters[first + i].rotate;
        if (!rotate) rotate = turns[std::min(i, turns.size() - 1)]; // the last one goes on
    }
}

// The characters of an element and of all inside it, without their styles.
void TextReader::appendAll(pugi::xml_node node, const Style& style)
{
    struct Collector : pugi::xml_tree_walker {
        std::string text;
        bool for_each(pugi::xml_node& inner) override
        {
            if (inner.type() == pugi::node_pcdata || inner.type() == pugi::node_cdata)
                text += inner.value();
            return true;
        }
    };
    Collector collector;
    node.traverse(collector);
    append(collector.text, style);
}

void TextReader::read(pugi::xml_node node, const Style& style, int depth)
{
    const size_t first = content_.characters.size();
    content_.styles.push_back(style);
    if (node.name() == std::string_view("tref")) appendAll(document_.target(node), style);
    for (const pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            append(child.value(), style);
            continue;
        }
        const std::string_view name = child.name();
        const bool spans =
            (name == "tspan" || name == "a" || name == "textPath" || name == "tref") &&
            document_.meetsConditions(child);
        const Properties properties(child, document_.sheet());
        const Style childStyle = style.child(properties, viewport_);
        if (name == "tbreak") {
            dropTrailingSpace();
            TextCharacter lineBreak;
            lineBreak.code = '\n';
            lineBreak.style = content_.styles.size() - 1;
            content_.characters.push_back(lineBreak);
            afterSpace_ = true;
        } else if (spans && depth < kMostNesting && childStyle.displayed) {
            const std::optional<size_t> outerPath = path_;
            if (name == "textPath" && !path_) {
                path_ = content_.paths.size();
                content_.paths.push_back(child);
            }
            rise_ += childStyle.baselineShift;
            read(child, childStyle, depth + 1);
            rise_ -= childStyle.baselineShift;
            path_ = outerPath;
            content_.styles.push_back(style); // for what follows the child
        }
    }
    applyLists(node, first, style);
}

void TextReader::dropTrailingSpace()
{
    std::vector<TextCharacter>& characters = content_.characters;
    if (!characters.empty() && characters.back().code == ' ' &&
        !content_.styles[characters.back().style].preserveSpace)
        characters.pop_back();
}

// Takes one character off the front.
uint32_t takeCodePoint(std::string_view& utf8)
{
    const auto lead = static_cast<unsigned char>(utf8.front());
    utf8.remove_prefix(1);
    if (lead < 0x80) return lead;
    const size_t more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    if (lead < 0xC0 || lead > 0xF7 || utf8.size() < more) return kReplacement;
    uint32_t code = lead & (0x3Fu >> more);
    for (size_t i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(utf8[i]);
        if ((next & 0xC0) != 0x80) return kReplacement;
        code = code << 6 | (next & 0x3Fu);
    }
    utf8.remove_prefix(more);
    return code;
}

} // namespace

std::vector<uint16_t> toUtf16(std::string_view utf8)
{
    std::vector<uint16_t> units;
    while (!utf8.empty()) {
        const uint32_t code = takeCodePoint(utf8);
        if (code < 0x10000) {
            units.push_back(static_cast<uint16_t>(code == 0 ? kReplacement : code));
        } else {
            units.push_back(static_cast<uint16_t>(0xD800 + ((code - 0x10000) >> 10 & 0x3FF)));
            units.push_back(static_cast<uint16_t>(0xDC00 + (code & 0x3FF)));
        }
    }
    return units;
}

TextContent readText(const SvgDocument& document, pugi::xml_node node, const Style& style,
                     const Viewport& viewport)
{
    TextContent content;
    TextReader reader(document, content, viewport);
    reader.read(node, style, 0);
    reader.dropTrailingSpace();
    return content;
}

} // namespace Svg
} // namespace KAVO
