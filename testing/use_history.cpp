// SPDX-License-Identifier: Apache-2.0
#include "use_history.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <tuple>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

using Privacy::PrivacyEventDetail;
using Record::PermissionUsageDuration;

namespace {

constexpr int32_t UIDS_PER_USER = 200000;

int64_t Now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

const char* GroupOf(int32_t sensor)
{
    static constexpr const char* GROUPS[] = {"camera", "microphone", "location"};
    return GROUPS[sensor];
}

bool IsUnderWay(const PrivacyEventDetail& use) { return use.realEndTimestamp == 0; }

bool Admits(const std::set<std::string>& names, const std::string& name)
{
    return names.empty() || names.count(name) > 0;
}

} // namespace

bool UseHistory::Begin(const SensorUse& use)
{
    if (FindUnderWay(use) != uses_.end()) {
        return false;
    }
    if (uses_.size() == MAX_USES) {
        const auto oldest = std::find_if_not(uses_.begin(), uses_.end(), IsUnderWay);
        if (oldest == uses_.end()) {
            return false;
        }
        uses_.erase(oldest);
    }
    PrivacyEventDetail& begun = uses_.emplace_back();
    begun.bundleName = use.bundleName;
    begun.uid = use.uid;
    begun.privacySensorType = static_cast<int32_t>(use.sensor);
    begun.startTimestamp = Now();
    begun.realAccessState = ACCESS_BEGUN;
    begun.showAccessState = ACCESS_BEGUN;
    return true;
}

bool UseHistory::End(const SensorUse& use)
{
    const auto ended = FindUnderWay(use);
    if (ended == uses_.end()) {
        return false;
    }
    // The clock may have been set back meanwhile.
    ended->realEndTimestamp = std::max(Now(), ended->startTimestamp);
    ended->showEndTimestamp = ended->realEndTimestamp;
    ended->realAccessState = ACCESS_ENDED;
    ended->showAccessState = ACCESS_ENDED;
    return true;
}

bool UseHistory::IsInUse(PrivacySensorType sensor) const
{
    return std::any_of(uses_.begin(), uses_.end(), [sensor](const PrivacyEventDetail& use) {
        return use.privacySensorType == static_cast<int32_t>(sensor) && IsUnderWay(use);
    });
}

void UseHistory::AppendDetails(
    int32_t userId, std::optional<PrivacySensorType> sensor, std::vector<PrivacyEventDetail>& details) const
{
    std::copy_if(uses_.begin(), uses_.end(), std::back_inserter(details), [&](const PrivacyEventDetail& use) {
        return (userId == ALL_USERS || use.uid / UIDS_PER_USER == userId) &&
               (!sensor || use.privacySensorType == static_cast<int32_t>(*sensor));
    });
}

void UseHistory::AppendUsage(
    const Record::PermissionUsageDurationQuery& query, std::vector<PermissionUsageDuration>& durations) const
{
    const int64_t now = Now();
    const int64_t rangeBegin = query.GetBeginTimestamp();
    const int64_t rangeEnd =
        query.GetEndTimestamp() == 0 ? std::numeric_limits<int64_t>::max() : query.GetEndTimestamp();
    const std::set<std::string> names(query.GetBundleNames().begin(), query.GetBundleNames().end());
    const std::set<std::string> groups(query.GetPermissionGroups().begin(), query.GetPermissionGroups().end());
    std::map<std::tuple<std::string, int32_t, std::string>, PermissionUsageDuration> entries;
    for (const auto& use : uses_) {
        const std::string group = GroupOf(use.privacySensorType);
        const int64_t useEnd = IsUnderWay(use) ? std::max(now, use.startTimestamp) : use.realEndTimestamp;
        if (!Admits(names, use.bundleName) || !Admits(groups, group) || useEnd < rangeBegin ||
            use.startTimestamp > rangeEnd) {
            continue;
        }
        PermissionUsageDuration& entry = entries[{use.bundleName, use.uid, group}];
        const int64_t inRange = std::min(useEnd, rangeEnd) - std::max(use.startTimestamp, rangeBegin);
        const int64_t total =
            std::min<int64_t>(entry.GetUsageDuration() + inRange, std::numeric_limits<int32_t>::max());
        entry.SetBundleName(use.bundleName);
        entry.SetUid(use.uid);
        entry.SetPermissionGroup(group);
        entry.SetUsageDuration(static_cast<int32_t>(total));
        entry.SetLastBeginTimestamp(use.startTimestamp);
        entry.SetLastEndTimestamp(use.realEndTimestamp);
    }
    for (const auto& [key, entry] : entries) {
        durations.push_back(entry);
    }
}

std::deque<PrivacyEventDetail>::iterator UseHistory::FindUnderWay(const SensorUse& use)
{
    return std::find_if(uses_.begin(), uses_.end(), [&use](const PrivacyEventDetail& other) {
        return IsUnderWay(other) && other.privacySensorType == static_cast<int32_t>(use.sensor) &&
               other.bundleName == use.bundleName && other.uid == use.uid;
    });
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing
