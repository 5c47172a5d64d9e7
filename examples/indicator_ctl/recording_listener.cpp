// SPDX-License-Identifier: Apache-2.0
#include "recording_listener.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "indicator_switch_listener_intf.h"
#include "words.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

using Intf = Indicator::IndicatorSwitchListenerIntf;

constexpr std::chrono::seconds CALL_PATIENCE{3};
constexpr std::chrono::milliseconds AFTERMATH{300}; // In which a call that should not come would come.

std::string Decode(MessageParcel& data, const MessageOption& option)
{
    if (data.ReadInterfaceToken() != Intf::GetDescriptor()) {
        return "a call with another token";
    }
    const sptr<Indicator::IndicatorData> record(
        data.ReadInt32() != 0 ? Indicator::IndicatorData::Unmarshalling(data) : nullptr);
    if (record == nullptr || data.GetReadableBytes() != 0) {
        return "a call with a malformed record";
    }
    const bool isOneWay = (static_cast<unsigned int>(option.GetFlags()) & MessageOption::TF_ASYNC) != 0;
    return SensorText(record->privacySensorType) + " " + StateText(record->state) +
           (isOneWay ? "" : " (a call that waits)");
}

} // namespace

RecordingListener::RecordingListener() : IPCObjectStub(Intf::GetDescriptor()) {}

int RecordingListener::OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (code != Intf::ON_SWITCH_CHANGED) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    const std::string call = Decode(data, option);
    std::lock_guard<std::mutex> lock(mutex_);
    calls_.push_back(call);
    called_.notify_one();
    return 0;
}

std::vector<std::string> RecordingListener::TakeCalls(size_t count)
{
    std::unique_lock<std::mutex> lock(mutex_);
    called_.wait_for(lock, CALL_PATIENCE, [&] { return calls_.size() >= count; });
    called_.wait_for(lock, AFTERMATH, [&] { return calls_.size() > count; });
    return std::exchange(calls_, {});
}

bool RecordingListener::IsCalledWith(const std::string& call)
{
    std::unique_lock<std::mutex> lock(mutex_);
    const bool isCalled = called_.wait_for(
        lock, CALL_PATIENCE, [&] { return std::find(calls_.begin(), calls_.end(), call) != calls_.end(); });
    calls_.clear();
    return isCalled;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
