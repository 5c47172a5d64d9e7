// SPDX-License-Identifier: Apache-2.0
#ifndef CALLS_H
#define CALLS_H

#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** Prints the figures of the calls and the queries between processes. On a bus; `programs` is where the others are. */
void MeasureCalls(const std::string& programs);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // CALLS_H
