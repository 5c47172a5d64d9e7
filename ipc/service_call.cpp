// SPDX-License-Identifier: Apache-2.0
#include "service_call.h"

#include "message_option.h"
#include "service_log.h"
#include "string_ex.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

namespace {

using Intf = PrivacyIndicatorServiceIntf;

constexpr int WAIT_SECONDS = 8;

} // namespace

ServiceCall::ServiceCall(uint32_t code) : code_(code)
{
    if (!data_.WriteInterfaceToken(Intf::GetDescriptor())) {
        Fail(Intf::INVALID_VALUE, "Write interface token failed!");
    }
}

void ServiceCall::WriteInt32(int32_t value, const char* failure)
{
    if (error_ == Intf::SUCCESS && !data_.WriteInt32(value)) {
        Fail(Intf::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteString(const std::string& value, const char* failure)
{
    if (error_ == Intf::SUCCESS && !data_.WriteString16(Str8ToStr16(value))) {
        Fail(Intf::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteRecord(const Parcelable& record, const char* failure)
{
    if (error_ == Intf::SUCCESS && !data_.WriteParcelable(&record)) {
        Fail(Intf::INVALID_DATA, failure);
    }
}

void ServiceCall::WriteListener(const sptr<IRemoteBroker>& listener, const char* nullFailure, const char* failure)
{
    if (error_ != Intf::SUCCESS) {
        return;
    }
    if (listener == nullptr) {
        Fail(Intf::INVALID_DATA, nullFailure);
    } else if (!data_.WriteRemoteObject(listener->AsObject())) {
        Fail(Intf::INVALID_DATA, failure);
    }
}

int32_t ServiceCall::Send(const sptr<IRemoteObject>& remote)
{
    if (error_ != Intf::SUCCESS) {
        return error_;
    }
    if (remote == nullptr) {
        return Fail(Intf::INVALID_DATA, "Remote is nullptr!");
    }
    MessageOption option(MessageOption::TF_SYNC, WAIT_SECONDS);
    const int32_t error = remote->SendRequest(code_, data_, reply_, option);
    if (error != Intf::SUCCESS) {
        return Fail(error, "Send request failed!");
    }
    // The message is meant, though the read did not fail: a missing result reads as success.
    const int32_t result = reply_.ReadInt32();
    if (result != Intf::SUCCESS) {
        return Fail(result, "Read Int32 failed!");
    }
    return result;
}

int32_t ServiceCall::Fail(int32_t error, const char* message)
{
    LogServiceError(message);
    error_ = error;
    return error;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
