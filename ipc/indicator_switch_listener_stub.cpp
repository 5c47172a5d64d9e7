// SPDX-License-Identifier: Apache-2.0
#include "indicator_switch_listener_stub.h"

#include "interface_token.h"
#include "message_parcel.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

using Util::LogError;
using Util::LogInfo;

const auto TAG = Util::FileTag("PrivacyIndicator");

// Contract: not the numbers that the other stubs return.
constexpr int32_t TOKEN_MISMATCH = 10;
constexpr int32_t UNREADABLE_RECORD = -1;

} // namespace

IndicatorSwitchListenerStub::IndicatorSwitchListenerStub()
{
    LogInfo(TAG, "IndicatorSwitchListenerStub", "create IndicatorSwitchListenerStub");
}

IndicatorSwitchListenerStub::~IndicatorSwitchListenerStub()
{
    LogInfo(TAG, "~IndicatorSwitchListenerStub", "destroy IndicatorSwitchListenerStub");
}

int32_t IndicatorSwitchListenerStub::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    LogInfo(TAG, "OnRemoteRequest", "OnRemoteRequest called in stub.");
    if (!ReadTokenOf<IndicatorSwitchListenerIntf>(data)) {
        LogError(TAG, "OnRemoteRequest", "verify descriptor failed");
        return TOKEN_MISMATCH;
    }
    if (code != ON_SWITCH_CHANGED) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    const sptr<IndicatorData> indicatorData(data.ReadParcelable<IndicatorData>());
    if (indicatorData == nullptr) {
        LogError(TAG, "OnRemoteRequest", "read privacy indicator from parcel failed.");
        return UNREADABLE_RECORD;
    }
    OnSwitchChanged(*indicatorData);
    return 0;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
