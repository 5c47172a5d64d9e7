// SPDX-License-Identifier: Apache-2.0
#include "ipc_object_stub.h"

#include <utility>

namespace OHOS {

IPCObjectStub::IPCObjectStub(std::u16string descriptor, bool serialInvokeFlag)
    : IRemoteObject(std::move(descriptor)), serial_(serialInvokeFlag ? new std::recursive_mutex() : nullptr)
{}

int IPCObjectStub::SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    const auto lock = serial_ != nullptr ? std::unique_lock(*serial_) : std::unique_lock<std::recursive_mutex>();
    return OnRemoteRequest(code, data, reply, option);
}

int IPCObjectStub::OnRemoteRequest(
    uint32_t /* code */, MessageParcel& /* data */, MessageParcel& /* reply */, MessageOption& /* option */)
{
    return IPC_STUB_UNKNOW_TRANS_ERR;
}

} // namespace OHOS
