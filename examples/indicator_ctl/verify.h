// SPDX-License-Identifier: Apache-2.0
#ifndef VERIFY_H
#define VERIFY_H

#include "iremote_object.h"
#include "output.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Sends the service what its callers may send, and what they should not, and prints for each check the reply and
 * whether it is as it should be. Shows and hides one indicator that is off, reports the power event 0, and registers
 * listeners, also of processes that it starts and ends. Returns whether everything was as it should be. Takes some
 * seconds, and up to a minute with a service that does not answer.
 */
bool Verify(const sptr<IRemoteObject>& service, Format format);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // VERIFY_H
