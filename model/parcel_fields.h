// SPDX-License-Identifier: Apache-2.0
#ifndef PARCEL_FIELDS_H
#define PARCEL_FIELDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * How the fields of a record are written to a parcel and read from it. A record lists its fields once, as a tuple of
 * references; WriteFields and ReadFields take them in that order, each by the overload for its type, and stop at the
 * first that fails.
 */

/** The most entries that a list of strings may have in a parcel. */
constexpr int32_t MAX_LIST_SIZE = 999;

inline bool WriteField(Parcel& parcel, int32_t value) { return parcel.WriteInt32(value); }

inline bool WriteField(Parcel& parcel, uint32_t value) { return parcel.WriteUint32(value); }

inline bool WriteField(Parcel& parcel, int64_t value) { return parcel.WriteInt64(value); }

inline bool WriteField(Parcel& parcel, float value) { return parcel.WriteFloat(value); }

inline bool WriteField(Parcel& parcel, const std::string& value) { return parcel.WriteString(value); }

template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
bool WriteField(Parcel& parcel, Enum value)
{
    return parcel.WriteInt32(static_cast<int32_t>(value));
}

inline bool WriteField(Parcel& parcel, const std::vector<std::string>& list)
{
    const auto count = static_cast<int32_t>(list.size());
    // Contract: the count of a list that is too long is written before the list is refused.
    if (!parcel.WriteInt32(count) || count > MAX_LIST_SIZE) {
        return false;
    }
    for (const std::string& entry : list) {
        if (!parcel.WriteString(entry)) {
            return false;
        }
    }
    return true;
}

inline bool ReadField(Parcel& parcel, int32_t& value) { return parcel.ReadInt32(value); }

inline bool ReadField(Parcel& parcel, uint32_t& value) { return parcel.ReadUint32(value); }

inline bool ReadField(Parcel& parcel, int64_t& value) { return parcel.ReadInt64(value); }

inline bool ReadField(Parcel& parcel, float& value) { return parcel.ReadFloat(value); }

inline bool ReadField(Parcel& parcel, std::string& value) { return parcel.ReadString(value); }

/** A value outside the enumeration is kept as it is. */
template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
bool ReadField(Parcel& parcel, Enum& value)
{
    int32_t number = 0;
    if (!parcel.ReadInt32(number)) {
        return false;
    }
    value = static_cast<Enum>(number);
    return true;
}

/** Appends to `list`. A negative count stands for no entries. */
inline bool ReadField(Parcel& parcel, std::vector<std::string>& list)
{
    int32_t count = 0;
    if (!parcel.ReadInt32(count) || count > MAX_LIST_SIZE) {
        return false;
    }
    list.reserve(list.size() + static_cast<size_t>(std::max(count, 0)));
    for (int32_t i = 0; i < count; ++i) {
        std::string entry;
        if (!parcel.ReadString(entry)) {
            return false;
        }
        list.push_back(std::move(entry));
    }
    return true;
}

template <typename... Field>
bool WriteFields(Parcel& parcel, const std::tuple<const Field&...>& fields)
{
    return std::apply([&parcel](const auto&... field) { return (WriteField(parcel, field) && ...); }, fields);
}

template <typename... Field>
bool ReadFields(Parcel& parcel, const std::tuple<Field&...>& fields)
{
    return std::apply([&parcel](auto&... field) { return (ReadField(parcel, field) && ...); }, fields);
}

/**
 * Reads the fields of `record`, which may be null, and hands it to the caller; null if one cannot be read. `fieldsOf`
 * is the function that lists them.
 */
template <typename Record, typename Fields>
Record* ReadRecord(Parcel& parcel, std::unique_ptr<Record> record, Fields fieldsOf(Record&))
{
    return record != nullptr && ReadFields(parcel, fieldsOf(*record)) ? record.release() : nullptr;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PARCEL_FIELDS_H
