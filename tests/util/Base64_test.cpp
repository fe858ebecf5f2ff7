#include "util/Base64.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

// Decoded into no more room than promised, so that a sanitizer sees a write beyond it.
Bytes decoded(const std::string& text)
{
    const Bytes source(text.begin(), text.end());
    Bytes out(source.size() / 4 * 3 + 3);
    const int32_t written =
        MMdecodeBase64(source.data(), static_cast<uint32_t>(source.size()), out.data());
    out.resize(static_cast<size_t>(written));
    return out;
}

TEST(Base64, GroupsAndWhatSkippedBytesLeaveInThem)
{
    const std::pair<const char*, Bytes> cases[] = {
        {"QUJD", {0x41, 0x42, 0x43}},
        {"QU JD", {0x41, 0x42, 0x43}},
        {"QUI", {0x41, 0x42, 0x00}},
        {"QQ", {0x41, 0x00}},
        {"Q", {0x40}},
        {"", {0x00}},
        {"QUI=", {0x41, 0x42, 0x01}},
        {"QQ==", {0x41, 0x00, 0x40}},
        {"QUJDRA==", {0x41, 0x42, 0x43, 0x44, 0x00, 0x40}},
        {"QUJD\n", {0x41, 0x42, 0x43, 0x0C}},
    };
    for (const auto& [text, bytes] : cases)
        EXPECT_EQ(decoded(text), bytes) << text;
}

// Each of the 256 bytes four times: a digit of value v gives the 24 bits vvvv.
TEST(Base64, EveryByte)
{
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::string oddTo26 = "[\\]^_";
    const std::string oddTo52 = "{|}~\x7F\x80\x81\x82\x83\x84\x85\x86";
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        size_t value = alphabet.find(c);
        if (c == ';') value = 63;
        if (oddTo26.find(c) != std::string::npos) value = 26 + oddTo26.find(c);
        if (oddTo52.find(c) != std::string::npos) value = 52 + oddTo52.find(c);
        const uint32_t group = static_cast<uint32_t>(value) * 0x41041;
        const Bytes whole = {static_cast<uint8_t>(group >> 16), static_cast<uint8_t>(group >> 8),
                             static_cast<uint8_t>(group)};
        const Bytes bytes = decoded(std::string(4, c));
        if (value == std::string::npos)
            EXPECT_EQ(bytes.size(), 1u) << byte; // nothing gathered
        else
            EXPECT_EQ(bytes, whole) << byte;
    }
}

} // namespace
