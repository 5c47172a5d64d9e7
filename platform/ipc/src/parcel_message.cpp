// SPDX-License-Identifier: Apache-2.0
#include "parcel_message.h"

#include "ipc_object_proxy.h"
#include "peer.h"
#include "transport_error.h"

namespace OHOS {

using Transport::Handle;

ParcelMessage::ParcelMessage(Transport::ObjectTable& table, const MessageParcel& parcel)
    : table_(table), parcel_(parcel)
{
    const size_t size = parcel.GetDataSize();
    // A parcel's address is a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
    message.data = reinterpret_cast<const void*>(parcel.GetData());
    message.header.dataSize = static_cast<uint32_t>(size);
    if (size > Transport::MAX_MESSAGE_SIZE || parcel.objects_.size() > Transport::MAX_HANDLES) {
        error = Transport::TOO_LARGE;
        return;
    }
    message.handles.reserve(parcel.objects_.size());
    for (const auto& [position, object] : parcel.objects_) {
        Handle handle{Handle::SENDER, static_cast<uint32_t>(position), 0};
        if (const auto* proxy = dynamic_cast<const IPCObjectProxy*>(object.GetRefPtr())) {
            handle.owner = Handle::RECEIVER;
            handle.id = proxy->id_;
            error = proxy->peer_.get() == &table_ ? 0 : Transport::FOREIGN_OBJECT;
        } else {
            error = table_.Pin(object, handle.id) ? 0 : Transport::DEAD;
        }
        if (error != 0) {
            return;
        }
        message.handles.push_back(handle);
    }
}

ParcelMessage::~ParcelMessage()
{
    for (const Handle& handle : message.handles) {
        if (!message.wasSent && handle.owner == Handle::SENDER) {
            table_.Unpin(handle.id, 1);
        }
    }
}

Transport::ObjectLayer::Objects ParcelMessage::HomeBound() const
{
    Transport::ObjectLayer::Objects objects;
    for (const Handle& handle : message.handles) {
        if (handle.owner == Handle::RECEIVER) {
            objects.emplace_back(parcel_.objects_.at(handle.position));
        }
    }
    return objects;
}

int ParcelMessage::Read(const Transport::Message& message, Transport::ObjectTable& table, MessageParcel& parcel)
{
    const size_t start = parcel.GetDataSize();
    decltype(parcel.objects_) objects;
    bool areKnown = true;
    for (const Handle& handle : message.handles) { // All of them: what is brought is released even if others fail.
        const sptr<RefBase> object = handle.owner == Handle::SENDER ? table.Receive(handle.id) : table.Find(handle.id);
        objects.emplace(start + handle.position, dynamic_cast<IRemoteObject*>(object.GetRefPtr()));
        areKnown = areKnown && object != nullptr;
    }
    if (!areKnown) {
        return Transport::REFUSED;
    }
    if (message.header.dataSize > 0) {
        parcel.SetMaxCapacity(start + message.header.dataSize);
        if (!parcel.WriteBuffer(message.data, message.header.dataSize)) {
            return Transport::NO_MEMORY;
        }
    }
    if (!objects.empty()) {
        parcel.objects_.merge(objects);
        parcel.SetHasObjects();
    }
    parcel.SetReceived();
    return 0;
}

} // namespace OHOS
