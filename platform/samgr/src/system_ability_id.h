// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_ID_H
#define SYSTEM_ABILITY_ID_H

#include <cstdint>

namespace OHOS {

constexpr int32_t LAST_SYSTEM_ABILITY_ID = 0x00ffffff;

constexpr bool IsSystemAbilityId(int32_t number) { return number >= 0 && number <= LAST_SYSTEM_ABILITY_ID; }

} // namespace OHOS

#endif // SYSTEM_ABILITY_ID_H
