// SPDX-License-Identifier: Apache-2.0
#include "verify.h"

#include "report.h"
#include "verify_listeners.h"
#include "verify_requests.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

bool Verify(const sptr<IRemoteObject>& service, Format format)
{
    Report report;
    ServiceProbe probe(service);
    VerifyRequests(probe, report);
    VerifyListeners(probe, report);
    report.PrintAll(format);
    return report.IsFaultless();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
