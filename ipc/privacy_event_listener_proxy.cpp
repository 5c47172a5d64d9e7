// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_listener_proxy.h"

#include "interface_token.h"
#include "message_option.h"
#include "message_parcel.h"
#include "tagged_log.h"
#include "wait_time.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

using Util::LogError;

const auto TAG = Util::FileTag("PrivacyIndicator");

} // namespace

BrokerDelegator<PrivacyEventListenerProxy> PrivacyEventListenerProxy::delegator_;

PrivacyEventListenerProxy::PrivacyEventListenerProxy(const sptr<IRemoteObject>& remote)
    : IRemoteProxy<PrivacyEventListenerIntf>(remote)
{}

void PrivacyEventListenerProxy::OnPrivacyEventChanged(
    const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& privacyEventRemindInfos) noexcept
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option(MessageOption::TF_SYNC, WAIT_SECONDS);
    if (!data.WriteInterfaceToken(TokenOf<PrivacyEventListenerIntf>())) {
        LogError(TAG, "OnPrivacyEventChanged", "Write interface token failed!");
        return;
    }
    if (!data.WriteString(dataType)) {
        LogError(TAG, "OnPrivacyEventChanged", "Write data type failed!");
        return;
    }
    // Contract: neither the count nor a record is checked. The stub leaves out what it cannot read.
    data.WriteInt32(static_cast<int32_t>(privacyEventRemindInfos.size()));
    for (const PrivacyEventRemindInfo& info : privacyEventRemindInfos) {
        data.WriteParcelable(&info);
    }
    const sptr<IRemoteObject> remote = Remote();
    if (remote == nullptr) {
        LogError(TAG, "OnPrivacyEventChanged", "Remote is nullptr!");
        return;
    }
    if (remote->SendRequest(ON_PRIVACY_EVENT_CHANGED, data, reply, option) != 0) {
        LogError(TAG, "OnPrivacyEventChanged", "Send request failed!");
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
