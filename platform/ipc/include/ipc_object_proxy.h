// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_OBJECT_PROXY_H
#define IPC_OBJECT_PROXY_H

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "iremote_object.h"
#include "message_parcel.h"

namespace OHOS {

/** An object of another process. There is one per remote object, so that equal objects are equal pointers. */
class IPCObjectProxy : public IRemoteObject {
public:
    ~IPCObjectProxy() override;

    int32_t GetObjectRefCount() override;

    /** The first request connects to the object's process, within the wait time. */
    int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

    /** Adding one twice makes two entries. A proxy that ends drops its recipients uncalled. */
    bool AddDeathRecipient(const sptr<DeathRecipient>& recipient) override;
    bool RemoveDeathRecipient(const sptr<DeathRecipient>& recipient) override;

    /** Not to be had from here: ERR_UNKNOWN_CODE. */
    int Dump(int fd, const std::vector<std::u16string>& args) override;

    bool IsProxyObject() const override;
    bool IsObjectDead() const override;

private:
    friend class Transport::Peer;
    friend class Transport::Outgoing;
    friend class MessageParcel;

    IPCObjectProxy(std::shared_ptr<Transport::Peer> peer, uint64_t id);

    /** Tells the recipients, and drops them. */
    void SendObituary();

    const std::shared_ptr<Transport::Peer> peer_;
    const uint64_t id_;
    uint32_t received_ = 0; // How often the peer sent this object. Guarded by the peer.
    std::mutex mutex_;
    std::deque<sptr<DeathRecipient>> recipients_;
};

} // namespace OHOS

#endif // IPC_OBJECT_PROXY_H
