// SPDX-License-Identifier: Apache-2.0
#ifndef FAKE_REMOTE_H
#define FAKE_REMOTE_H

#include <cstdint>

#include "ipc_object_stub.h"
#include "wire.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** An object of another process: keeps the last request and answers as it is told. */
class FakeRemote : public IPCObjectStub {
public:
    bool IsProxyObject() const override
    {
        return true;
    }

    int SendRequest(uint32_t requestCode, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        ++calls;
        code = requestCode;
        flags = option.GetFlags();
        waitTime = option.GetWaitTime();
        request = BytesOf(data);
        reply.SetMaxCapacity(answer.size());
        reply.WriteBuffer(answer.data(), answer.size());
        return result;
    }

    Bytes answer;
    int result = 0;

    int calls = 0;
    uint32_t code = 0;
    int flags = -1;
    int waitTime = -1;
    Bytes request;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAKE_REMOTE_H
