// SPDX-License-Identifier: Apache-2.0
#ifndef PRIVACY_INDICATOR_SERVICE_INTF_PROXY_H
#define PRIVACY_INDICATOR_SERVICE_INTF_PROXY_H

#include <cstdint>
#include <string>
#include <vector>

#include "iremote_proxy.h"
#include "privacy_indicator_export.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/**
 * The service, called from another process. Registered with the broker when the library is loaded:
 * iface_cast<PrivacyIndicatorServiceIntf> of the service's remote object makes one.
 *
 * Every operation blocks until the reply is there, for 8 seconds at most, logs its failure once and returns it. An
 * error that ends a query half-way leaves the elements read so far in the vector. Nothing is kept between calls, and
 * no lock is held: any number of threads may call at once. Keeps the remote object as long as it lives itself.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntfProxy : public IRemoteProxy<PrivacyIndicatorServiceIntf> {
public:
    /** Calls go to `remote`; if it is null, they return INVALID_DATA. */
    explicit PrivacyIndicatorServiceIntfProxy(const sptr<IRemoteObject>& remote);
    ~PrivacyIndicatorServiceIntfProxy() override = default;

    /** INVALID_DATA for a null listener, too: this and the other three need one. */
    int32_t RegisterPrivacyEventListener(
        const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) override;
    int32_t UnregisterPrivacyEventListener(
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) override;
    int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) override;
    int32_t GetPrivacyEventDetailsByPrivacySensorType(int32_t userId, int32_t privacySensorType,
        std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) override;
    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) override;
    int32_t TurnOnIndicator(int32_t privacySensorType, const Indicator::IndicatorPosition& indicatorPosition,
        const Indicator::IndicatorSize& indicatorSize, int32_t animationType) override;
    int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) override;
    int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override;
    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) override;
    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
        std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) override;
    int32_t NotifyPowerEvent(int32_t event) override;

private:
    static BrokerDelegator<PrivacyIndicatorServiceIntfProxy> delegator_;

    const int32_t vectorSizeLimit = 102400; // Elements that a reply may carry.
    // No reply carries a list or a map, so nothing consults these.
    [[maybe_unused]] const int32_t listSizeLimit = 102400;
    [[maybe_unused]] const int32_t mapSizeLimit = 102400;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_PROXY_H
