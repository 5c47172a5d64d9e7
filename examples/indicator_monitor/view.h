// SPDX-License-Identifier: Apache-2.0
#ifndef VIEW_H
#define VIEW_H

#include <cstdint>
#include <string>
#include <vector>

#include "indicator_data.h"
#include "privacy_event_detail.h"
#include "privacy_event_remind_info.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** What the service knew when it was asked. */
struct ServiceState {
    int32_t result = 0;                               // The first one of the requests that is not 0, else 0.
    std::vector<Indicator::IndicatorData> indicators; // Those that are on.
    std::vector<Privacy::PrivacyEventDetail> uses;    // Those under way.
};

/** Shows what happens. Everything is called on the main thread; `time` is when it happened, as Now() gives it. */
class View {
public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View() = default;

    /** The listeners have been registered. */
    virtual void OnListening() {}

    virtual void OnSwitch(int64_t time, const Indicator::IndicatorData& data) = 0;
    virtual void OnUse(
        int64_t time, const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) = 0;

    /** The service has come or has gone. */
    virtual void OnService(int64_t time, bool isThere) = 0;

    /** The state is being asked for: from now on, an event may be part of the answer already, or not. */
    virtual void OnAsking() {}

    /** The answer, or why there is none. */
    virtual void OnState(int64_t /* time */, const ServiceState& /* state */) {}
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // VIEW_H
