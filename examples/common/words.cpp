// SPDX-License-Identifier: Apache-2.0
#include "words.h"

#include <cerrno>
#include <map>

#include "ipc_types.h"
#include "print.h"
#include "privacy_event_values.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr int32_t ACCESS_STATE_ON = 1; // What services of this kind report while a sensor is in use.

} // namespace

std::string SensorText(int32_t sensor) { return SensorText(static_cast<PrivacySensorType>(sensor)); }

std::string SensorText(PrivacySensorType sensor)
{
    switch (sensor) {
    case PrivacySensorType::CAMERA:
        return "camera";
    case PrivacySensorType::MICROPHONE:
        return "microphone";
    case PrivacySensorType::LOCATION:
        return "location";
    default:
        return "sensor " + std::to_string(static_cast<int32_t>(sensor));
    }
}

std::string StateText(Indicator::IndicatorState state)
{
    switch (state) {
    case Indicator::IndicatorState::ON:
        return "on";
    case Indicator::IndicatorState::OFF:
        return "off";
    default:
        return "state " + std::to_string(static_cast<int32_t>(state));
    }
}

std::string AccessText(int32_t accessState)
{
    switch (accessState) {
    case ACCESS_STATE_ON:
        return "on";
    case Privacy::ACCESS_STATE_OFF:
        return "off";
    default:
        return "state " + std::to_string(accessState);
    }
}

std::string ApplicationText(const std::string& bundleName, int32_t uid)
{
    return Printable(bundleName) + " (" + std::to_string(uid) + ")";
}

std::string SwitchText(const Indicator::IndicatorData& data)
{
    return "indicator  " + SensorText(data.privacySensorType) + " " + StateText(data.state);
}

std::string UseText(const std::vector<Privacy::PrivacyEventRemindInfo>& infos)
{
    std::string text = "use       ";
    for (const auto& info : infos) {
        text += &info == &infos.front() ? " " : ", ";
        text += SensorText(info.privacySensorType);
        text += info.bundleName.empty() ? "" : " by " + Printable(info.bundleName);
        text += " " + AccessText(info.privacyAccessState);
    }
    return text;
}

std::string ResultText(int32_t result)
{
    using Service = PrivacyIndicatorServiceIntf;
    static const std::map<int32_t, const char*> texts{
        {Service::TOKEN_MISMATCH, "this request is for another interface, or not for this caller"},
        {Service::INVALID_DATA, "an argument or a record cannot be written or read"},
        {ENOMEM, "no memory"},
        {Service::INVALID_VALUE, "an argument is not valid"},
        {ENOSPC, "there is no room for more"},
        {ERR_DEAD_OBJECT, "the service's process has ended"},
        {EMSGSIZE, "the message is too large"},
        {ENOBUFS, "the buffer is full"},
        {ERR_TIMED_OUT, "no answer in time"},
        {ECONNREFUSED, "the connection was refused"},
        {IPC_STUB_UNKNOW_TRANS_ERR, "the service does not know this request"},
    };
    const auto text = texts.find(result);
    return std::to_string(result) + (text != texts.end() ? std::string(", ") + text->second : "");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
