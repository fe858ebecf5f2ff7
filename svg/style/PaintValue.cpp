// SPDX-License-Identifier: MIT
#include "svg/style/PaintValue.h"

#include "svg/values/Colour.h"
#include "svg/values/TextScanner.h"

namespace KAVO {
namespace Svg {

namespace {

constexpr std::string_view kUrl = "url(";

bool isQuote(char c)
{
    return c == '"' || c == '\'';
}

// A url() and what may follow it, a colour or none; nothing when something else does.
std::optional<PaintValue> findServer(std::string_view text, uint32_t currentColour)
{
    PaintValue paint;
    paint.kind = PaintValue::Server;
    std::string_view fallback;
    paint.server = referenceIn(text, &fallback);
    paint.fallbackNone = equalsIgnoringCase(fallback, "none");
    if (fallback.empty() || paint.fallbackNone) return paint;
    const std::optional<uint32_t> colour = findColour(fallback, currentColour);
    if (!colour) return std::nullopt;
    paint.colour = *colour;
    paint.hasFallback = true;
    return paint;
}

} // namespace

bool isUrl(std::string_view text)
{
    return equalsIgnoringCase(text.substr(0, kUrl.size()), kUrl);
}

// The end of the text closes what is open, as in all style sheets.
std::string_view referenceIn(std::string_view text, std::string_view* rest)
{
    if (!isUrl(text)) return {};
    text = trimmed(text.substr(kUrl.size()));
    const bool quoted = !text.empty() && isQuote(text.front());
    const char closing = quoted ? text.front() : ')';
    if (quoted) text.remove_prefix(1);
    const size_t addressEnd = text.find(closing);
    const std::string_view address = trimmed(text.substr(0, addressEnd));
    if (rest) {
        const size_t end = text.find(')', addressEnd);
        *rest = end == text.npos ? std::string_view() : trimmed(text.substr(end + 1));
    }
    return address.substr(0, 1) == "#" ? address.substr(1) : std::string_view();
}

std::optional<PaintValue> findPaint(std::string_view text, uint32_t currentColour)
{
    if (isUrl(text)) return findServer(text, currentColour);
    PaintValue paint;
    if (equalsIgnoringCase(text, "none")) return paint;
    if (equalsIgnoringCase(text, "context-fill")) {
        paint.kind = PaintValue::ContextFill;
    } else if (equalsIgnoringCase(text, "context-stroke")) {
        paint.kind = PaintValue::ContextStroke;
    } else {
        const std::optional<uint32_t> colour = findColour(text, currentColour);
        if (!colour) return std::nullopt;
        paint.kind = PaintValue::Colour;
        paint.colour = *colour;
    }
    return paint;
}

} // namespace Svg
} // namespace KAVO
