// SPDX-License-Identifier: Apache-2.0
#ifndef CLOCK_TIME_H
#define CLOCK_TIME_H

#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The time of day here, to the millisecond: "15:04:05.678". Any thread may call it. */
std::string ClockTime();

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // CLOCK_TIME_H
