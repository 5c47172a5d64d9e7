// SPDX-License-Identifier: Apache-2.0
// One event to the listeners of one app, from the client's stub on, beside a loop of virtual calls.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "in_memory_service.h"
#include "privacy_event_values.h"
#include "privacy_indicator_client.h"
#include "samples.h"
#include "service_process.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench;

namespace {

struct SwitchCounter : Indicator::IndicatorSwitchListener {
    void OnSwitchChanged(const Indicator::IndicatorData& /* data */) override { ++calls; }

    int calls = 0;
};

struct EventCounter : Privacy::PrivacyEventListener {
    void OnPrivacyEventChanged(
        const std::string& /* dataType */, const std::vector<Privacy::PrivacyEventRemindInfo>& /* infos */) override
    {
        ++calls;
    }

    int calls = 0;
};

template <typename Counter>
std::vector<std::shared_ptr<Counter>> Counters(int64_t count)
{
    std::vector<std::shared_ptr<Counter>> counters(static_cast<size_t>(count));
    for (auto& counter : counters) {
        counter = std::make_shared<Counter>();
    }
    return counters;
}

void DispatchSwitch(benchmark::State& state)
{
    auto& client = PrivacyIndicatorClient::GetInstance();
    const auto counters = Counters<SwitchCounter>(state.range(0));
    for (const auto& counter : counters) {
        client.RegisterPrivacyIndicatorSwitchListener(counter);
    }
    const auto data = Indicators(1).front();
    for ([[maybe_unused]] auto step : state) {
        client.DispatchOnIndicatorSwitchChanged(data);
    }
    if (counters.back()->calls == 0) {
        state.SkipWithError("no listener was called");
    }
    for (const auto& counter : counters) {
        client.UnregisterPrivacyIndicatorSwitchListener(counter);
    }
}

void DispatchEvent(benchmark::State& state)
{
    auto& client = PrivacyIndicatorClient::GetInstance();
    const auto counters = Counters<EventCounter>(state.range(0));
    for (const auto& counter : counters) {
        client.RegisterPrivacyEventListener(Privacy::SENSOR_STATE_CHANGE, counter);
    }
    const auto infos = RemindInfos(1);
    for ([[maybe_unused]] auto step : state) {
        client.DispatchOnPrivacyEventChanged(Privacy::SENSOR_STATE_CHANGE, infos);
    }
    if (counters.back()->calls == 0) {
        state.SkipWithError("no listener was called");
    }
    for (const auto& counter : counters) {
        client.UnregisterPrivacyEventListener(counter);
    }
}

void CallInLoop(benchmark::State& state)
{
    std::vector<std::shared_ptr<Indicator::IndicatorSwitchListener>> listeners;
    for (const auto& counter : Counters<SwitchCounter>(state.range(0))) {
        listeners.push_back(counter);
    }
    const auto data = Indicators(1).front();
    for ([[maybe_unused]] auto step : state) {
        for (const auto& listener : listeners) {
            listener->OnSwitchChanged(data);
        }
    }
}

} // namespace

void RegisterDispatch()
{
    for (const int64_t listeners : {1, 10, 100, 1000, 10000}) {
        const std::string table = "dispatch, nanoseconds/" + std::to_string(listeners) + "/";
        benchmark::RegisterBenchmark((table + "switch").c_str(), DispatchSwitch)->Arg(listeners);
        benchmark::RegisterBenchmark((table + "event").c_str(), DispatchEvent)->Arg(listeners);
        benchmark::RegisterBenchmark((table + "loop").c_str(), CallInLoop)->Arg(listeners);
    }
}
