// SPDX-License-Identifier: Apache-2.0
#ifndef DETAIL_H
#define DETAIL_H

#include <string>
#include <vector>

#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** The peers' own record: PrivacyEventDetail's fields without what makes that a platform's object. */
struct Detail {
    std::string bundleName;
    int32_t uid = 0;
    int32_t sensor = 0;
    int64_t begin = 0;
    int64_t realEnd = 0;
    int64_t shownEnd = 0;
    int32_t realState = 0;
    int32_t shownState = 0;
    uint32_t flags = 0;
};

/** What the peers' services answer with. */
inline const std::vector<Detail>& AllDetails()
{
    static const std::vector<Detail> all = [] {
        std::vector<Detail> details;
        for (const auto& detail : Details(2000)) {
            details.push_back({detail.bundleName, detail.uid, detail.privacySensorType, detail.startTimestamp,
                detail.realEndTimestamp, detail.showEndTimestamp, detail.realAccessState, detail.showAccessState,
                detail.eventFlags});
        }
        return details;
    }();
    return all;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // DETAIL_H
