// SPDX-License-Identifier: Apache-2.0
#include "service_probe.h"

#include "permission_usage_duration.h"
#include "privacy_event_detail.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

using Service = PrivacyIndicatorServiceIntf;

constexpr int32_t MAX_RECORDS = 102400;

// Reads a count and that many records. Returns how many there are, or what is wrong.
template <typename Record>
std::string ReadRecords(MessageParcel& reply)
{
    const int32_t count = reply.ReadInt32();
    if (count > MAX_RECORDS) {
        return std::to_string(count) + " records announced";
    }
    for (int32_t i = 0; i < count; ++i) {
        const sptr<Record> record(reply.ReadInt32() != 0 ? Record::Unmarshalling(reply) : nullptr);
        if (record == nullptr) {
            return "record " + std::to_string(i + 1) + " of " + std::to_string(count) + " cannot be read";
        }
    }
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

std::string ReadReply(uint32_t code, MessageParcel& reply)
{
    if (reply.GetDataSize() == 0) {
        return "status 0, no reply";
    }
    const int32_t result = reply.ReadInt32();
    std::string text = "result " + std::to_string(result);
    if (result == 0) {
        switch (code) {
        case Service::GET_PRIVACY_EVENT_DETAILS:
        case Service::GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE:
            text += ", " + ReadRecords<Privacy::PrivacyEventDetail>(reply);
            break;
        case Service::GET_ACTIVE_INDICATORS:
            text += ", " + ReadRecords<Indicator::IndicatorData>(reply);
            break;
        case Service::GET_PERMISSION_USAGE_DURATION_SUMMARY:
            text += ", " + ReadRecords<Record::PermissionUsageDuration>(reply);
            break;
        default:
            break;
        }
    }
    const size_t left = reply.GetReadableBytes();
    return left == 0 ? text : text + ", and " + std::to_string(left) + " bytes too many";
}

} // namespace

ServiceProbe::ServiceProbe(const sptr<IRemoteObject>& service) : service_(service) {}

std::string ServiceProbe::Ask(uint32_t code, const std::u16string& token, const Write& write) const
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option;
    data.WriteInterfaceToken(token);
    write(data);
    const int status = service_->SendRequest(code, data, reply, option);
    if (status == 0) {
        return ReadReply(code, reply);
    }
    return "status " + std::to_string(status) + (reply.GetDataSize() == 0 ? ", no reply" : ", and a reply");
}

std::string ServiceProbe::Ask(uint32_t code, const Write& write) const
{
    return Ask(code, Service::GetDescriptor(), write);
}

std::vector<Indicator::IndicatorData> ServiceProbe::GetActiveIndicators() const
{
    std::vector<Indicator::IndicatorData> indicators;
    iface_cast<Service>(service_)->GetActiveIndicators(indicators);
    return indicators;
}

std::string ServiceProbe::TurnOn(int32_t sensor) const
{
    return Ask(Service::TURN_ON_INDICATOR, [sensor](MessageParcel& data) {
        const Indicator::IndicatorPosition position;
        const Indicator::IndicatorSize size;
        data.WriteInt32(sensor);
        data.WriteParcelable(&position);
        data.WriteParcelable(&size);
        data.WriteInt32(0);
    });
}

std::string ServiceProbe::TurnOff(int32_t sensor) const
{
    return Ask(Service::TURN_OFF_INDICATOR, [sensor](MessageParcel& data) {
        data.WriteInt32(sensor);
        data.WriteInt32(0);
    });
}

std::string ServiceProbe::RegisterSwitchListener(const sptr<IRemoteObject>& listener) const
{
    return Ask(Service::REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER,
        [&listener](MessageParcel& data) { data.WriteRemoteObject(listener); });
}

std::string RequestName(uint32_t code)
{
    static const std::vector<std::string> names{"", "RegisterPrivacyEventListener", "UnregisterPrivacyEventListener",
        "GetPrivacyEventDetails", "GetPrivacyEventDetailsByPrivacySensorType", "GetActiveIndicators", "TurnOnIndicator",
        "TurnOffIndicator", "RegisterPrivacyIndicatorSwitchListener", "UnregisterPrivacyIndicatorSwitchListener",
        "GetPermissionUsageDurationSummary", "NotifyPowerEvent"};
    return std::to_string(code) + (code > 0 && code < names.size() ? " " + names[code] : "");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
