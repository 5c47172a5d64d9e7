// SPDX-License-Identifier: Apache-2.0
#ifndef SAMPLES_H
#define SAMPLES_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "indicator_data.h"
#include "permission_usage_duration.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_detail.h"
#include "privacy_event_remind_info.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** An application's name, of 30 bytes. */
inline std::string Name(int32_t number)
{
    char name[31];
    std::snprintf(name, sizeof(name), "com.example.application.n%05d", number % 100000);
    return name;
}

inline std::vector<Privacy::PrivacyEventDetail> Details(int32_t count)
{
    constexpr int64_t BEGIN = 1700000000000;
    std::vector<Privacy::PrivacyEventDetail> details(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        auto& detail = details[static_cast<size_t>(i)];
        detail.bundleName = Name(i);
        detail.uid = 20010000 + i;
        detail.privacySensorType = i % 3;
        detail.startTimestamp = BEGIN + i;
        detail.realEndTimestamp = BEGIN + 2 * int64_t{i};
        detail.showEndTimestamp = BEGIN + 2 * int64_t{i};
        detail.realAccessState = 1;
        detail.showAccessState = 1;
        detail.eventFlags = 7;
    }
    return details;
}

inline std::vector<Indicator::IndicatorData> Indicators(int32_t count)
{
    std::vector<Indicator::IndicatorData> indicators(static_cast<size_t>(count));
    for (auto& indicator : indicators) {
        indicator.color = "#00ff00";
    }
    return indicators;
}

inline std::vector<Record::PermissionUsageDuration> Durations(int32_t count)
{
    std::vector<Record::PermissionUsageDuration> durations(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        durations[static_cast<size_t>(i)].SetBundleName(Name(i));
        durations[static_cast<size_t>(i)].SetPermissionGroup("CAMERA");
    }
    return durations;
}

inline Record::PermissionUsageDurationQuery Query(int32_t names)
{
    std::vector<std::string> bundleNames(static_cast<size_t>(names));
    for (int32_t i = 0; i < names; ++i) {
        bundleNames[static_cast<size_t>(i)] = Name(i);
    }
    Record::PermissionUsageDurationQuery query;
    query.SetBundleNames(bundleNames);
    query.SetPermissionGroups({"CAMERA"});
    return query;
}

inline std::vector<Privacy::PrivacyEventRemindInfo> RemindInfos(int32_t count)
{
    std::vector<Privacy::PrivacyEventRemindInfo> infos(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        infos[static_cast<size_t>(i)].bundleName = Name(i);
        infos[static_cast<size_t>(i)].uid = 20010000 + i;
    }
    return infos;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // SAMPLES_H
