// SPDX-License-Identifier: MIT
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
        {"QU JD", {0x41, 0x42, 0x43}},
        {"QUI", {0x41, 0x42, 0x00}},
        {"QQ", {0x41, 0x00}},
        {"Q", {0x40}},
        {"", {0x00}},
        {"QUI=", {0x41, 0x42, 0x01}},
        {"QUJDRA==", {0x41, 0x42, 0x43, 0x44, 0x00, 0x40}},
        {"QUJD\n", {0x41, 0x42, 0x43, 0x0C}},
    };
    for (const auto& [text, bytes] : cases)
        EXPECT_EQ(decoded(text), bytes) << text;
}

// Each of the 256 bytes four times: a digit of value v gives the 24 bits vvvv.
TEST(Base64, EveryByte)
{
    const struct {
        int first, last, value;
    } digits[] = {{'A', '_', 0},  {'a', 0x86, 26}, // both go on beyond the letters
                  {'0', '9', 52}, {';', ';', 63},  {'+', '+', 62}, {'/', '/', 63}};
    for (int byte = 0; byte < 256; ++byte) {
        Bytes expected;
        for (const auto& d : digits) {
            if (byte < d.first || byte > d.last) continue;
            const int group = (d.value + byte - d.first) * 0x41041;
            expected = {uint8_t(group >> 16), uint8_t(group >> 8), uint8_t(group)};
        }
        const Bytes bytes = decoded(std::string(4, static_cast<char>(byte)));
        if (expected.empty())
            EXPECT_EQ(bytes.size(), 1u) << byte; // nothing gathered
        else
            EXPECT_EQ(bytes, expected) << byte;
    }
}

} // namespace
