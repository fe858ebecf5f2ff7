// SPDX-License-Identifier: MIT
#include "svg2png/Images.h"

#include "util/Base64.h"

#include <algorithm>
#include <charconv>

namespace {

bool isRelativeFile(const std::string& href)
{
    return !href.empty() && href[0] != '/' && href.find(':') == href.npos;
}

// References are URIs: a byte may be written as % and two hexadecimal digits.
std::string withoutEscapes(const std::string& uri)
{
    std::string result;
    for (size_t i = 0; i < uri.size(); ++i) {
        uint8_t byte = 0;
        const char* digits = uri.c_str() + i + 1;
        const bool escaped = uri[i] == '%' && i + 2 < uri.size() &&
                             std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2;
        result += escaped ? static_cast<char>(byte) : uri[i];
        if (escaped) i += 2;
    }
    return result;
}

// The bytes of a data URI in base64; none for any other reference.
std::vector<uint8_t> bytesOfDataUri(const std::string& href)
{
    const size_t comma = href.find(',');
    if (href.compare(0, 5, "data:") != 0 || comma == href.npos) return {};
    if (href.rfind(";base64", comma) == href.npos) return {};
    std::string digits = withoutEscapes(href.substr(comma + 1));
    while (!digits.empty() && (digits.back() == '=' || digits.back() == '\n'))
        digits.pop_back(); // the decoder does not know padding
    std::vector<uint8_t> bytes(digits.size() / 4 * 3 + 6);
    const auto length = static_cast<uint32_t>(digits.size());
    const int32_t written =
        MMdecodeBase64(reinterpret_cast<const uint8_t*>(digits.data()), length, bytes.data());
    bytes.resize(static_cast<size_t>(written));
    return bytes;
}

Picture loadPicture(const std::string& directory, const std::string& href)
{
    Picture picture;
    const std::vector<uint8_t> bytes = bytesOfDataUri(href);
    std::string problem = "unknown kind of reference";
    if (!bytes.empty())
        problem = readPng(bytes.data(), bytes.size(), picture);
    else if (isRelativeFile(href))
        problem = readPng(directory + withoutEscapes(href), picture);
    if (!problem.empty()) return {};
    spreadColours(picture);
    return picture;
}

// The mean of four pixels, those that are more opaque counting for more.
uint32_t mean(const uint32_t (&pixels)[4])
{
    uint32_t alphaSum = 0;
    uint32_t sums[3] = {};
    for (const uint32_t pixel : pixels) {
        const uint32_t alpha = pixel >> 24;
        alphaSum += alpha;
        for (uint32_t channel = 0; channel < 3; ++channel)
            sums[channel] += (pixel >> (8 * channel) & 0xFF) * alpha;
    }
    if (alphaSum == 0) return 0;
    uint32_t result = (alphaSum + 2) / 4 << 24;
    for (uint32_t channel = 0; channel < 3; ++channel)
        result |= (sums[channel] + alphaSum / 2) / alphaSum << (8 * channel);
    return result;
}

} // namespace

const Picture* ImageStore::load(const std::string& href)
{
    auto found = pictures_.find(href);
    if (found == pictures_.end()) {
        found = pictures_.emplace(href, loadPicture(directory_, href)).first;
    }
    return found->second.pixels.empty() ? nullptr : &found->second;
}

Picture halved(const Picture& picture)
{
    Picture result(std::max(1, picture.width / 2), std::max(1, picture.height / 2), 0);
    result.hasAlpha = picture.hasAlpha;
    for (int y = 0; y < result.height; ++y) {
        const int y0 = 2 * y;
        const int y1 = std::min(y0 + 1, picture.height - 1);
        for (int x = 0; x < result.width; ++x) {
            const int x0 = 2 * x;
            const int x1 = std::min(x0 + 1, picture.width - 1);
            result.at(x, y) = mean(
                {picture.at(x0, y0), picture.at(x1, y0), picture.at(x0, y1), picture.at(x1, y1)});
        }
    }
    return result;
}

void spreadColours(Picture& picture)
{
    if (!picture.hasAlpha) return;
    constexpr int kReach = 2; // texels that a filter looks away from a point
    std::vector<bool> coloured(picture.pixels.size());
    for (size_t i = 0; i < coloured.size(); ++i)
        coloured[i] = picture.pixels[i] >> 24 != 0;
    const auto index = [&](int x, int y) { return static_cast<size_t>(y * picture.width + x); };
    for (int round = 0; round < kReach; ++round) {
        const std::vector<bool> before = coloured;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < picture.width; ++x) {
                const int left = std::max(0, x - 1);
                const int right = std::min(picture.width - 1, x + 1);
                const int top = std::max(0, y - 1);
                const int bottom = std::min(picture.height - 1, y + 1);
                const size_t neighbours[] = {index(left, y), index(right, y), index(x, top),
                                             index(x, bottom)};
                for (const size_t neighbour : neighbours) {
                    if (coloured[index(x, y)] || !before[neighbour]) continue;
                    picture.pixels[index(x, y)] = picture.pixels[neighbour] & 0x00FFFFFFu;
                    coloured[index(x, y)] = true;
                }
            }
        }
    }
}
