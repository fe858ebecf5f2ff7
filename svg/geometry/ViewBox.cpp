// SPDX-License-Identifier: MIT
#include "svg/geometry/ViewBox.h"

#include "svg/values/TextScanner.h"

#include <algorithm>
#include <string>

namespace KAVO {
namespace Svg {

namespace {

struct AspectRatio {
    std::string_view align;
    bool slice = false;
};

// A malformed attribute counts as none.
AspectRatio parseAspectRatio(std::string_view text)
{
    TextScanner scanner(text);
    scanner.skipSpace();
    std::string_view align = scanner.word();
    if (align == "defer") {
        scanner.skipSpace();
        align = scanner.word();
    }
    scanner.skipSpace();
    return {align, scanner.word() == "slice"};
}

// Where the box goes along one axis: Min, Mid or Max of the room that is left.
double alignment(std::string_view keyword, double room)
{
    if (keyword == "Min") return 0;
    return keyword == "Max" ? room : room / 2;
}

} // namespace

bool isEmptyViewBox(const char* text)
{
    const std::vector<double> v = parseNumbers(text);
    return v.size() == 4 && v[2] >= 0 && v[3] >= 0 && (v[2] == 0 || v[3] == 0);
}

std::optional<Box> parseViewBox(const char* text)
{
    const std::vector<double> v = parseNumbers(text);
    if (v.size() != 4 || v[2] <= 0 || v[3] <= 0) return std::nullopt;
    return Box{v[0], v[1], v[0] + v[2], v[1] + v[3]};
}

Affine fitViewBox(const char* preserveAspectRatio, const Box& box, double width, double height)
{
    const auto [align, slice] = parseAspectRatio(preserveAspectRatio);
    double sx = width / box.width();
    double sy = height / box.height();
    if (align != "none") sx = sy = slice ? std::max(sx, sy) : std::min(sx, sy);
    const bool known = align.size() == 8; // xMidYMid and its like
    const double x = alignment(known ? align.substr(1, 3) : "Mid", width - box.width() * sx);
    const double y = alignment(known ? align.substr(5, 3) : "Mid", height - box.height() * sy);
    return {sx, 0, 0, sy, x - box.left * sx, y - box.top * sy};
}

Box clippedViewport(const Box& box, std::string_view clip, const LengthContext& lengths)
{
    constexpr std::string_view kRect = "rect(";
    const bool isRect = equalsIgnoringCase(clip.substr(0, kRect.size()), kRect);
    if (!isRect || clip.back() != ')') return box;
    std::string sides(clip.substr(kRect.size(), clip.size() - kRect.size() - 1));
    std::replace(sides.begin(), sides.end(), ',', ' ');
    Box result = box;
    double* const places[] = {&result.top, &result.right, &result.bottom, &result.left};
    size_t count = 0;
    bool valid = true;
    forWords(sides, [&](std::string_view word) {
        const bool vertical = count % 2 == 0;
        const std::optional<double> length =
            findLength(word, lengths, vertical ? Axis::Y : Axis::X);
        valid = valid && count < 4 && (length || equalsIgnoringCase(word, "auto"));
        if (valid && length) *places[count] = (vertical ? box.top : box.left) + *length;
        ++count;
    });
    return valid && count == 4 ? result.common(box) : box;
}

bool slices(const char* preserveAspectRatio)
{
    return parseAspectRatio(preserveAspectRatio).slice;
}

} // namespace Svg
} // namespace KAVO
