// SPDX-License-Identifier: Apache-2.0
#ifndef WIRE_H
#define WIRE_H

#include <cstdint>
#include <string>

#include "message_parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** What a parcel must hold, item by item and put together without one: I32(2) + Str("x"). */
using Bytes = std::string;

template <typename T>
Bytes Number(T value)
{
    Bytes bytes;
    for (size_t i = 0; i < sizeof(value); ++i) {
        bytes += static_cast<char>(static_cast<uint64_t>(value) >> (8 * i));
    }
    return bytes;
}

inline Bytes I32(int64_t value) { return Number(static_cast<int32_t>(value)); }

inline Bytes I64(int64_t value) { return Number(value); }

inline Bytes Padded(const Bytes& bytes) { return bytes + Bytes((4 - bytes.size() % 4) % 4, '\0'); }

inline Bytes Str(const std::string& text) { return I32(static_cast<int64_t>(text.size())) + Padded(text + '\0'); }

inline Bytes Str16(const std::u16string& text)
{
    Bytes units;
    for (const char16_t unit : text + u'\0') {
        units += Number(unit);
    }
    return I32(static_cast<int64_t>(text.size())) + Padded(units);
}

inline Bytes Token(const std::u16string& descriptor) { return I32(0x100) + I32(0) + Str16(descriptor); }

inline Bytes Times(int count, const Bytes& bytes)
{
    Bytes all;
    for (int i = 0; i < count; ++i) {
        all += bytes;
    }
    return all;
}

inline Bytes BytesOf(const Parcel& parcel)
{
    return {reinterpret_cast<const char*>(parcel.GetData()), parcel.GetDataSize()}; // NOLINT(performance-no-int-to-ptr)
}

template <typename T>
Bytes Marshalled(const T& record)
{
    MessageParcel parcel;
    record.Marshalling(parcel);
    return BytesOf(parcel);
}

/** A parcel that holds `bytes` as if they came from outside: any number of them, without padding at the end. */
class RawParcel : public MessageParcel {
public:
    explicit RawParcel(const Bytes& bytes = "")
    {
        SetMaxCapacity(bytes.size() + 4);
        WriteBuffer(bytes.data(), bytes.size());
        Truncate(bytes.size());
    }

    using Parcel::Extend;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // WIRE_H
