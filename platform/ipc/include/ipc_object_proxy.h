// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_OBJECT_PROXY_H
#define IPC_OBJECT_PROXY_H

#include <memory>
#include <mutex>
#include <vector>

#include "iremote_object.h"
#include "message_parcel.h"

namespace OHOS {

namespace Transport {
class Peer;
} // namespace Transport

/** An object of another process. There is one per remote object, so that equal objects are equal pointers. */
class IPCObjectProxy : public IRemoteObject {
public:
    ~IPCObjectProxy() override;

    int32_t GetObjectRefCount() override { return GetSptrRefCount(); }

    /** The first request connects to the object's process. A code above 0x00ffffff: IPC_PROXY_INVALID_CODE_ERR. */
    int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

    /** Adding one twice makes two entries. A proxy that ends drops its recipients uncalled. */
    bool AddDeathRecipient(const sptr<DeathRecipient>& recipient) override;
    bool RemoveDeathRecipient(const sptr<DeathRecipient>& recipient) override;

    /** Not to be had from here: IPC_STUB_UNKNOW_TRANS_ERR. */
    int Dump(int /* fd */, const std::vector<std::u16string>& /* args */) override { return IPC_STUB_UNKNOW_TRANS_ERR; }

    bool IsObjectDead() const override;

private:
    friend class ParcelMessage;
    friend class RemoteObjects;

    IPCObjectProxy(std::shared_ptr<Transport::Peer> peer, uint64_t id);

    /** Calls the recipients, and drops them. */
    void AnnounceDeath();

    const std::shared_ptr<Transport::Peer> peer_;
    const uint64_t id_;
    std::mutex mutex_; // Guards the next one. No recipient is called or destroyed under it.
    std::vector<sptr<DeathRecipient>> recipients_;
};

} // namespace OHOS

#endif // IPC_OBJECT_PROXY_H
