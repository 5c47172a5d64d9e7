// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_EVENT_VALUES_H
#define PRIVACY_EVENT_VALUES_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

/**
 * The data type under which the client reports, when the service goes away, that every sensor is off. A service should
 * report the begin and the end of a sensor's use under it. What other data types there are is up to the service.
 */
inline constexpr char SENSOR_STATE_CHANGE[] = "sensorStateChange";

/**
 * The access state of a sensor that is not in use any more: the client reports it for every sensor when the service
 * goes away. A service should use it in its PrivacyEventDetail records, too. What any other access state stands for is
 * up to the service.
 */
inline constexpr int32_t ACCESS_STATE_OFF = 2;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy

#endif // PRIVACY_EVENT_VALUES_H
