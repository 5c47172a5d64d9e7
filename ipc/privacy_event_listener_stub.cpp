// SPDX-License-Identifier: Apache-2.0
#include "privacy_event_listener_stub.h"

#include <memory>
#include <string>
#include <vector>

#include "interface_token.h"
#include "message_parcel.h"
#include "received_records.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy {

namespace {

using Util::LogDebug;
using Util::LogError;

const auto TAG = Util::FileTag("PrivacyIndicator");

constexpr int32_t TOKEN_MISMATCH = 1;
constexpr int32_t INVALID_SIZE = 22;

} // namespace

int32_t PrivacyEventListenerStub::OnRemoteRequest(
    uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    if (!ReadTokenOf<PrivacyEventListenerIntf>(data)) {
        return TOKEN_MISMATCH;
    }
    if (code != ON_PRIVACY_EVENT_CHANGED) {
        return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
    }
    const std::string dataType = data.ReadString();
    const int32_t count = data.ReadInt32();
    if (count < 1 || count > maxRemindInfoSize) {
        LogError(TAG, "OnRemoteRequest", "error privacyEventRemindInfo size!");
        return INVALID_SIZE;
    }
    std::vector<PrivacyEventRemindInfo> infos;
    for (int32_t i = 0; i < count; ++i) {
        const std::unique_ptr<PrivacyEventRemindInfo> info(data.ReadParcelable<PrivacyEventRemindInfo>());
        if (info == nullptr) {
            LogDebug(TAG, "OnRemoteRequest", "privacyEventRemindInfo is null");
            continue;
        }
        if (i == 0) {
            ReserveReceived(infos, count, data);
        }
        infos.push_back(*info);
    }
    OnPrivacyEventChanged(dataType, infos);
    return 0;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Privacy
