// SPDX-License-Identifier: Apache-2.0
#include "privacy_indicator_service_intf_stub.h"

#include <string>

#include "interface_token.h"
#include "service_request.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

namespace {

using Service = PrivacyIndicatorServiceIntf;

int32_t OnRegisterPrivacyEventListener(Service& service, ServiceRequest& request)
{
    const std::string dataType = request.ReadString();
    const auto listener =
        request.ReadListener<Privacy::PrivacyEventListenerIntf>("Read [privacyEventListener] failed!");
    return request.Reply([&] { return service.RegisterPrivacyEventListener(dataType, listener); });
}

int32_t OnUnregisterPrivacyEventListener(Service& service, ServiceRequest& request)
{
    const auto listener =
        request.ReadListener<Privacy::PrivacyEventListenerIntf>("Read [privacyEventListener] failed!");
    return request.Reply([&] { return service.UnregisterPrivacyEventListener(listener); });
}

int32_t OnGetPrivacyEventDetails(Service& service, ServiceRequest& request)
{
    const int32_t userId = request.ReadInt32();
    return request.Reply<Privacy::PrivacyEventDetail>(
        [&](auto& details) { return service.GetPrivacyEventDetails(userId, details); });
}

int32_t OnGetPrivacyEventDetailsByPrivacySensorType(Service& service, ServiceRequest& request)
{
    const int32_t userId = request.ReadInt32();
    const int32_t privacySensorType = request.ReadInt32();
    return request.Reply<Privacy::PrivacyEventDetail>([&](auto& details) {
        return service.GetPrivacyEventDetailsByPrivacySensorType(userId, privacySensorType, details);
    });
}

int32_t OnGetActiveIndicators(Service& service, ServiceRequest& request)
{
    return request.Reply<Indicator::IndicatorData>(
        [&](auto& indicators) { return service.GetActiveIndicators(indicators); });
}

int32_t OnTurnOnIndicator(Service& service, ServiceRequest& request)
{
    const int32_t privacySensorType = request.ReadInt32();
    const auto position = request.ReadRecord<Indicator::IndicatorPosition>("Read [IndicatorPosition] failed!");
    const auto size = request.ReadRecord<Indicator::IndicatorSize>("Read [IndicatorSize] failed!");
    const int32_t animationType = request.ReadInt32();
    return request.Reply([&] { return service.TurnOnIndicator(privacySensorType, *position, *size, animationType); });
}

int32_t OnTurnOffIndicator(Service& service, ServiceRequest& request)
{
    const int32_t privacySensorType = request.ReadInt32();
    const int32_t animationType = request.ReadInt32();
    return request.Reply([&] { return service.TurnOffIndicator(privacySensorType, animationType); });
}

int32_t OnRegisterPrivacyIndicatorSwitchListener(Service& service, ServiceRequest& request)
{
    const auto listener = request.ReadListener<Indicator::IndicatorSwitchListenerIntf>("Read [listener] failed!");
    return request.Reply([&] { return service.RegisterPrivacyIndicatorSwitchListener(listener); });
}

int32_t OnUnregisterPrivacyIndicatorSwitchListener(Service& service, ServiceRequest& request)
{
    const auto listener = request.ReadListener<Indicator::IndicatorSwitchListenerIntf>("Read [listener] failed!");
    return request.Reply([&] { return service.UnregisterPrivacyIndicatorSwitchListener(listener); });
}

int32_t OnGetPermissionUsageDurationSummary(Service& service, ServiceRequest& request)
{
    const auto query =
        request.ReadRecord<Record::PermissionUsageDurationQuery>("Read [PermissionUsageDurationQuery] failed!");
    return request.Reply<Record::PermissionUsageDuration>(
        [&](auto& durations) { return service.GetPermissionUsageDurationSummary(*query, durations); });
}

int32_t OnNotifyPowerEvent(Service& service, ServiceRequest& request)
{
    const int32_t event = request.ReadInt32();
    return request.Reply([&] { return service.NotifyPowerEvent(event); });
}

} // namespace

int32_t PrivacyIndicatorServiceIntfStub::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (!ReadTokenOf<PrivacyIndicatorServiceIntf>(data)) {
        return TOKEN_MISMATCH;
    }
    ServiceRequest request(data, reply, vectorSizeLimit);
    switch (code) {
    case REGISTER_PRIVACY_EVENT_LISTENER:
        return OnRegisterPrivacyEventListener(*this, request);
    case UNREGISTER_PRIVACY_EVENT_LISTENER:
        return OnUnregisterPrivacyEventListener(*this, request);
    case GET_PRIVACY_EVENT_DETAILS:
        return OnGetPrivacyEventDetails(*this, request);
    case GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE:
        return OnGetPrivacyEventDetailsByPrivacySensorType(*this, request);
    case GET_ACTIVE_INDICATORS:
        return OnGetActiveIndicators(*this, request);
    case TURN_ON_INDICATOR:
        return OnTurnOnIndicator(*this, request);
    case TURN_OFF_INDICATOR:
        return OnTurnOffIndicator(*this, request);
    case REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER:
        return OnRegisterPrivacyIndicatorSwitchListener(*this, request);
    case UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER:
        return OnUnregisterPrivacyIndicatorSwitchListener(*this, request);
    case GET_PERMISSION_USAGE_DURATION_SUMMARY:
        return OnGetPermissionUsageDurationSummary(*this, request);
    case NOTIFY_POWER_EVENT:
        return OnNotifyPowerEvent(*this, request);
    default:
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
