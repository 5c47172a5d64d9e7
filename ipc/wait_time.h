// SPDX-License-Identifier: Apache-2.0
#ifndef WAIT_TIME_H
#define WAIT_TIME_H

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The wait time of every request and callback, in seconds. */
constexpr int WAIT_SECONDS = 8;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // WAIT_TIME_H
