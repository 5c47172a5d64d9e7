// SPDX-License-Identifier: Apache-2.0
#include "ipc_object_proxy.h"

#include <algorithm>
#include <utility>

#include "peer.h"
#include "process.h"

namespace OHOS {

IPCObjectProxy::IPCObjectProxy(std::shared_ptr<Transport::Peer> peer, uint64_t id) : peer_(std::move(peer)), id_(id) {}

IPCObjectProxy::~IPCObjectProxy()
{
    peer_->Remove(*this);
}

int32_t IPCObjectProxy::GetObjectRefCount()
{
    return GetSptrRefCount();
}

int IPCObjectProxy::SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    return peer_->Call(id_, code, data, reply, option);
}

bool IPCObjectProxy::AddDeathRecipient(const sptr<DeathRecipient>& recipient)
{
    if (!Transport::Process::IsUsable()) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    // The peer is marked dead before its obituary takes this lock, so that no recipient comes too late unnoticed.
    if (recipient == nullptr || IsObjectDead()) {
        return false;
    }
    recipients_.push_back(recipient);
    return true;
}

bool IPCObjectProxy::RemoveDeathRecipient(const sptr<DeathRecipient>& recipient)
{
    if (!Transport::Process::IsUsable()) {
        return false;
    }
    sptr<DeathRecipient> removed; // Destroyed after the lock is released.
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find(recipients_.begin(), recipients_.end(), recipient);
    if (found == recipients_.end()) {
        return false;
    }
    removed = std::move(*found);
    recipients_.erase(found);
    return true;
}

int IPCObjectProxy::Dump(int /* fd */, const std::vector<std::u16string>& /* args */)
{
    return ERR_UNKNOWN_CODE;
}

bool IPCObjectProxy::IsProxyObject() const
{
    return true;
}

bool IPCObjectProxy::IsObjectDead() const
{
    return peer_->IsDead();
}

void IPCObjectProxy::SendObituary()
{
    for (;;) {
        sptr<DeathRecipient> recipient;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            if (recipients_.empty()) {
                return;
            }
            recipient = std::move(recipients_.front());
            recipients_.pop_front();
        }
        recipient->OnRemoteDied(sptr<IRemoteObject>(this));
    }
}

} // namespace OHOS
