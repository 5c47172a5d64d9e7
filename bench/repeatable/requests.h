// SPDX-License-Identifier: Apache-2.0
#ifndef REQUESTS_H
#define REQUESTS_H

#include <functional>
#include <string>
#include <vector>

#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_event_values.h"
#include "service.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** A request by name, ready to be sent as often as one likes. False if it fails. */
struct Request {
    std::string name;
    std::function<bool(PrivacyIndicatorServiceIntf&)> send;
};

/** The eleven requests; queries and their replies are of `recordCount` records. */
inline std::vector<Request> Requests(int32_t recordCount)
{
    using Intf = PrivacyIndicatorServiceIntf;
    const sptr<EventListener> eventListener(new Privacy::PrivacyEventListenerStubImpl(nullptr));
    const sptr<SwitchListener> switchListener(new Indicator::IndicatorSwitchListenerStubImpl(nullptr));
    return {
        {"RegisterPrivacyEventListener",
            [=](Intf& service) {
                return service.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, eventListener) == 0;
            }},
        {"UnregisterPrivacyEventListener",
            [=](Intf& service) { return service.UnregisterPrivacyEventListener(eventListener) == 0; }},
        {"GetPrivacyEventDetails",
            [=](Intf& service) {
                std::vector<Privacy::PrivacyEventDetail> details;
                service.GetPrivacyEventDetails(recordCount, details);
                return static_cast<int32_t>(details.size()) == recordCount;
            }},
        {"GetPrivacyEventDetailsByPrivacySensorType",
            [=](Intf& service) {
                std::vector<Privacy::PrivacyEventDetail> details;
                service.GetPrivacyEventDetailsByPrivacySensorType(recordCount, 0, details);
                return static_cast<int32_t>(details.size()) == recordCount;
            }},
        {"GetActiveIndicators",
            [](Intf& service) {
                std::vector<Indicator::IndicatorData> indicators;
                return service.GetActiveIndicators(indicators) == 0 && indicators.size() == 3;
            }},
        {"TurnOnIndicator", [](Intf& service) { return service.TurnOnIndicator(0, {}, {}, 1) == 0; }},
        {"TurnOffIndicator", [](Intf& service) { return service.TurnOffIndicator(0, 1) == 0; }},
        {"RegisterPrivacyIndicatorSwitchListener",
            [=](Intf& service) { return service.RegisterPrivacyIndicatorSwitchListener(switchListener) == 0; }},
        {"UnregisterPrivacyIndicatorSwitchListener",
            [=](Intf& service) { return service.UnregisterPrivacyIndicatorSwitchListener(switchListener) == 0; }},
        {"GetPermissionUsageDurationSummary",
            [query = Query(recordCount), recordCount](Intf& service) {
                std::vector<Record::PermissionUsageDuration> durations;
                service.GetPermissionUsageDurationSummary(query, durations);
                return static_cast<int32_t>(durations.size()) == recordCount;
            }},
        {"NotifyPowerEvent", [](Intf& service) { return service.NotifyPowerEvent(1) == 0; }},
    };
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // REQUESTS_H
