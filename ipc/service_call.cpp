// SPDX-License-Identifier: Apache-2.0
#include "service_call.h"

#include "interface_token.h"
#include "message_option.h"
#include "string_ex.h"
#include "wait_time.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

using Service = PrivacyIndicatorServiceIntf;

ServiceCall::ServiceCall(uint32_t code, int32_t vectorSizeLimit) : ServiceExchange(vectorSizeLimit), code_(code)
{
    if (!data_.WriteInterfaceToken(TokenOf<Service>())) {
        Fail(Service::INVALID_VALUE, "Write interface token failed!");
    }
}

void ServiceCall::WriteInt32(int32_t value, const char* failure)
{
    if (IsGood() && !data_.WriteInt32(value)) {
        Fail(Service::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteString(const std::string& value, const char* failure)
{
    if (IsGood() && !data_.WriteString16(Str8ToStr16(value))) {
        Fail(Service::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteRecord(const Parcelable& record, const char* failure)
{
    if (IsGood() && !data_.WriteParcelable(&record)) {
        Fail(Service::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteListener(const sptr<IRemoteBroker>& listener, const char* nullFailure, const char* failure)
{
    if (listener == nullptr) {
        Fail(Service::INVALID_DATA, nullFailure);
    }
    if (IsGood() && !data_.WriteRemoteObject(listener->AsObject())) {
        Fail(Service::INVALID_DATA, failure);
    }
}

int32_t ServiceCall::Send(const sptr<IRemoteObject>& remote)
{
    if (remote == nullptr) {
        Fail(Service::INVALID_DATA, "Remote is nullptr!");
    }
    if (!IsGood()) {
        return Error();
    }
    MessageOption option(MessageOption::TF_SYNC, WAIT_SECONDS);
    const int32_t error = remote->SendRequest(code_, data_, reply_, option);
    if (error != Service::SUCCESS) {
        return Fail(error, "Send request failed!");
    }
    const int32_t result = reply_.ReadInt32();
    if (result != Service::SUCCESS) {
        // Contract: the message of a failed read for a failure of the service. A missing result reads as success.
        return Fail(result, "Read Int32 failed!");
    }
    return result;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
