// SPDX-License-Identifier: Apache-2.0
#ifndef BY_HAND_H
#define BY_HAND_H

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "indicator_switch_listener_intf.h"
#include "iremote_proxy.h"
#include "iremote_stub.h"
#include "message_option.h"
#include "message_parcel.h"
#include "privacy_event_listener_intf.h"
#include "privacy_indicator_service_intf.h"
#include "service.h"
#include "string_ex.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/**
 * The library's requests and callbacks with the same parcel operations, each written out where it is needed: what the
 * library's own proxies and stubs are compared with.
 */

/** One request whose reply is a result. `write` adds the arguments. */
template <typename Interface, typename Write>
int32_t SendByHand(const sptr<IRemoteObject>& remote, uint32_t code, MessageParcel& reply, const Write& write)
{
    MessageParcel data;
    if (!data.WriteInterfaceToken(Interface::GetDescriptor()) || !write(data)) {
        return PrivacyIndicatorServiceIntf::INVALID_DATA;
    }
    MessageOption option(MessageOption::TF_SYNC);
    const int32_t error = remote->SendRequest(code, data, reply, option);
    return error != 0 ? error : reply.ReadInt32();
}

template <typename T>
int32_t ReadRecordsByHand(MessageParcel& reply, std::vector<T>& records)
{
    const int32_t count = reply.ReadInt32();
    records.reserve(records.size() + static_cast<size_t>(std::clamp(count, 0, 1024))); // A sender may lie.
    for (int32_t i = 0; i < count; ++i) {
        const std::unique_ptr<T> record(reply.ReadParcelable<T>());
        if (record == nullptr) {
            return PrivacyIndicatorServiceIntf::INVALID_DATA;
        }
        records.push_back(*record);
    }
    return 0;
}

template <typename T>
int32_t WriteRecordsByHand(MessageParcel& reply, int32_t result, const std::vector<T>& records)
{
    if (!reply.WriteInt32(result) || !reply.WriteInt32(static_cast<int32_t>(records.size()))) {
        return PrivacyIndicatorServiceIntf::INVALID_DATA;
    }
    for (const T& record : records) {
        if (!reply.WriteParcelable(&record)) {
            return PrivacyIndicatorServiceIntf::INVALID_DATA;
        }
    }
    return 0;
}

class ProxyByHand : public IRemoteProxy<PrivacyIndicatorServiceIntf> {
public:
    using IRemoteProxy<PrivacyIndicatorServiceIntf>::IRemoteProxy;

    int32_t RegisterPrivacyEventListener(const std::string& dataType, const sptr<EventListener>& listener) override
    {
        return Send(REGISTER_PRIVACY_EVENT_LISTENER, [&](MessageParcel& data) {
            return data.WriteString16(Str8ToStr16(dataType)) && data.WriteRemoteObject(listener->AsObject());
        });
    }

    int32_t UnregisterPrivacyEventListener(const sptr<EventListener>& listener) override
    {
        return Send(UNREGISTER_PRIVACY_EVENT_LISTENER,
            [&](MessageParcel& data) { return data.WriteRemoteObject(listener->AsObject()); });
    }

    int32_t GetPrivacyEventDetails(int32_t userId, std::vector<Privacy::PrivacyEventDetail>& details) override
    {
        return Ask(GET_PRIVACY_EVENT_DETAILS, details, [&](MessageParcel& data) { return data.WriteInt32(userId); });
    }

    int32_t GetPrivacyEventDetailsByPrivacySensorType(
        int32_t userId, int32_t sensor, std::vector<Privacy::PrivacyEventDetail>& details) override
    {
        return Ask(GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE, details,
            [&](MessageParcel& data) { return data.WriteInt32(userId) && data.WriteInt32(sensor); });
    }

    int32_t GetActiveIndicators(std::vector<Indicator::IndicatorData>& indicators) override
    {
        return Ask(GET_ACTIVE_INDICATORS, indicators, [](MessageParcel& /* data */) { return true; });
    }

    int32_t TurnOnIndicator(int32_t sensor, const Indicator::IndicatorPosition& position,
        const Indicator::IndicatorSize& size, int32_t animationType) override
    {
        return Send(TURN_ON_INDICATOR, [&](MessageParcel& data) {
            return data.WriteInt32(sensor) && data.WriteParcelable(&position) && data.WriteParcelable(&size) &&
                   data.WriteInt32(animationType);
        });
    }

    int32_t TurnOffIndicator(int32_t sensor, int32_t animationType) override
    {
        return Send(TURN_OFF_INDICATOR,
            [&](MessageParcel& data) { return data.WriteInt32(sensor) && data.WriteInt32(animationType); });
    }

    int32_t RegisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Send(REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER,
            [&](MessageParcel& data) { return data.WriteRemoteObject(listener->AsObject()); });
    }

    int32_t UnregisterPrivacyIndicatorSwitchListener(const sptr<SwitchListener>& listener) override
    {
        return Send(UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER,
            [&](MessageParcel& data) { return data.WriteRemoteObject(listener->AsObject()); });
    }

    int32_t GetPermissionUsageDurationSummary(const Record::PermissionUsageDurationQuery& query,
        std::vector<Record::PermissionUsageDuration>& durations) override
    {
        return Ask(GET_PERMISSION_USAGE_DURATION_SUMMARY, durations,
            [&](MessageParcel& data) { return data.WriteParcelable(&query); });
    }

    int32_t NotifyPowerEvent(int32_t event) override
    {
        return Send(NOTIFY_POWER_EVENT, [&](MessageParcel& data) { return data.WriteInt32(event); });
    }

private:
    template <typename Write>
    int32_t Send(uint32_t code, const Write& write)
    {
        MessageParcel reply;
        return SendByHand<PrivacyIndicatorServiceIntf>(Remote(), code, reply, write);
    }

    template <typename T, typename Write>
    int32_t Ask(uint32_t code, std::vector<T>& records, const Write& write)
    {
        MessageParcel reply;
        const int32_t result = SendByHand<PrivacyIndicatorServiceIntf>(Remote(), code, reply, write);
        return result != 0 ? result : ReadRecordsByHand(reply, records);
    }
};

class StubByHand : public IRemoteStub<PrivacyIndicatorServiceIntf> {
public:
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (data.ReadInterfaceToken() != GetDescriptor()) {
            return TOKEN_MISMATCH;
        }
        switch (code) {
        case REGISTER_PRIVACY_EVENT_LISTENER: {
            const std::string dataType = Str16ToStr8(data.ReadString16());
            const auto listener = iface_cast<EventListener>(data.ReadRemoteObject());
            return Answer(reply, RegisterPrivacyEventListener(dataType, listener));
        }
        case UNREGISTER_PRIVACY_EVENT_LISTENER:
            return Answer(reply, UnregisterPrivacyEventListener(iface_cast<EventListener>(data.ReadRemoteObject())));
        case GET_PRIVACY_EVENT_DETAILS: {
            std::vector<Privacy::PrivacyEventDetail> details;
            const int32_t result = GetPrivacyEventDetails(data.ReadInt32(), details);
            return WriteRecordsByHand(reply, result, details);
        }
        case GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE: {
            std::vector<Privacy::PrivacyEventDetail> details;
            const int32_t userId = data.ReadInt32();
            const int32_t result = GetPrivacyEventDetailsByPrivacySensorType(userId, data.ReadInt32(), details);
            return WriteRecordsByHand(reply, result, details);
        }
        case GET_ACTIVE_INDICATORS: {
            std::vector<Indicator::IndicatorData> indicators;
            const int32_t result = GetActiveIndicators(indicators);
            return WriteRecordsByHand(reply, result, indicators);
        }
        case TURN_ON_INDICATOR: {
            const int32_t sensor = data.ReadInt32();
            const std::unique_ptr<Indicator::IndicatorPosition> position(
                data.ReadParcelable<Indicator::IndicatorPosition>());
            const std::unique_ptr<Indicator::IndicatorSize> size(data.ReadParcelable<Indicator::IndicatorSize>());
            if (position == nullptr || size == nullptr) {
                return INVALID_DATA;
            }
            return Answer(reply, TurnOnIndicator(sensor, *position, *size, data.ReadInt32()));
        }
        case TURN_OFF_INDICATOR: {
            const int32_t sensor = data.ReadInt32();
            return Answer(reply, TurnOffIndicator(sensor, data.ReadInt32()));
        }
        case REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER:
            return Answer(
                reply, RegisterPrivacyIndicatorSwitchListener(iface_cast<SwitchListener>(data.ReadRemoteObject())));
        case UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER:
            return Answer(
                reply, UnregisterPrivacyIndicatorSwitchListener(iface_cast<SwitchListener>(data.ReadRemoteObject())));
        case GET_PERMISSION_USAGE_DURATION_SUMMARY: {
            const std::unique_ptr<Record::PermissionUsageDurationQuery> query(
                data.ReadParcelable<Record::PermissionUsageDurationQuery>());
            if (query == nullptr) {
                return INVALID_DATA;
            }
            std::vector<Record::PermissionUsageDuration> durations;
            const int32_t result = GetPermissionUsageDurationSummary(*query, durations);
            return WriteRecordsByHand(reply, result, durations);
        }
        case NOTIFY_POWER_EVENT:
            return Answer(reply, NotifyPowerEvent(data.ReadInt32()));
        default:
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
    }

private:
    static int32_t Answer(MessageParcel& reply, int32_t result)
    {
        return reply.WriteInt32(result) ? SUCCESS : INVALID_VALUE;
    }
};

class SwitchProxyByHand : public IRemoteProxy<SwitchListener> {
public:
    using IRemoteProxy<SwitchListener>::IRemoteProxy;

    void OnSwitchChanged(const Indicator::IndicatorData& indicatorData) override
    {
        MessageParcel data;
        if (!data.WriteInterfaceToken(GetDescriptor()) || !data.WriteParcelable(&indicatorData)) {
            return;
        }
        MessageParcel reply;
        MessageOption option(MessageOption::TF_ASYNC);
        Remote()->SendRequest(ON_SWITCH_CHANGED, data, reply, option);
    }
};

class SwitchStubByHand : public IRemoteStub<SwitchListener> {
public:
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (data.ReadInterfaceToken() != GetDescriptor()) {
            return PrivacyIndicatorServiceIntf::TOKEN_MISMATCH;
        }
        if (code != ON_SWITCH_CHANGED) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
        const std::unique_ptr<Indicator::IndicatorData> indicatorData(data.ReadParcelable<Indicator::IndicatorData>());
        if (indicatorData == nullptr) {
            return PrivacyIndicatorServiceIntf::INVALID_DATA;
        }
        OnSwitchChanged(*indicatorData);
        return 0;
    }

    void OnSwitchChanged(const Indicator::IndicatorData& /* indicatorData */) override {}
};

class EventProxyByHand : public IRemoteProxy<EventListener> {
public:
    using IRemoteProxy<EventListener>::IRemoteProxy;

    void OnPrivacyEventChanged(
        const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) override
    {
        MessageParcel data;
        if (!data.WriteInterfaceToken(GetDescriptor()) || !data.WriteString(dataType) ||
            !data.WriteInt32(static_cast<int32_t>(infos.size()))) {
            return;
        }
        for (const auto& info : infos) {
            data.WriteParcelable(&info);
        }
        MessageParcel reply;
        MessageOption option(MessageOption::TF_SYNC);
        Remote()->SendRequest(ON_PRIVACY_EVENT_CHANGED, data, reply, option);
    }
};

class EventStubByHand : public IRemoteStub<EventListener> {
public:
    int32_t OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (data.ReadInterfaceToken() != GetDescriptor()) {
            return PrivacyIndicatorServiceIntf::TOKEN_MISMATCH;
        }
        if (code != ON_PRIVACY_EVENT_CHANGED) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        }
        const std::string dataType = data.ReadString();
        std::vector<Privacy::PrivacyEventRemindInfo> infos;
        const int32_t result = ReadRecordsByHand(data, infos);
        OnPrivacyEventChanged(dataType, infos);
        return result;
    }

    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& /* infos */) override
    {}
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // BY_HAND_H
