// SPDX-License-Identifier: Apache-2.0
#include "string_ex.h"

#include <algorithm>
#include <cstddef>

namespace OHOS {
namespace {

constexpr char32_t HIGH_SURROGATES = 0xD800; // Where these begin, the low ones begin, and those end.
constexpr char32_t LOW_SURROGATES = 0xDC00;
constexpr char32_t SURROGATES_END = 0xE000;
constexpr char32_t SUPPLEMENTARY = 0x10000; // The first code point that takes two units of UTF-16.

// How a first byte of UTF-8 begins, by the number of bytes that follow it.
constexpr unsigned char LEADS[] = {0, 0xC0, 0xE0, 0xF0};

} // namespace

std::u16string Str8ToStr16(const std::string& text)
{
    std::u16string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at++]);
        const size_t tails = lead < LEADS[1] ? 0 : lead < LEADS[2] ? 1 : lead < LEADS[3] ? 2 : 3;
        if (tails > text.size() - at) {
            return {};
        }
        char32_t point = tails == 0 ? lead : lead & (0x3Fu >> tails);
        for (const size_t end = at + tails; at < end; at++) {
            point = (point << 6) | (static_cast<unsigned char>(text[at]) & 0x3Fu);
        }
        if (point < SUPPLEMENTARY) {
            result += static_cast<char16_t>(point);
        } else {
            point -= SUPPLEMENTARY;
            result += static_cast<char16_t>(HIGH_SURROGATES + (point >> 10));
            result += static_cast<char16_t>(LOW_SURROGATES + (point & 0x3FF));
        }
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
        if (point >= HIGH_SURROGATES && point < SURROGATES_END) {
            const char32_t low = text[at + 1]; // At the end a NUL.
            if (point >= LOW_SURROGATES || low < LOW_SURROGATES || low >= SURROGATES_END) {
                continue;
            }
            at++;
            point = SUPPLEMENTARY + ((point & 0x3FF) << 10) + (low & 0x3FF);
        }
        size_t tails = point < 0x80 ? 0 : point < 0x800 ? 1 : point < SUPPLEMENTARY ? 2 : 3;
        result += static_cast<char>(LEADS[tails] | (point >> 6 * tails));
        while (tails-- > 0) {
            result += static_cast<char>(0x80 | ((point >> 6 * tails) & 0x3F));
        }
    }
    return result;
}

} // namespace OHOS
