// SPDX-License-Identifier: Apache-2.0
#ifndef SYSTEM_ABILITY_ID_H
#define SYSTEM_ABILITY_ID_H

#include <cstdint>

namespace OHOS {

constexpr bool IsSystemAbilityId(int32_t number) { return number >= 0 && number <= 0x00ffffff; }

} // namespace OHOS

#endif // SYSTEM_ABILITY_ID_H
