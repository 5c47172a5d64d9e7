// SPDX-License-Identifier: Apache-2.0
#ifndef RECEIVED_RECORDS_H
#define RECEIVED_RECORDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** A record in a parcel has at least this many bytes: its flag, an empty text and four numbers. */
constexpr size_t LEAST_RECORD_SIZE = 28;

/** At most as many records get room at once. */
constexpr size_t MOST_RESERVED = 1024;

/**
 * Makes room in `records` for the rest of `count`, which may be a lie: for no more than `parcel` can hold, and only
 * once a record was read. The vector's own growth copies every text there is, since records have no move.
 */
template <typename T>
void ReserveReceived(std::vector<T>& records, int32_t count, const Parcel& parcel)
{
    const size_t left = parcel.GetReadableBytes() / LEAST_RECORD_SIZE;
    const size_t needed = records.size() + std::min({static_cast<size_t>(std::max(count, 0)), left + 1, MOST_RESERVED});
    if (needed > records.capacity()) {
        // Twice as many at least, or a vector that many calls append to would be copied by each of them.
        records.reserve(std::max(needed, records.capacity() * 2));
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // RECEIVED_RECORDS_H
