// SPDX-License-Identifier: Apache-2.0
#include "verify_requests.h"

#include <limits>

#include "indicator_position.h"
#include "indicator_size.h"
#include "ipc_object_stub.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_listener_intf.h"
#include "privacy_event_values.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

using Service = PrivacyIndicatorServiceIntf;

constexpr int32_t NO_SENSOR = 99;
constexpr size_t MAX_NAMES = 999;

constexpr const char* ANSWERED = "result"; // Any result: it is up to the service.
constexpr const char* BAD_INPUT = "status 5, no reply";
constexpr const char* OTHER_TOKEN = "status 1, no reply";
constexpr const char* NO_SUCH_REQUEST = "status 305, no reply";

struct RequestCheck {
    uint32_t code;
    const char* sent;
    const char* expected; // The beginning of what should come.
    ServiceProbe::Write write;
};

bool IsWellFormed(const std::string& came)
{
    return came.find("too many") == std::string::npos && came.find("cannot be read") == std::string::npos &&
           came.find("announced") == std::string::npos;
}

void WriteNothing(MessageParcel& /* data */) {}

void WriteQuery(MessageParcel& data, size_t names)
{
    data.WriteInt32(1);
    data.WriteInt32(static_cast<int32_t>(names));
    for (size_t i = 0; i < names; ++i) {
        data.WriteString("com.example.app");
    }
    data.WriteInt32(0);
    data.WriteInt64(0);
    data.WriteInt64(0);
}

// For a sensor that does not exist, so that no indicator moves.
void WriteTurnOn(MessageParcel& data, float width)
{
    const Indicator::IndicatorPosition position;
    Indicator::IndicatorSize size;
    size.width = width;
    data.WriteInt32(NO_SENSOR);
    data.WriteParcelable(&position);
    data.WriteParcelable(&size);
    data.WriteInt32(0);
}

ServiceProbe::Write Numbers(const std::vector<int32_t>& numbers)
{
    return [numbers](MessageParcel& data) {
        for (const int32_t number : numbers) {
            data.WriteInt32(number);
        }
    };
}

std::vector<RequestCheck> ListChecks()
{
    const sptr<IRemoteObject> listener(new IPCObjectStub(Privacy::PrivacyEventListenerIntf::GetDescriptor()));
    const auto writeListener = [listener](MessageParcel& data) { data.WriteRemoteObject(listener); };
    const auto writeDataType = [](MessageParcel& data) { data.WriteString16(u"sensorStateChange"); };
    const auto writeBoth = [=](MessageParcel& data) {
        writeDataType(data);
        writeListener(data);
    };
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    return {
        {Service::REGISTER_PRIVACY_EVENT_LISTENER, "a listener", ACCEPTED, writeBoth},
        {Service::REGISTER_PRIVACY_EVENT_LISTENER, "the same listener again", ACCEPTED, writeBoth},
        {Service::REGISTER_PRIVACY_EVENT_LISTENER, "no listener", BAD_INPUT, writeDataType},
        {Service::UNREGISTER_PRIVACY_EVENT_LISTENER, "that listener", ACCEPTED, writeListener},
        {Service::UNREGISTER_PRIVACY_EVENT_LISTENER, "no listener", BAD_INPUT, WriteNothing},
        {Service::GET_PRIVACY_EVENT_DETAILS, "user 0", ACCEPTED, Numbers({0})},
        {Service::GET_PRIVACY_EVENT_DETAILS, "user -2147483648", ANSWERED,
            Numbers({std::numeric_limits<int32_t>::min()})},
        {Service::GET_PRIVACY_EVENT_DETAILS, "no user", ANSWERED, WriteNothing},
        {Service::GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE, "user 0, camera", ACCEPTED, Numbers({0, 0})},
        {Service::GET_PRIVACY_EVENT_DETAILS_BY_PRIVACY_SENSOR_TYPE, "user 0, sensor 99", ANSWERED,
            Numbers({0, NO_SENSOR})},
        {Service::GET_ACTIVE_INDICATORS, "nothing", ACCEPTED, WriteNothing},
        {Service::TURN_ON_INDICATOR, "sensor 99", ANSWERED, [](MessageParcel& data) { WriteTurnOn(data, 1); }},
        {Service::TURN_ON_INDICATOR, "a width that is not a number", ANSWERED,
            [=](MessageParcel& data) { WriteTurnOn(data, notANumber); }},
        {Service::TURN_ON_INDICATOR, "no position", BAD_INPUT, Numbers({NO_SENSOR, 0})},
        {Service::TURN_ON_INDICATOR, "a position cut short", BAD_INPUT, Numbers({NO_SENSOR, 1, 0, 0})},
        {Service::TURN_ON_INDICATOR, "no size", BAD_INPUT, Numbers({NO_SENSOR, 1, 0, 0, 0, 0, 0, 0})},
        {Service::TURN_OFF_INDICATOR, "sensor 99", ANSWERED, Numbers({NO_SENSOR, 0})},
        {Service::REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER, "no listener", BAD_INPUT, WriteNothing},
        {Service::UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER, "no listener", BAD_INPUT, WriteNothing},
        {Service::GET_PERMISSION_USAGE_DURATION_SUMMARY, "an empty query", ACCEPTED,
            [](MessageParcel& data) { WriteQuery(data, 0); }},
        {Service::GET_PERMISSION_USAGE_DURATION_SUMMARY, "999 applications", ACCEPTED,
            [](MessageParcel& data) { WriteQuery(data, MAX_NAMES); }},
        {Service::GET_PERMISSION_USAGE_DURATION_SUMMARY, "1000 applications", BAD_INPUT,
            [](MessageParcel& data) { WriteQuery(data, MAX_NAMES + 1); }},
        {Service::GET_PERMISSION_USAGE_DURATION_SUMMARY, "no query", BAD_INPUT, Numbers({0})},
        {Service::GET_PERMISSION_USAGE_DURATION_SUMMARY, "a query cut short", BAD_INPUT, Numbers({1, 0, 0, 0})},
        {Service::NOTIFY_POWER_EVENT, "event 0", ACCEPTED, Numbers({0})},
        {Service::NOTIFY_POWER_EVENT, "event 7", ANSWERED, Numbers({7})},
        {0, "a request that there is not", NO_SUCH_REQUEST, WriteNothing},
        {Service::NOTIFY_POWER_EVENT + 1, "a request that there is not", NO_SUCH_REQUEST, WriteNothing},
    };
}

} // namespace

void VerifyRequests(const ServiceProbe& probe, Report& report)
{
    for (const auto& [code, sent, expected, write] : ListChecks()) {
        const std::string came = probe.Ask(code, write);
        const bool isRight = came.compare(0, std::char_traits<char>::length(expected), expected) == 0;
        report.Add(RequestName(code), sent, came, expected, isRight && IsWellFormed(came));
    }
    std::u16string token = Service::GetDescriptor();
    token.back() = u'g';
    for (uint32_t code = 0; code <= Service::NOTIFY_POWER_EVENT + 1; ++code) {
        report.Compare(RequestName(code), "another token", probe.Ask(code, token, WriteNothing), OTHER_TOKEN);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
