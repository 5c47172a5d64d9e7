// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_VALUES_H
#define PRIVACY_EVENT_VALUES_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * The data type under which listeners are called when the use of a sensor begins or ends. The client uses it itself
 * when the service goes away; which other data types there are, only the service knows.
 */
inline constexpr char SENSOR_STATE_CHANGE[] = "sensorStateChange";

/**
 * The access state of a sensor that is not in use any more: the client reports it for every sensor when the service
 * goes away. What any other access state stands for is the service's own.
 */
inline constexpr int32_t ACCESS_STATE_OFF = 2;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_VALUES_H
