// SPDX-License-Identifier: Apache-2.0
// Text from UTF-8 to UTF-16 and back.
// Covers: platform/utils/src/string_ex.cpp
#include "string_ex.h"

#include "input.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

// The sequences that are well-formed, by their first byte: how many bytes follow, and what the second one may be.
struct Sequences {
    uint8_t first;
    uint8_t last;
    size_t tails;
    uint8_t leastSecond;
    uint8_t greatestSecond;
};
constexpr Sequences WELL_FORMED[] = {{0x00, 0x7F, 0, 0, 0}, {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF}, {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F}};

bool IsBetween(char byte, uint8_t least, uint8_t greatest)
{
    return static_cast<uint8_t>(byte) >= least && static_cast<uint8_t>(byte) <= greatest;
}

size_t SequenceAt(const std::string& text, size_t at)
{
    for (const Sequences& form : WELL_FORMED) {
        if (IsBetween(text[at], form.first, form.last)) {
            bool isWhole = at + form.tails < text.size();
            isWhole = isWhole && (form.tails == 0 || IsBetween(text[at + 1], form.leastSecond, form.greatestSecond));
            for (size_t i = 2; isWhole && i <= form.tails; ++i) {
                isWhole = IsBetween(text[at + i], 0x80, 0xBF);
            }
            return isWhole ? form.tails + 1 : 0;
        }
    }
    return 0;
}

bool IsWellFormed(const std::string& text)
{
    size_t length = 1;
    for (size_t at = 0; length > 0 && at < text.size(); at += length) {
        length = SequenceAt(text, at);
    }
    return length > 0;
}

bool IsWellFormed(const std::u16string& text)
{
    bool isPairOpen = false;
    for (const char16_t unit : text) {
        const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
        if (isLow != isPairOpen) {
            return false;
        }
        isPairOpen = unit >= 0xD800 && unit <= 0xDBFF;
    }
    return !isPairOpen;
}

template <typename Text, typename There, typename Back>
void Check(const Text& text, const There& there, const Back& back)
{
    const Text upToNul = text.substr(0, text.find(typename Text::value_type()));
    const auto converted = there(text);
    Require(IsWellFormed(converted), "a conversion's result is well-formed");
    Require(back(converted) == (IsWellFormed(upToNul) ? upToNul : Text()), "text comes back, unless it is malformed");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    if (input.Byte() % 2 == 0) {
        Check(input.Rest(), Str8ToStr16, Str16ToStr8);
    } else {
        const Bytes bytes = input.Rest();
        std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
        Check(text, Str16ToStr8, Str8ToStr16);
    }
    return 0;
}
