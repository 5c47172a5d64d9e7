// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "string_ex.h"

namespace {

using namespace std::string_literals;
using OHOS::Str16ToStr8;
using OHOS::Str8ToStr16;

TEST(StringExTest, WellFormedTextConvertsBothWays)
{
    const std::pair<std::string, std::u16string> cases[] = {
        {"", {}},
        {"a\x7F", {0x61, 0x7F}},
        {"\xC2\x80\xDF\xBF", {0x80, 0x7FF}},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", {0x800, 0xD7FF, 0xE000, 0xFFFF}},
        {"\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", {0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}},
    };
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(Str8ToStr16(utf8), utf16);
        EXPECT_EQ(Str16ToStr8(utf16), utf8);
    }
    EXPECT_EQ(Str8ToStr16("ab\0\xFF"s), u"ab");
    EXPECT_EQ(Str16ToStr8({0x61, 0, 0xD800}), "a");
}

TEST(StringExTest, MalformedTextIsEmpty)
{
    for (const std::string& text : {"\x80"s, "\xC1\xBF"s, "\xE0\x9F\xBF"s, "\xF0\x8F\xBF\xBF"s, "\xED\xA0\x80"s,
             "\xED\xBF\xBF"s, "\xF4\x90\x80\x80"s, "\xF8\x88\x80\x80\x80"s, "\xFF"s, "\xC2"s, "\xE2\x82"s,
             "\xF0\x9F\x98"s, "\xC2\0\x80"s, "\xC2\x41"s, "\xE2\xC2\x80"s}) {
        EXPECT_EQ(Str8ToStr16("a" + text), u"") << testing::PrintToString(text);
    }
    for (const std::u16string& text : {std::u16string{0xD800}, {0xDBFF, 0x61}, {0xDC00}, {0xDC00, 0xDFFF},
             {0xD800, 0xD800, 0xDC00}, {0xD800, 0xE000}, {0xD800, 0, 0xDC00}}) {
        EXPECT_EQ(Str16ToStr8(u"a" + text), "") << testing::PrintToString(text);
    }
}

} // namespace
