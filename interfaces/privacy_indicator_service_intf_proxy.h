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
 * The caller's side of the service. iface_cast<PrivacyIndicatorServiceIntf> makes one from the service's remote object,
 * which the proxy holds as long as it lives.
 *
 * Every operation blocks until the service has replied, however long that takes. A failure is logged once and returned.
 * A query that fails at one of the reply's records leaves the records before it in the vector. Nothing is kept between
 * calls and no lock is held, so that any number of threads may call at once.
 */
class PRIVACY_INDICATOR_EXPORT PrivacyIndicatorServiceIntfProxy : public IRemoteProxy<PrivacyIndicatorServiceIntf> {
public:
    /** `remote` is the service; if it is null, every operation returns INVALID_DATA. */
    explicit PrivacyIndicatorServiceIntfProxy(const sptr<IRemoteObject>& remote);
    ~PrivacyIndicatorServiceIntfProxy() override = default;

    /** @{ As in the interface. A listener that is null gives INVALID_DATA. */
    int32_t RegisterPrivacyEventListener(const std::string& dataType,
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) noexcept override;
    int32_t UnregisterPrivacyEventListener(
        const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) noexcept override;
    int32_t GetPrivacyEventDetails(
        int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept override;
    int32_t GetPrivacyEventDetailsByPrivacySensorType(int32_t userId, int32_t privacySensorType,
        std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept override;
    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) noexcept override;
    int32_t TurnOnIndicator(int32_t privacySensorType, const Indicator::IndicatorPosition& indicatorPosition,
        const Indicator::IndicatorSize& indicatorSize, int32_t animationType) noexcept override;
    int32_t TurnOffIndicator(int32_t privacySensorType, int32_t animationType) noexcept override;
    int32_t RegisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) noexcept override;
    int32_t UnregisterPrivacyIndicatorSwitchListener(
        const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) noexcept override;
    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
        std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) noexcept override;
    int32_t NotifyPowerEvent(int32_t event) noexcept override;
    /** @} */

private:
    static BrokerDelegator<PrivacyIndicatorServiceIntfProxy> delegator_;

    const int32_t vectorSizeLimit = 102400; // The most records that a reply may carry.
    // Contract: part of the object, though no reply carries a list or a map.
    [[maybe_unused]] const int32_t listSizeLimit = 102400;
    [[maybe_unused]] const int32_t mapSizeLimit = 102400;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // PRIVACY_INDICATOR_SERVICE_INTF_PROXY_H
