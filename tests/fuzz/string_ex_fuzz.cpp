// SPDX-License-Identifier: Apache-2.0
// Text from UTF-8 to UTF-16 and back, beside a second account of both.
// Covers: platform/utils/src/string_ex.cpp
#include "string_ex.h"

#include "input.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

std::u16string Wide(const std::string& text)
{
    std::u16string wide;
    for (size_t at = 0; at < text.size();) {
        const Bytes rest = text.substr(at);
        const unsigned lead = static_cast<uint8_t>(rest[0]);
        const unsigned size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (rest.size() < size) {
            return u"";
        }
        unsigned point = size == 1 ? lead : lead % (0x80 >> size);
        for (unsigned i = 1; i < size; ++i) {
            point = point * 64 + static_cast<uint8_t>(rest[i]) % 64;
        }
        wide += static_cast<char16_t>(point >= 0x10000 ? 0xD7C0 + point / 1024 : point);
        wide += point >= 0x10000 ? std::u16string(1, static_cast<char16_t>(0xDC00 + point % 1024)) : u"";
        at += size;
    }
    return wide.substr(0, wide.find(u'\0'));
}

std::string Narrow(const std::u16string& text)
{
    std::string narrow;
    unsigned high = 0; // The unit before, if it may begin a pair.
    for (const char16_t unit : text.substr(0, text.find(u'\0'))) {
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        if (!isHigh && (!isLow || high != 0)) {
            const unsigned point = isLow ? 0x10000 + (high - 0xD800) * 1024 + (unit - 0xDC00U) : unit;
            const unsigned tails = point < 0x80 ? 0 : point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
            const unsigned leads[] = {0, 0xC0, 0xE0, 0xF0};
            narrow += static_cast<char>(leads[tails] + (point >> 6 * tails));
            for (unsigned i = tails; i > 0; --i) {
                narrow += static_cast<char>(0x80 + (point >> 6 * (i - 1)) % 64);
            }
        }
        high = isHigh ? unit : 0;
    }
    return narrow;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const bool isNarrow = input.Byte() % 2 == 0;
    const Bytes bytes = input.Rest();
    std::u16string wide(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(wide.data(), bytes.data(), wide.size() * sizeof(char16_t));
    Require(!isNarrow || Str8ToStr16(bytes) == Wide(bytes), "UTF-8 becomes what its bytes say");
    Require(isNarrow || Str16ToStr8(wide) == Narrow(wide), "UTF-16 becomes what its units say");
    return 0;
}
