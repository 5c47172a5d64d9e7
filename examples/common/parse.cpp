// SPDX-License-Identifier: Apache-2.0
#include "parse.h"

#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

PrivacySensorType ParseSensor(const std::string& name)
{
    for (const auto sensor : {PrivacySensorType::CAMERA, PrivacySensorType::MICROPHONE, PrivacySensorType::LOCATION}) {
        if (name == SensorText(sensor)) {
            return sensor;
        }
    }
    throw ParseError("\"" + name + "\" is not a sensor: camera, microphone or location");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
