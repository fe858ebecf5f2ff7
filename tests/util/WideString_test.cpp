// SPDX-License-Identifier: MIT
#include "util/WideString.h"

#include "tests/support/FailingHeap.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace {

const uint16_t* text(const char16_t* s)
{
    return reinterpret_cast<const uint16_t*>(s);
}

TEST(WideString, MeasureCompareAndFind)
{
    EXPECT_EQ(MMwsstrlen(text(u"four")), 4);
    EXPECT_EQ(MM_wstrcmp(text(u"abc"), text(u"abc")), 0);
    EXPECT_EQ(MM_wstrcmp(text(u"abc"), text(u"ab")), 'c');
    EXPECT_EQ(MM_wstrcmp(text(u"ab"), text(u"abc")), -1);
    EXPECT_EQ(MM_wstrcmp(text(u"\xFFFF"), text(u"\x0001")), 0xFFFE);
    EXPECT_EQ(MM_wstrncmp(text(u"abX"), text(u"abY"), 3), -1);
    EXPECT_EQ(MM_wstrncmp(text(u"ab"), text(u"abc"), 3), -1);
    EXPECT_EQ(MM_wstrncmp(text(u"abc"), text(u"ab"), 3), 'c');
    EXPECT_EQ(MM_wstrncmp(text(u"ab"), text(u"ab"), 9), 0);
    EXPECT_EQ(MM_wstrncmp(text(u"a"), text(u"b"), -1), 0);
    uint16_t s[] = {'a', 'b', 'a', 0};
    EXPECT_EQ(MM_wstrchr(s, 'b'), s + 1);
    EXPECT_EQ(MM_wstrchr(s, 'x'), s + 3); // never null
}

TEST(WideString, Copy)
{
    using Units = std::vector<uint16_t>;
    const auto copied = [](const char16_t* source, int32_t n) {
        Units buffer(5, 9);
        EXPECT_EQ(MM_wstrncpy(buffer.data(), text(source), n), buffer.data());
        return buffer;
    };
    EXPECT_EQ(copied(u"abc", -7), (Units{9, 9, 9, 9, 9}));
    EXPECT_EQ(copied(u"abc", 2), (Units{'a', 'b', 9, 9, 9}));
    EXPECT_EQ(copied(u"abc", 4), (Units{'a', 'b', 'c', 0, 9}));
    EXPECT_EQ(copied(u"", 5), (Units{0, 0, 0, 0, 0}));
}

TEST(WideString, Utf8)
{
    const struct {
        std::string bytes;
        std::u16string units;
    } cases[] = {
        {"\xC3\xA9!\xE2\x82\xAC", u"\u00E9!\u20AC"},
        {"\x82\x41", std::u16string(1, 0x02 << 6 | 0x01)}, // a stray continuation byte
        {"\xE2\x82", std::u16string(1, 0x2080)},           // cut short: zeros follow
        {"\xC3", std::u16string(1, 0x00C0)},
        {"\xF0\x9F\x98\x80", std::u16string{0x07D8, 0x0000}}, // of four bytes: three and one
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    };
    for (const auto& c : cases) {
        // Exactly as long as said, so that a sanitizer sees a read beyond it.
        const std::vector<uint8_t> bytes(c.bytes.begin(), c.bytes.end());
        uint16_t* units = MMstrUtf8ToWs(bytes.data(), static_cast<uint32_t>(bytes.size()));
        ASSERT_NE(units, nullptr);
        const std::u16string result(reinterpret_cast<char16_t*>(units), c.units.size() + 1);
        EXPECT_EQ(result, c.units + u'\0') << c.bytes;
        std::free(units);
    }
    FailingHeap heap;
    heap.failAt(1);
    EXPECT_EQ(MMstrUtf8ToWs(nullptr, 0), nullptr);
}

} // namespace
