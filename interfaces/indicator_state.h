// SPDX-License-Identifier: Apache-2.0
#ifndef INDICATOR_STATE_H
#define INDICATOR_STATE_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

/** Whether an indicator is shown. Another value that comes from the service is carried unchanged. */
enum class IndicatorState : int32_t { ON, OFF };

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator

#endif // INDICATOR_STATE_H
