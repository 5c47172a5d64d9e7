// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_OBJECT_STUB_H
#define IPC_OBJECT_STUB_H

#include <memory>
#include <mutex>

#include "iremote_object.h"
#include "message_parcel.h"

namespace OHOS {

/** An object of this process. Its requests come on their caller's thread; on a platform's, from another process. */
class IPCObjectStub : public IRemoteObject {
public:
    /** With `serialInvokeFlag`, requests are served one at a time. */
    explicit IPCObjectStub(std::u16string descriptor = std::u16string(), bool serialInvokeFlag = false);

    int32_t GetObjectRefCount() override { return GetSptrRefCount(); }

    /** Runs OnRemoteRequest on this thread. */
    int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

    /** False: a local object's death is the end of this process. */
    bool AddDeathRecipient(const sptr<DeathRecipient>& /* recipient */) override { return false; }
    bool RemoveDeathRecipient(const sptr<DeathRecipient>& /* recipient */) override { return false; }

    bool IsProxyObject() const override { return false; }

    int Dump(int /* fd */, const std::vector<std::u16string>& /* args */) override { return ERR_NONE; }

    /**
     * Serves a request; the caller's identity is in IPCSkeleton meanwhile. By default IPC_STUB_UNKNOW_TRANS_ERR. A
     * caller in another process gets the result with an empty reply only: beside anything else in the reply it is 0.
     * What this throws on a platform thread ends the process.
     */
    virtual int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option);

private:
    const std::unique_ptr<std::recursive_mutex> serial_; // Null where requests may overlap.
};

} // namespace OHOS

#endif // IPC_OBJECT_STUB_H
