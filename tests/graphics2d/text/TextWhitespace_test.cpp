// SPDX-License-Identifier: MIT
#include "tests/support/TextScene.h"

#include <gtest/gtest.h>

using namespace KAVO::Graphics2D;

namespace {

struct Case {
    const char16_t* text;
    const char16_t* collapsed; // ParseText, preserveSpace 0
    const char16_t* kept;      // ParseText, preserveSpace 1
    const char16_t* single;    // ParseText2
};

const Case kCases[] = {
    {u"", u"", u"", u""},
    {u"abc", u"abc", u"abc", u"abc"},
    {u"  a\t\tb  ", u"a b ", u"  a  b  ", u" a b "},
    {u"a\r\nb", u"ab", u"a b", u"a b"},
    {u"\n\r \ta", u"a", u"   a", u" a"},
    {u"a \n b", u"a b", u"a   b", u"a b"},
    {u" a  \nb ", u"a b ", u" a   b ", u" a b "},
    {u" \t\r\n", u"", u"   ", u" "},
    {u"a\tb \tc\t d", u"a b c d", u"a b  c  d", u"a b c d"},
    {u"a\u00A0 \u3000b", u"a\u00A0 \u3000b", u"a\u00A0 \u3000b", u"a\u00A0 \u3000b"},
};

} // namespace

TEST(TextWhitespace, IsNormalisedInPlaceAndIntoAnotherBuffer)
{
    FreshEngine fresh;
    MMContext2D context;
    for (const Case& c : kCases) {
        Text collapsed(c.text), kept(c.text), single(c.text), copy(std::u16string(16, u'x'));
        context.preserveSpace = 0;
        context.ParseText(copy.data(), collapsed.data());
        context.ParseText(collapsed.data(), collapsed.data());
        context.preserveSpace = 1;
        context.ParseText(kept.data(), kept.data());
        ParseText2(single.data(), single.data());
        EXPECT_EQ(collapsed.string(), c.collapsed);
        EXPECT_EQ(copy.string(), c.collapsed);
        EXPECT_EQ(kept.string(), c.kept);
        EXPECT_EQ(single.string(), c.single);
    }
    context.ParseText(nullptr, nullptr);
    ParseText2(nullptr, nullptr);
}
