// SPDX-License-Identifier: Apache-2.0
#ifndef VERIFY_REQUESTS_H
#define VERIFY_REQUESTS_H

#include "report.h"
#include "service_probe.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Checks each request by itself: with good and bad input and another token; and codes that are no requests. */
void VerifyRequests(const ServiceProbe& probe, Report& report);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // VERIFY_REQUESTS_H
