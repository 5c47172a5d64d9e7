// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_SENSOR_TYPE_H
#define PRIVACY_SENSOR_TYPE_H

#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The sensors that the client knows. Another value that comes from the service is carried unchanged. */
enum class PrivacySensorType : int32_t { CAMERA, MICROPHONE, LOCATION };

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_SENSOR_TYPE_H
