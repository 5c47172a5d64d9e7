// SPDX-License-Identifier: Apache-2.0
#include "string_ex.h"

#include <cstddef>

namespace OHOS {
namespace {

constexpr char32_t FIRST_HIGH_SURROGATE = 0xD800;
constexpr char32_t FIRST_LOW_SURROGATE = 0xDC00;
constexpr char32_t LAST_SURROGATE = 0xDFFF;
constexpr char32_t FIRST_SUPPLEMENTARY = 0x10000;
constexpr char32_t LAST_CODE_POINT = 0x10FFFF;
constexpr unsigned SURROGATE_BITS = 10;
constexpr char32_t SURROGATE_MASK = 0x3FF;
constexpr unsigned TAIL_BITS = 6;
constexpr char32_t TAIL_MASK = 0x3F;

bool IsSurrogate(char32_t point)
{
    return point >= FIRST_HIGH_SURROGATE && point <= LAST_SURROGATE;
}

// The forms of a code point in UTF-8: the least code point that needs the form, how many bytes follow the first one,
// which bits of the first one name the form, and how they are set.
struct Form {
    char32_t least;
    unsigned tails;
    unsigned char mask;
    unsigned char lead;
};
constexpr Form FORMS[] = {{0, 0, 0x80, 0x00}, {0x80, 1, 0xE0, 0xC0}, {0x800, 2, 0xF0, 0xE0}, {0x10000, 3, 0xF8, 0xF0}};

// Reads the code point at `at` and moves `at` behind it. False if it is malformed.
bool TakeUtf8(const std::string& text, size_t& at, char32_t& point)
{
    const auto first = static_cast<unsigned char>(text[at++]);
    for (const Form& form : FORMS) {
        if ((first & form.mask) != form.lead) {
            continue;
        }
        point = first & static_cast<unsigned char>(~form.mask);
        for (unsigned i = 0; i < form.tails; i++, at++) {
            const auto tail = static_cast<unsigned char>(at < text.size() ? text[at] : '\0');
            if ((tail & ~TAIL_MASK) != 0x80) {
                return false;
            }
            point = (point << TAIL_BITS) | (tail & TAIL_MASK);
        }
        return point >= form.least && point <= LAST_CODE_POINT && !IsSurrogate(point);
    }
    return false;
}

// Reads the code point at `at` and moves `at` behind it. False if it is a lone surrogate.
bool TakeUtf16(const std::u16string& text, size_t& at, char32_t& point)
{
    point = text[at++];
    if (!IsSurrogate(point)) {
        return true;
    }
    const char32_t low = at < text.size() ? text[at] : u'\0';
    if (point >= FIRST_LOW_SURROGATE || low < FIRST_LOW_SURROGATE || low > LAST_SURROGATE) {
        return false;
    }
    at++;
    point = FIRST_SUPPLEMENTARY + ((point & SURROGATE_MASK) << SURROGATE_BITS) + (low & SURROGATE_MASK);
    return true;
}

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
    const Form* form = FORMS;
    for (const Form& candidate : FORMS) {
        form = point >= candidate.least ? &candidate : form;
    }
    unsigned shift = form->tails * TAIL_BITS;
    text += static_cast<char>(form->lead | (point >> shift));
    while (shift > 0) {
        shift -= TAIL_BITS;
        text += static_cast<char>(0x80 | ((point >> shift) & TAIL_MASK));
    }
}

} // namespace

std::u16string Str8ToStr16(const std::string& text)
{
    std::u16string result;
    for (size_t at = 0; at < text.size() && text[at] != '\0';) {
        char32_t point = 0;
        if (!TakeUtf8(text, at, point)) {
            return {};
        }
        AppendUtf16(result, point);
    }
    return result;
}

std::string Str16ToStr8(const std::u16string& text)
{
    std::string result;
    for (size_t at = 0; at < text.size() && text[at] != u'\0';) {
        char32_t point = 0;
        if (!TakeUtf16(text, at, point)) {
            return {};
        }
        AppendUtf8(result, point);
    }
    return result;
}

} // namespace OHOS
