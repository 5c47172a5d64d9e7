// SPDX-License-Identifier: Apache-2.0
#include "parse.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

PrivacySensorType ParseSensor(const std::string& name)
{
    for (const auto sensor : {PrivacySensorType::CAMERA, PrivacySensorType::MICROPHONE, PrivacySensorType::LOCATION}) {
        if (name == NameOf(sensor)) {
            return sensor;
        }
    }
    throw ParseError("\"" + name + "\" is not a sensor: camera, microphone or location");
}

const char* NameOf(PrivacySensorType sensor)
{
    switch (sensor) {
    case PrivacySensorType::CAMERA:
        return "camera";
    case PrivacySensorType::MICROPHONE:
        return "microphone";
    case PrivacySensorType::LOCATION:
        return "location";
    default:
        return "unknown sensor";
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
