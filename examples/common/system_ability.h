// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_H
#define SYSTEM_ABILITY_H

#include "if_system_ability_manager.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Has the library log nothing below `level`, as hilog names it, unless HILOG_LEVEL is set. To be called before the
 * first use of the library.
 */
void LogQuietly(const char* level = "W");

/** The system ability manager. Null, with a message on standard error, if there is none that others share. */
sptr<ISystemAbilityManager> FindManager();

/** The privacy indicator service. Null if there is none at the moment. Does not ask the service itself. */
sptr<PrivacyIndicatorServiceIntf> FindService(ISystemAbilityManager& manager);

/** The same, but waits until there is one, for as long as it takes. */
sptr<PrivacyIndicatorServiceIntf> AwaitService(ISystemAbilityManager& manager);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // SYSTEM_ABILITY_H
