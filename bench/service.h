// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_H
#define SERVICE_H

#include <cstdint>
#include <string>
#include <vector>

#include "privacy_indicator_service_intf.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

using EventListener = Privacy::PrivacyEventListenerIntf;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;

/**
 * A service that does nothing of its own, so that only the way to it and back is measured. A query by user returns as
 * many records as the user's number says, and one about durations as many as it has names. `Stub` is the stub that
 * decodes the requests.
 */
template <typename Stub>
class Service : public Stub {
public:
    int32_t RegisterPrivacyEventListener(
        const std::string& /* dataType */, const sptr<EventListener>& listener) override
    {
        return listener != nullptr ? 0 : -1;
    }

    int32_t UnregisterPrivacyEventListener(const sptr<EventListener>& listener) override
    {
        return listener != nullptr ? 0 : -1;
    }

    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<Privacy::PrivacyEventDetail>& out) override
    {
        return Append(details_, userId, out);
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t /* sensor */, std::vector<Privacy::PrivacyEventDetail>& out) override
    {
        return Append(details_, userId, out);
    }

    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& out) override
    {
        out = indicators_;
        return 0;
    }

    int32_t TurnOnIndicator(int32_t /* sensor */, const Indicator::IndicatorPosition& /* position */,
        const Indicator::IndicatorSize& /* size */, int32_t /* animationType */) override
    {
        return 0;
    }

    int32_t TurnOffIndicator(int32_t /* sensor */, int32_t /* animationType */) override { return 0; }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return listener != nullptr ? 0 : -1;
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return listener != nullptr ? 0 : -1;
    }

    int32_t GetPermissionUsageDurationSummary(
        const Record::PermissionUsageDurationQuery& query, std::vector<Record::PermissionUsageDuration>& out) override
    {
        return Append(durations_, static_cast<int32_t>(query.GetBundleNames().size()), out);
    }

    int32_t NotifyPowerEvent(int32_t /* event */) override { return 0; }

private:
    static constexpr int32_t MOST = 2000;

    template <typename T>
    static int32_t Append(const std::vector<T>& all, int32_t count, std::vector<T>& out)
    {
        out.assign(all.begin(), all.begin() + count);
        return 0;
    }

    const std::vector<Privacy::PrivacyEventDetail> details_ = Details(MOST);
    const std::vector<Indicator::IndicatorData> indicators_ = Indicators(3);
    const std::vector<Record::PermissionUsageDuration> durations_ = Durations(MOST);
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // SERVICE_H
