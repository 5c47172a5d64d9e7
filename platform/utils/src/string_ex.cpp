// SPDX-License-Identifier: Apache-2.0
#include "string_ex.h"

#include <algorithm>
#include <cstddef>

namespace OHOS {
namespace {

constexpr char32_t FIRST_HIGH_SURROGATE = 0xD800;
constexpr char32_t FIRST_LOW_SURROGATE = 0xDC00;
constexpr char32_t LAST_SURROGATE = 0xDFFF;
constexpr char32_t FIRST_SUPPLEMENTARY = 0x10000;
constexpr unsigned SURROGATE_BITS = 10;
constexpr char32_t SURROGATE_MASK = 0x3FF;
constexpr unsigned TAIL_BITS = 6;
constexpr char32_t TAIL_MASK = 0x3F;

// The forms of a code point in UTF-8, by the number of bytes that follow the lead byte: the least lead byte, the bits
// of it that belong to the code point, and the least code point that needs the form.
struct Form {
    unsigned char lead;
    unsigned char mask;
    char32_t least;
};
constexpr Form FORMS[] = {{0, 0xFF, 0}, {0xC0, 0x1F, 0x80}, {0xE0, 0x0F, 0x800}, {0xF0, 0x07, FIRST_SUPPLEMENTARY}};
constexpr size_t MOST_TAILS = 3;

void AppendUtf16(std::u16string& text, char32_t point)
{
    if (point < FIRST_SUPPLEMENTARY) {
        text += static_cast<char16_t>(point);
        return;
    }
    point -= FIRST_SUPPLEMENTARY;
    text += static_cast<char16_t>(FIRST_HIGH_SURROGATE + (point >> SURROGATE_BITS));
    text += static_cast<char16_t>(FIRST_LOW_SURROGATE + (point & SURROGATE_MASK));
}

void AppendUtf8(std::string& text, char32_t point)
{
    size_t tails = 0;
    while (tails < MOST_TAILS && point >= FORMS[tails + 1].least) {
        tails++;
    }
    size_t shift = tails * TAIL_BITS;
    text += static_cast<char>(FORMS[tails].lead | (point >> shift));
    while (shift > 0) {
        shift -= TAIL_BITS;
        text += static_cast<char>(0x80 | ((point >> shift) & TAIL_MASK));
    }
}

} // namespace

std::u16string Str8ToStr16(const std::string& text)
{
    std::u16string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at++]);
        size_t tails = 0;
        while (tails < MOST_TAILS && lead >= FORMS[tails + 1].lead) {
            tails++;
        }
        if (tails > text.size() - at) {
            return {};
        }
        char32_t point = lead & FORMS[tails].mask;
        for (const size_t end = at + tails; at < end; at++) {
            point = (point << TAIL_BITS) | (static_cast<unsigned char>(text[at]) & TAIL_MASK);
        }
        AppendUtf16(result, point);
    }
    // A NUL may also come of two bytes or more.
    result.resize(std::min(result.find(u'\0'), result.size()));
    return result;
}

std::string Str16ToStr8(const std::u16string& text)
{
    std::string result;
    for (size_t at = 0; at < text.size() && text[at] != u'\0'; at++) {
        char32_t point = text[at];
        if (point >= FIRST_HIGH_SURROGATE && point <= LAST_SURROGATE) {
            const char32_t low = at + 1 < text.size() ? text[at + 1] : u'\0';
            if (point >= FIRST_LOW_SURROGATE || low < FIRST_LOW_SURROGATE || low > LAST_SURROGATE) {
                continue;
            }
            at++;
            point = FIRST_SUPPLEMENTARY + ((point & SURROGATE_MASK) << SURROGATE_BITS) + (low & SURROGATE_MASK);
        }
        AppendUtf8(result, point);
    }
    return result;
}

} // namespace OHOS
