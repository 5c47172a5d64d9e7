// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_SENSOR_TYPE_H
#define PRIVACY_SENSOR_TYPE_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The sensors that the callers know. Other values may come from the service, and are carried unchanged. */
enum class PrivacySensorType : int32_t { CAMERA, MICROPHONE, LOCATION };

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_SENSOR_TYPE_H
