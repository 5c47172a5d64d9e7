// SPDX-License-Identifier: Apache-2.0
#ifndef RECEIVED_RECORDS_H
#define RECEIVED_RECORDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "parcel.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** A record takes at least this many bytes of a parcel: its flag, an empty text and four numbers. */
constexpr size_t MIN_RECORD_SIZE = 28;

/** Room is made for at most this many records at once. */
constexpr size_t MAX_RESERVED = 1024;

/**
 * Makes room in `records` for `count` records, which is 1 or more, of which the first one has been read from `parcel`
 * and the others follow there. The count is the sender's and may be false, so room is made for no more records than the
 * parcel can hold. Without it the vector would copy every text each time it grows, since records have no move
 * operations.
 */
template <typename T>
void ReserveReceived(std::vector<T>& records, int32_t count, const Parcel& parcel)
{
    const size_t left = parcel.GetReadableBytes() / MIN_RECORD_SIZE;
    const size_t needed = records.size() + std::min({static_cast<size_t>(count), left + 1, MAX_RESERVED});
    if (needed > records.capacity()) {
        // At least twice as many: otherwise each of many calls that append to one vector would copy it.
        records.reserve(std::max(needed, records.capacity() * 2));
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // RECEIVED_RECORDS_H
