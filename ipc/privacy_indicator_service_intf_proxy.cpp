// SPDX-License-Identifier: Apache-2.0
#include "privacy_indicator_service_intf_proxy.h"

#include "service_call.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

BrokerDelegator<PrivacyIndicatorServiceIntfProxy> PrivacyIndicatorServiceIntfProxy::delegator_;

PrivacyIndicatorServiceIntfProxy::PrivacyIndicatorServiceIntfProxy(const sptr<IRemoteObject>& remote)
    : IRemoteProxy<PrivacyIndicatorServiceIntf>(remote)
{}

int32_t PrivacyIndicatorServiceIntfProxy::RegisterPrivacyEventListener(
    const std::string& dataType, const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) noexcept
{
    ServiceCall call(REGISTER_PRIVACY_EVENT_LISTENER, vectorSizeLimit);
    call.WriteString(dataType, "Write [dataType] failed!");
    call.WriteListener(
        privacyEventListener, "privacyEventListener is nullptr!", "Write [privacyEventListener] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::UnregisterPrivacyEventListener(
    const sptr<Privacy::PrivacyEventListenerIntf>& privacyEventListener) noexcept
{
    ServiceCall call(UNREGISTER_PRIVACY_EVENT_LISTENER, vectorSizeLimit);
    call.WriteListener(
        privacyEventListener, "privacyEventListener is nullptr!", "Write [privacyEventListener] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::GetPrivacyEventDetails(
    int32_t userId, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept
{
    ServiceCall call(GET_PRIVACY_EVENT_DETAILS, vectorSizeLimit);
    call.WriteInt32(userId, "Write [userId] failed!");
    return call.Send(Remote(), privacyEventDetails, "Read [PrivacyEventDetail] failed!");
}

int32_t PrivacyIndicatorServiceIntfProxy::GetPrivacyEventDetailsByPrivacySensorType(
    int32_t userId, int32_t privacySensorType, std::vector<Privacy::PrivacyEventDetail>& privacyEventDetails) noexcept
{
    ServiceCall call(GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE, vectorSizeLimit);
    call.WriteInt32(userId, "Write [userId] failed!");
    call.WriteInt32(privacySensorType, "Write [privacySensorType] failed!");
    return call.Send(Remote(), privacyEventDetails, "Read [PrivacyEventDetail] failed!");
}

int32_t PrivacyIndicatorServiceIntfProxy::GetActiveIndicators(
    std::vector<Indicator::IndicatorData>& indicators) noexcept
{
    ServiceCall call(GET_ACTIVE_INDICATORS, vectorSizeLimit);
    return call.Send(Remote(), indicators, "Read [IndicatorData] failed!");
}

int32_t PrivacyIndicatorServiceIntfProxy::TurnOnIndicator(int32_t privacySensorType,
    const Indicator::IndicatorPosition& indicatorPosition, const Indicator::IndicatorSize& indicatorSize,
    int32_t animationType) noexcept
{
    ServiceCall call(TURN_ON_INDICATOR, vectorSizeLimit);
    call.WriteInt32(privacySensorType, "Write [privacySensorType] failed!");
    call.WriteRecord(indicatorPosition, "Write [indicatorPosition] failed!");
    call.WriteRecord(indicatorSize, "Write [indicatorSize] failed!");
    call.WriteInt32(animationType, "Write [animationType] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::TurnOffIndicator(int32_t privacySensorType, int32_t animationType) noexcept
{
    ServiceCall call(TURN_OFF_INDICATOR, vectorSizeLimit);
    call.WriteInt32(privacySensorType, "Write [privacySensorType] failed!");
    call.WriteInt32(animationType, "Write [animationType] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::RegisterPrivacyIndicatorSwitchListener(
    const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) noexcept
{
    ServiceCall call(REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER, vectorSizeLimit);
    call.WriteListener(listener, "listener is nullptr!", "Write [listener] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::UnregisterPrivacyIndicatorSwitchListener(
    const sptr<Indicator::IndicatorSwitchListenerIntf>& listener) noexcept
{
    ServiceCall call(UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER, vectorSizeLimit);
    call.WriteListener(listener, "listener is nullptr!", "Write [listener] failed!");
    return call.Send(Remote());
}

int32_t PrivacyIndicatorServiceIntfProxy::GetPermissionUsageDurationSummary(
    const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
    std::vector<Record::PermissionUsageDuration>& permissionUsageDurations) noexcept
{
    ServiceCall call(GET_PERMISSION_USAGE_DURATION_SUMMARY, vectorSizeLimit);
    call.WriteRecord(permissionUsageDurationQuery, "Write [permissionUsageDurationQuery] failed!");
    return call.Send(Remote(), permissionUsageDurations, "Read [PermissionUsageDuration] failed!");
}

int32_t PrivacyIndicatorServiceIntfProxy::NotifyPowerEvent(int32_t event) noexcept
{
    ServiceCall call(NOTIFY_POWER_EVENT, vectorSizeLimit);
    call.WriteInt32(event, "Write [event] failed!");
    return call.Send(Remote());
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
