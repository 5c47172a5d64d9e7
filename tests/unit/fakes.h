// SPDX-License-Identifier: Apache-2.0
#ifndef FAKES_H
#define FAKES_H

#include <functional>

#include "fake_service.h"
#include "ipc_object_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** An object of another process, which can die: keeps the last request and answers as it is told. */
class FakeRemote : public IPCObjectStub {
public:
    bool IsProxyObject() const override
    {
        return true;
    }

    bool IsObjectDead() const override
    {
        return dead;
    }

    bool AddDeathRecipient(const sptr<DeathRecipient>& added) override
    {
        recipients += takesRecipients ? 1 : 0;
        recipient = added;
        return takesRecipients;
    }

    bool RemoveDeathRecipient(const sptr<DeathRecipient>& removed) override
    {
        EXPECT_EQ(removed, recipient);
        --recipients;
        return true;
    }

    int SendRequest(uint32_t requestCode, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        if (whenCalled) {
            whenCalled();
        }
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
    std::function<void()> whenCalled;
    bool dead = false;
    bool takesRecipients = true;

    int recipients = 0;
    sptr<DeathRecipient> recipient; // The last one.
    int calls = 0;
    uint32_t code = 0;
    int flags = -1;
    int waitTime = -1;
    Bytes request;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // FAKES_H
