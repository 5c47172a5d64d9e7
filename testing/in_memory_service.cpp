// SPDX-License-Identifier: Apache-2.0
#include "in_memory_service.h"

#include <optional>
#include <utility>

#include "ipc_skeleton.h"
#include "message_parcel.h"
#include "notify_power_event.h"
#include "privacy_event_values.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

using Indicator::IndicatorData;
using Indicator::IndicatorState;
using Indicator::IndicatorSwitchListenerIntf;
using Privacy::PrivacyEventDetail;
using Privacy::PrivacyEventListenerIntf;
using Privacy::PrivacyEventRemindInfo;

namespace {

constexpr const char* INDICATOR_COLOR = "#00ff00";
constexpr const char* SWITCH = "switch"; // The only topic of the switch listeners.
constexpr size_t MAX_DATA_TYPE = 127;

bool IsSensor(int32_t number)
{
    return number >= static_cast<int32_t>(PrivacySensorType::CAMERA) &&
           number <= static_cast<int32_t>(PrivacySensorType::LOCATION);
}

bool IsUser(int32_t userId) { return userId >= 0 || userId == UseHistory::ALL_USERS; }

} // namespace

InMemoryService::InMemoryService(Reports reports)
    : reports_(std::move(reports)),
      switchListeners_(new ListenerRegistry<IndicatorSwitchListenerIntf>(reports_.problem)),
      eventListeners_(new ListenerRegistry<PrivacyEventListenerIntf>(reports_.problem))
{
    for (size_t i = 0; i < sensors_.size(); ++i) {
        sensors_[i].indicator.privacySensorType = static_cast<PrivacySensorType>(i);
        sensors_[i].indicator.color = INDICATOR_COLOR;
    }
}

InMemoryService::~InMemoryService() { Close(); }

bool InMemoryService::BeginUse(const SensorUse& use)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!history_.Begin(use)) {
        return false;
    }
    IndicatorData& indicator = SensorOf(use.sensor).indicator;
    if (indicator.state != IndicatorState::ON) {
        Switch(indicator, IndicatorState::ON);
    }
    PushUse(use, ACCESS_BEGUN);
    return true;
}

bool InMemoryService::EndUse(const SensorUse& use)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!history_.End(use)) {
        return false;
    }
    Sensor& sensor = SensorOf(use.sensor);
    if (sensor.indicator.state == IndicatorState::ON && !sensor.isTurnedOn && !history_.IsInUse(use.sensor)) {
        Switch(sensor.indicator, IndicatorState::OFF);
    }
    PushUse(use, ACCESS_ENDED);
    return true;
}

void InMemoryService::Close()
{
    // Both are closed before the calls under way are waited for.
    const auto switchCalls = switchListeners_->Close();
    const auto eventCalls = eventListeners_->Close();
}

void InMemoryService::AwaitDelivery()
{
    switchListeners_->AwaitCalls();
    eventListeners_->AwaitCalls();
}

void InMemoryService::SetRefusal(int32_t code) { refusal_ = code; }

std::vector<InMemoryService::Registration> InMemoryService::GetRegistrations()
{
    std::vector<Registration> registrations;
    for (const auto& [listener, topics] : switchListeners_->GetTopics()) {
        registrations.push_back({listener, "", topics.at(SWITCH)});
    }
    for (const auto& [listener, topics] : eventListeners_->GetTopics()) {
        for (const auto& [dataType, count] : topics) {
            registrations.push_back({listener, dataType, count});
        }
    }
    return registrations;
}

int32_t InMemoryService::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (refusal_ != SUCCESS) {
        reply.WriteInt32(refusal_);
        return SUCCESS;
    }
    return PrivacyIndicatorServiceIntfStub::OnRemoteRequest(code, data, reply, option);
}

int32_t InMemoryService::ReportRegistered(const std::string& kind, int32_t result) const
{
    if (result == SUCCESS && reports_.event) {
        reports_.event(kind + " listener of process " + std::to_string(IPCSkeleton::GetCallingPid()));
    }
    return result;
}

int32_t InMemoryService::RegisterPrivacyEventListener(
    const std::string& dataType, const sptr<PrivacyEventListenerIntf>& privacyEventListener)
{
    if (dataType.empty() || dataType.size() > MAX_DATA_TYPE || privacyEventListener == nullptr) {
        return INVALID_VALUE;
    }
    return ReportRegistered("event", eventListeners_->Add(privacyEventListener, dataType));
}

int32_t InMemoryService::UnregisterPrivacyEventListener(const sptr<PrivacyEventListenerIntf>& privacyEventListener)
{
    return privacyEventListener != nullptr ? eventListeners_->Remove(privacyEventListener->AsObject()) : INVALID_VALUE;
}

int32_t InMemoryService::GetPrivacyEventDetails(int32_t userId, std::vector<PrivacyEventDetail>& privacyEventDetails)
{
    if (!IsUser(userId)) {
        return INVALID_VALUE;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    history_.AppendDetails(userId, std::nullopt, privacyEventDetails);
    return SUCCESS;
}

int32_t InMemoryService::GetPrivacyEventDetailsByPrivacySensorType(
    int32_t userId, int32_t privacySensorType, std::vector<PrivacyEventDetail>& privacyEventDetails)
{
    if (!IsUser(userId) || !IsSensor(privacySensorType)) {
        return INVALID_VALUE;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    history_.AppendDetails(userId, static_cast<PrivacySensorType>(privacySensorType), privacyEventDetails);
    return SUCCESS;
}

int32_t InMemoryService::GetActiveIndicators(std::vector<IndicatorData>& indicators)
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& sensor : sensors_) {
        if (sensor.indicator.state == IndicatorState::ON) {
            indicators.push_back(sensor.indicator);
        }
    }
    return SUCCESS;
}

int32_t InMemoryService::TurnOnIndicator(int32_t privacySensorType,
    const Indicator::IndicatorPosition& indicatorPosition, const Indicator::IndicatorSize& indicatorSize,
    int32_t animationType)
{
    // A size that is not a number is not 0 or more either.
    if (!IsSensor(privacySensorType) || !(indicatorSize.width >= 0) || !(indicatorSize.height >= 0)) {
        return INVALID_VALUE;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Sensor& sensor = SensorOf(static_cast<PrivacySensorType>(privacySensorType));
    sensor.isTurnedOn = true;
    sensor.indicator.positionX = indicatorPosition.positionX;
    sensor.indicator.positionY = indicatorPosition.positionY;
    sensor.indicator.width = indicatorSize.width;
    sensor.indicator.height = indicatorSize.height;
    sensor.indicator.animationType = animationType;
    Switch(sensor.indicator, IndicatorState::ON);
    return SUCCESS;
}

int32_t InMemoryService::TurnOffIndicator(int32_t privacySensorType, int32_t animationType)
{
    if (!IsSensor(privacySensorType)) {
        return INVALID_VALUE;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    Sensor& sensor = SensorOf(static_cast<PrivacySensorType>(privacySensorType));
    sensor.isTurnedOn = false;
    if (sensor.indicator.state == IndicatorState::ON) {
        sensor.indicator.animationType = animationType;
        Switch(sensor.indicator, IndicatorState::OFF);
    }
    return SUCCESS;
}

int32_t InMemoryService::RegisterPrivacyIndicatorSwitchListener(const sptr<IndicatorSwitchListenerIntf>& listener)
{
    return listener != nullptr ? ReportRegistered("switch", switchListeners_->Add(listener, SWITCH)) : INVALID_VALUE;
}

int32_t InMemoryService::UnregisterPrivacyIndicatorSwitchListener(const sptr<IndicatorSwitchListenerIntf>& listener)
{
    return listener != nullptr ? switchListeners_->Remove(listener->AsObject()) : INVALID_VALUE;
}

int32_t InMemoryService::GetPermissionUsageDurationSummary(
    const Record::PermissionUsageDurationQuery& permissionUsageDurationQuery,
    std::vector<Record::PermissionUsageDuration>& permissionUsageDurations)
{
    const int64_t begin = permissionUsageDurationQuery.GetBeginTimestamp();
    const int64_t end = permissionUsageDurationQuery.GetEndTimestamp();
    if (begin < 0 || end < 0 || (end != 0 && end < begin)) {
        return INVALID_VALUE;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    history_.AppendUsage(permissionUsageDurationQuery, permissionUsageDurations);
    return SUCCESS;
}

int32_t InMemoryService::NotifyPowerEvent(int32_t event)
{
    if (static_cast<uint32_t>(event) >= Composer::POWER_EVENT_COUNT) {
        return INVALID_VALUE;
    }
    if (reports_.event) {
        reports_.event(
            "power event " + std::to_string(event) + " from uid " + std::to_string(IPCSkeleton::GetCallingUid()));
    }
    return SUCCESS;
}

InMemoryService::Sensor& InMemoryService::SensorOf(PrivacySensorType sensor)
{
    return sensors_.at(static_cast<size_t>(sensor));
}

void InMemoryService::Switch(IndicatorData& indicator, IndicatorState state)
{
    indicator.state = state;
    switchListeners_->Push(
        SWITCH, [indicator](IndicatorSwitchListenerIntf& listener) { listener.OnSwitchChanged(indicator); });
}

void InMemoryService::PushUse(const SensorUse& use, AccessState state)
{
    PrivacyEventRemindInfo info;
    info.bundleName = use.bundleName;
    info.uid = use.uid;
    info.privacySensorType = static_cast<int32_t>(use.sensor);
    info.privacyAccessState = state;
    eventListeners_->Push(Privacy::SENSOR_STATE_CHANGE,
        [infos = std::vector<PrivacyEventRemindInfo>{info}](PrivacyEventListenerIntf& listener) {
            listener.OnPrivacyEventChanged(Privacy::SENSOR_STATE_CHANGE, infos);
        });
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing
