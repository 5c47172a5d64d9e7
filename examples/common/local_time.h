// SPDX-License-Identifier: Apache-2.0
#ifndef LOCAL_TIME_H
#define LOCAL_TIME_H

#include <cstdint>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Milliseconds since the epoch, by the clock that can be set. */
int64_t Now();

/** @{ A time in milliseconds since the epoch, as the local time. Any thread may call these. */
std::string TimeOfDay(int64_t time);      ///< "15:04:05"
std::string ExactTimeOfDay(int64_t time); ///< "15:04:05.678"
std::string DateAndTime(int64_t time);    ///< "2026-01-02 15:04:05"
std::string TimeWithOffset(int64_t time); ///< "2026-01-02T15:04:05.678+0100"
/** @} */

/** A duration in milliseconds: "0.250 s", "59 s", "1 min 05 s" or "2 h 00 min". */
std::string DurationText(int64_t duration);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // LOCAL_TIME_H
