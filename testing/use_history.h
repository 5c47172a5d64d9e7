// SPDX-License-Identifier: Apache-2.0
#ifndef USE_HISTORY_H
#define USE_HISTORY_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "permission_usage_duration.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_detail.h"
#include "privacy_event_values.h"
#include "privacy_sensor_type.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

/** An application's use of a sensor. */
struct SensorUse {
    PrivacySensorType sensor;
    std::string bundleName;
    int32_t uid;
};

/** The access states that InMemoryService writes into records. */
enum AccessState : int32_t { ACCESS_BEGUN = 1, ACCESS_ENDED = Privacy::ACCESS_STATE_OFF };

/**
 * Which applications used which sensor, and when: the latest MAX_USES uses. A use that has not ended is always kept; to
 * make room, the oldest one that has ended is dropped. All times are milliseconds since the epoch, by the system's
 * clock. Not thread-safe.
 */
class UseHistory {
public:
    // Together they keep every answer within what a parcel holds. The caller of Begin checks the name's length.
    static constexpr size_t MAX_USES = 1000;
    static constexpr size_t MAX_BUNDLE_NAME = 127;

    static constexpr int32_t ALL_USERS = -1;

    /** False if this use has begun already, or if as many are under way as the history holds. */
    bool Begin(const SensorUse& use);

    /** False if this use has not begun. */
    bool End(const SensorUse& use);

    bool IsInUse(PrivacySensorType sensor) const;

    /**
     * Appends the uses by applications of one user (their uid / 200000) or of ALL_USERS; of one sensor, if one
     * is given. Oldest first; both ends of a use under way are 0.
     */
    void AppendDetails(int32_t userId, std::optional<PrivacySensorType> sensor,
        std::vector<Privacy::PrivacyEventDetail>& details) const;

    /**
     * Appends an entry for each application and permission group, which are the sensors' names, ordered by
     * application. An empty list of names or groups in the query stands for all, and an end of 0 for no end. Counted is
     * what lies within the query's range, in milliseconds, 2147483647 at most; an application that did not use the
     * sensor in that range has no entry. The last begin and end are those of its latest use in the range, whole; of a
     * use under way, the end is 0.
     */
    void AppendUsage(const Record::PermissionUsageDurationQuery& query,
        std::vector<Record::PermissionUsageDuration>& durations) const;

private:
    std::deque<Privacy::PrivacyEventDetail>::iterator FindUnderWay(const SensorUse& use);

    std::deque<Privacy::PrivacyEventDetail> uses_; // In the order of their begin.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing

#endif // USE_HISTORY_H
