// SPDX-License-Identifier: Apache-2.0
#include "indicator_switch_listener_proxy.h"

#include <string>

#include "message_option.h"
#include "message_parcel.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

using Util::LogError;
using Util::LogInfo;
using Tag = Util::OstLog::Tag;

// This file alone logs as "service": meant.
const Tag TAG = Tag::Create("service", Tag::DEFAULT_COMPONENT_TAG, Tag::DEFAULT_SUB_SYSTEM_TAG);

constexpr int WAIT_SECONDS = 8;

} // namespace

BrokerDelegator<IndicatorSwitchListenerProxy> IndicatorSwitchListenerProxy::delegator_;

IndicatorSwitchListenerProxy::IndicatorSwitchListenerProxy(const sptr<IRemoteObject>& remote)
    : IRemoteProxy<IndicatorSwitchListenerIntf>(remote)
{
    LogInfo(TAG, "IndicatorSwitchListenerProxy", "create IndicatorSwitchListenerProxy");
}

IndicatorSwitchListenerProxy::~IndicatorSwitchListenerProxy()
{
    LogInfo(TAG, "~IndicatorSwitchListenerProxy", "destroy IndicatorSwitchListenerProxy");
}

void IndicatorSwitchListenerProxy::OnSwitchChanged(const IndicatorData& indicatorData)
{
    LogInfo(TAG, "OnSwitchChanged", "OnSwitchChanged begin in proxy");
    MessageParcel data;
    if (!data.WriteInterfaceToken(GetDescriptor())) {
        LogError(TAG, "OnSwitchChanged", "WriteInterfaceToken failed");
        return;
    }
    // The two blanks before "in" are meant.
    if (!data.WriteParcelable(&indicatorData)) {
        LogError(TAG, "OnSwitchChanged", "Write parcelable failed  in proxy.");
        return;
    }
    const std::string text = "'" + indicatorData.ToString() + "'";
    LogInfo(TAG, "OnSwitchChanged", "Write parcelable success  in proxy:%{public}s", text.c_str());
    const sptr<IRemoteObject> remote = Remote();
    if (remote == nullptr) {
        LogError(TAG, "OnSwitchChanged", "remote is null!");
        return;
    }
    MessageParcel reply;
    MessageOption option(MessageOption::TF_ASYNC, WAIT_SECONDS);
    const int32_t error = remote->SendRequest(ON_SWITCH_CHANGED, data, reply, option);
    if (error != 0) {
        LogError(TAG, "OnSwitchChanged", "SendRequest is failed, error code: %{public}d.", error);
    }
    LogInfo(TAG, "OnSwitchChanged", "OnSwitchChanged end in proxy");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
