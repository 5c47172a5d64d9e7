// SPDX-License-Identifier: Apache-2.0
#include "record_json.h"

#include <nlohmann/json.hpp>

#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

Json ToJson(const Indicator::IndicatorData& data)
{
    return {
        {"sensor", SensorText(data.privacySensorType)},
        {"state", StateText(data.state)},
        {"positionX", data.positionX},
        {"positionY", data.positionY},
        {"width", data.width},
        {"height", data.height},
        {"color", data.color},
        {"animationType", data.animationType},
    };
}

Json ToJson(const Privacy::PrivacyEventDetail& detail)
{
    return {
        {"bundleName", detail.bundleName},
        {"uid", detail.uid},
        {"sensor", SensorText(detail.privacySensorType)},
        {"startTimestamp", detail.startTimestamp},
        {"realEndTimestamp", detail.realEndTimestamp},
        {"showEndTimestamp", detail.showEndTimestamp},
        {"realAccessState", detail.realAccessState},
        {"showAccessState", detail.showAccessState},
        {"eventFlags", detail.eventFlags},
    };
}

Json ToJson(const Privacy::PrivacyEventRemindInfo& info)
{
    return {
        {"bundleName", info.bundleName},
        {"uid", info.uid},
        {"sensor", SensorText(info.privacySensorType)},
        {"privacyAccessState", info.privacyAccessState},
        {"remindFlag", info.remindFlag},
    };
}

Json ToJson(const Record::PermissionUsageDuration& duration)
{
    return {
        {"bundleName", duration.GetBundleName()},
        {"uid", duration.GetUid()},
        {"permissionGroup", duration.GetPermissionGroup()},
        {"usageDuration", duration.GetUsageDuration()},
        {"lastBeginTimestamp", duration.GetLastBeginTimestamp()},
        {"lastEndTimestamp", duration.GetLastEndTimestamp()},
    };
}

std::string ToLine(const Json& object) { return object.dump(-1, ' ', true, Json::error_handler_t::replace); }

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
