// SPDX-License-Identifier: Apache-2.0
#include "indicator_switch_listener_proxy.h"

#include "format_utils.h"
#include "interface_token.h"
#include "message_option.h"
#include "message_parcel.h"
#include "tagged_log.h"
#include "wait_time.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

using Util::LogError;
using Util::LogInfo;

// Contract: "service", in this file alone.
const auto TAG = Util::FileTag("service");

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

void IndicatorSwitchListenerProxy::OnSwitchChanged(const IndicatorData& indicatorData) noexcept
{
    LogInfo(TAG, "OnSwitchChanged", "OnSwitchChanged begin in proxy");
    MessageParcel data;
    if (!data.WriteInterfaceToken(TokenOf<IndicatorSwitchListenerIntf>())) {
        LogError(TAG, "OnSwitchChanged", "WriteInterfaceToken failed");
        return;
    }
    // Contract: two blanks before "in".
    if (!data.WriteParcelable(&indicatorData)) {
        LogError(TAG, "OnSwitchChanged", "Write parcelable failed  in proxy.");
        return;
    }
    if (Util::IsLoggable(LOG_INFO, TAG)) {
        LogInfo(TAG, "OnSwitchChanged", "Write parcelable success  in proxy:%{public}s",
            Util::Quoted(indicatorData.ToString()).c_str());
    }
    const sptr<IRemoteObject> remote = Remote();
    if (remote == nullptr) {
        LogError(TAG, "OnSwitchChanged", "remote is null!");
        return;
    }
    MessageParcel reply;
    MessageOption option(MessageOption::TF_ASYNC, WAIT_SECONDS);
    const int32_t error = remote->SendRequest(ON_SWITCH_CHANGED, data, reply, option);
    if (error != 0) {
        // Contract: passed as a number; all other log lines of the library pass a number's text.
        LogError(TAG, "OnSwitchChanged", "SendRequest is failed, error code: %{public}d.", error);
    }
    LogInfo(TAG, "OnSwitchChanged", "OnSwitchChanged end in proxy");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
