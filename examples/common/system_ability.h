// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_H
#define SYSTEM_ABILITY_H

#include "if_system_ability_manager.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The system ability manager. Null, and a line on stderr, if OHOS_BUS_ADDRESS does not lead to it. */
sptr<ISystemAbilityManager> FindManager();

/** The privacy indicator service. Null if there is none at the moment. Does not ask the service itself. */
sptr<PrivacyIndicatorServiceIntf> FindService(ISystemAbilityManager& manager);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // SYSTEM_ABILITY_H
