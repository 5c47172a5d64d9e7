// SPDX-License-Identifier: Apache-2.0
#ifndef VERIFY_LISTENERS_H
#define VERIFY_LISTENERS_H

#include "report.h"
#include "service_probe.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Checks what switch listeners are called with, and when they are not. No request causes a privacy event, so only the
 * registration of privacy event listeners can be checked: VerifyRequests does that.
 */
void VerifyListeners(const ServiceProbe& probe, Report& report);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // VERIFY_LISTENERS_H
