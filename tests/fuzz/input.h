// SPDX-License-Identifier: Apache-2.0
#ifndef INPUT_H
#define INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** Ends the process, which is a finding, unless the property holds. */
inline void Require(bool holds, const char* property)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", property);
        std::abort();
    }
}

/** What the fuzzer came up with, taken from its front. Behind its end everything is 0. */
class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    template <typename T>
    T Number()
    {
        T value{};
        const Bytes bytes = Take(sizeof(value));
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    bool IsEmpty() const
    {
        return size_ == 0;
    }

    uint8_t Byte()
    {
        return Number<uint8_t>();
    }

    /** True for one value in `values` of the next byte, the greatest ones. */
    bool OneIn(unsigned values)
    {
        return Byte() >= 256 - 256 / values;
    }

    Bytes Take(size_t size)
    {
        const size_t taken = std::min(size, size_);
        Bytes bytes(reinterpret_cast<const char*>(data_), taken);
        data_ += taken;
        size_ -= taken;
        return bytes;
    }

    Bytes Rest()
    {
        return Take(size_);
    }

private:
    const uint8_t* data_;
    size_t size_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

#endif // INPUT_H
