// SPDX-License-Identifier: Apache-2.0
#include "ipc_object_proxy.h"

#include <algorithm>
#include <utility>

#include "parcel_message.h"
#include "peer.h"
#include "process.h"
#include "transport_error.h"

namespace OHOS {

IPCObjectProxy::IPCObjectProxy(std::shared_ptr<Transport::Peer> peer, uint64_t id) : peer_(std::move(peer)), id_(id) {}

IPCObjectProxy::~IPCObjectProxy() { peer_->Forget(id_); }

int IPCObjectProxy::SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option)
{
    constexpr uint32_t LAST_CODE = 0x00ffffff;
    if (code > LAST_CODE) {
        return IPC_PROXY_INVALID_CODE_ERR;
    }
    const auto deadline = Transport::Clock::now() + std::chrono::seconds(std::max(option.GetWaitTime(), 0));
    if (!Transport::Process::IsUsable() || IsObjectDead()) {
        return ERR_DEAD_OBJECT;
    }
    ParcelMessage sent(*peer_, data);
    if (sent.error != 0) {
        return sent.error;
    }
    Transport::Message& call = sent.message;
    call.header.kind = Transport::Header::CALL;
    call.header.code = code;
    call.header.objectId = id_;
    if ((static_cast<uint32_t>(option.GetFlags()) & MessageOption::TF_ASYNC) != 0) {
        call.header.flags = Transport::Header::ONE_WAY;
        return peer_->CallOneWay(call);
    }
    return peer_->Call(
        call, deadline, [&](const Transport::Message& answer) { return ParcelMessage::Read(answer, *peer_, reply); });
}

bool IPCObjectProxy::AddDeathRecipient(const sptr<DeathRecipient>& recipient)
{
    if (!Transport::Process::IsUsable()) {
        return false;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    // The peer is marked dead before its death is announced, so that no recipient comes too late unnoticed.
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

bool IPCObjectProxy::IsObjectDead() const { return peer_->IsDead(); }

void IPCObjectProxy::AnnounceDeath()
{
    for (;;) {
        sptr<DeathRecipient> recipient;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            if (recipients_.empty()) {
                return;
            }
            recipient = std::move(recipients_.front());
            recipients_.erase(recipients_.begin());
        }
        recipient->OnRemoteDied(sptr<IRemoteObject>(this));
    }
}

} // namespace OHOS
