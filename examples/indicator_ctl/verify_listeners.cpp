// SPDX-License-Identifier: Apache-2.0
#include "verify_listeners.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "listener_process.h"
#include "privacy_indicator_service_intf.h"
#include "recording_listener.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

using Clock = std::chrono::steady_clock;
using Service = PrivacyIndicatorServiceIntf;

constexpr size_t MANY_LISTENERS = 150;
constexpr int MANY_CHANGES = 300;
constexpr int ORDERED_CHANGES = 10;
constexpr std::chrono::seconds PROMPT{1};

std::string Join(const std::vector<std::string>& calls)
{
    std::string text;
    for (const auto& call : calls) {
        text += (text.empty() ? "" : ", ") + call;
    }
    return text.empty() ? "no call" : text;
}

bool IsActive(const ServiceProbe& probe, int32_t sensor)
{
    const auto indicators = probe.GetActiveIndicators();
    return std::any_of(indicators.begin(), indicators.end(), [sensor](const Indicator::IndicatorData& data) {
        return static_cast<int32_t>(data.privacySensorType) == sensor && data.state == Indicator::IndicatorState::ON;
    });
}

std::optional<int32_t> FindSensorThatIsOff(const ServiceProbe& probe)
{
    for (const auto sensor : {PrivacySensorType::LOCATION, PrivacySensorType::MICROPHONE, PrivacySensorType::CAMERA}) {
        if (!IsActive(probe, static_cast<int32_t>(sensor))) {
            return static_cast<int32_t>(sensor);
        }
    }
    return std::nullopt;
}

/** The checks, which share a listener, and a sensor whose indicator is off before and after each of them. */
class ListenerChecks {
public:
    ListenerChecks(const ServiceProbe& probe, Report& report, int32_t sensor)
        : probe_(probe), report_(report), sensor_(sensor)
    {}

    void CheckRegistration()
    {
        const std::string name = RequestName(Service::REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER);
        report_.Compare(name, "a listener", probe_.RegisterSwitchListener(listener_), ACCEPTED);
        report_.Compare(name, "the same listener again", probe_.RegisterSwitchListener(listener_), ACCEPTED);
        listener_->TakeCalls(0);
    }

    /** Returns whether this caller may switch indicators, which listeners are called for. */
    bool CheckTurningOn()
    {
        const std::string came = probe_.TurnOn(sensor_);
        canSwitch_ = came == ACCEPTED;
        report_.Add(on_, SensorText(sensor_), came,
            "result 0 (no listener's call is checked; if this user may not switch indicators, run it as one who may)",
            canSwitch_);
        return canSwitch_;
    }

    void CheckSwitch()
    {
        report_.Compare("OnSwitchChanged", "(a listener registered twice)", Join(listener_->TakeCalls(1)), isOn_);
        report_.Compare(active_, "(after that)", IsActive(probe_, sensor_) ? isOn_ : isOff_, isOn_);
        report_.Compare(off_, SensorText(sensor_), probe_.TurnOff(sensor_), ACCEPTED);
        report_.Compare("OnSwitchChanged", "(a listener registered twice)", Join(listener_->TakeCalls(1)), isOff_);
        report_.Compare(active_, "(after that)", IsActive(probe_, sensor_) ? isOn_ : isOff_, isOff_);
    }

    void CheckOrder()
    {
        std::vector<std::string> expected;
        for (int i = 0; i < ORDERED_CHANGES; ++i) {
            probe_.TurnOn(sensor_);
            probe_.TurnOff(sensor_);
            expected.insert(expected.end(), {isOn_, isOff_});
        }
        const auto calls = listener_->TakeCalls(expected.size());
        report_.Add("OnSwitchChanged", "(on and off, ten times)", calls == expected ? "20 calls in order" : Join(calls),
            "20 calls in order", calls == expected);
    }

    void CheckUnregistration()
    {
        const sptr<RecordingListener> other(new RecordingListener());
        const auto write = [&other](MessageParcel& data) { data.WriteRemoteObject(other.GetRefPtr()); };
        const uint32_t code = Service::UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER;
        probe_.RegisterSwitchListener(other);
        report_.Compare(RequestName(code), "another listener", probe_.Ask(code, write), ACCEPTED);
        if (!canSwitch_) {
            return;
        }
        SwitchOnAndOff();
        report_.Compare("OnSwitchChanged", "(a listener that is unregistered)", Join(other->TakeCalls(0)), "no call");
        report_.Compare("OnSwitchChanged", "(one that is not)", Join(listener_->TakeCalls(2)), Join({isOn_, isOff_}));
    }

    void CheckDeath()
    {
        const size_t first = ListenerProcess(MANY_LISTENERS).GetTaken();
        const size_t second = ListenerProcess(MANY_LISTENERS).GetTaken();
        report_.Add(RequestName(Service::REGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER),
            "150 listeners of a process that dies, then 150 more",
            std::to_string(first) + ", then " + std::to_string(second) + " taken", "no fewer than before the death",
            first > 0 && second >= first);
        if (!canSwitch_) {
            return;
        }
        SwitchOnAndOff();
        report_.Compare("OnSwitchChanged", "(a listener, after the death of others)", Join(listener_->TakeCalls(2)),
            Join({isOn_, isOff_}));
    }

    void CheckFrozenListener()
    {
        const ListenerProcess frozen(1);
        SwitchOnAndOff(); // It has been called, and then does not read any more.
        frozen.Freeze();
        Clock::duration longest{};
        int changes = 0;
        for (; changes < MANY_CHANGES && longest < PROMPT; ++changes) {
            const auto begin = Clock::now();
            changes % 2 == 0 ? probe_.TurnOn(sensor_) : probe_.TurnOff(sensor_);
            longest = std::max(longest, Clock::now() - begin);
        }
        probe_.TurnOff(sensor_);
        const bool isPrompt = longest < PROMPT;
        report_.Add(on_, "(while a listener's process does not read)",
            isPrompt ? "prompt answers" : "an answer that took over 1 s", "prompt answers", isPrompt);
        const bool isCalled = listener_->IsCalledWith(isOff_);
        report_.Add("OnSwitchChanged", "(a listener, while another one does not read)",
            isCalled ? "calls" : "no call within 3 s", "calls", isCalled);
    }

    void Unregister()
    {
        probe_.Ask(Service::UNREGISTER_PRIVACY_INDICATOR_SWITCH_LISTENER,
            [this](MessageParcel& data) { data.WriteRemoteObject(listener_.GetRefPtr()); });
    }

private:
    void SwitchOnAndOff()
    {
        listener_->TakeCalls(0);
        probe_.TurnOn(sensor_);
        probe_.TurnOff(sensor_);
    }

    const ServiceProbe& probe_;
    Report& report_;
    const int32_t sensor_;
    bool canSwitch_ = false;
    const sptr<RecordingListener> listener_{new RecordingListener()};
    const std::string isOn_ = SensorText(sensor_) + " on";
    const std::string isOff_ = SensorText(sensor_) + " off";
    const std::string on_ = RequestName(Service::TURN_ON_INDICATOR);
    const std::string off_ = RequestName(Service::TURN_OFF_INDICATOR);
    const std::string active_ = RequestName(Service::GET_ACTIVE_INDICATORS);
};

} // namespace

void VerifyListeners(const ServiceProbe& probe, Report& report)
{
    const auto sensor = FindSensorThatIsOff(probe);
    if (!sensor) {
        report.Add(
            "OnSwitchChanged", "nothing: every indicator is on", "not checked", "an indicator that is off", false);
        return;
    }
    ListenerChecks checks(probe, report, *sensor);
    checks.CheckRegistration();
    const bool canSwitch = checks.CheckTurningOn();
    if (canSwitch) {
        checks.CheckSwitch();
        checks.CheckOrder();
    }
    checks.CheckUnregistration();
    checks.CheckDeath();
    if (canSwitch) {
        checks.CheckFrozenListener();
    }
    checks.Unregister();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
