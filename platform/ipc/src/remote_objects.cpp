// SPDX-License-Identifier: Apache-2.0
// What the transport knows as bare objects are IRemoteObjects: serves its calls, and makes its proxies.
#include "connection.h"
#include "ipc_object_proxy.h"
#include "object_layer.h"
#include "parcel_message.h"
#include "peer.h"
#include "process.h"
#include "transport_error.h"

namespace OHOS {

using Transport::Header;
using Transport::Message;

class RemoteObjects : public Transport::ObjectLayer {
public:
    Objects Serve(
        const std::shared_ptr<Transport::Peer>& peer, const Message& call, Transport::Connection& connection) override
    {
        MessageParcel data;
        MessageParcel reply;
        MessageOption option(static_cast<int>(call.header.flags));
        int result = ParcelMessage::Read(call, *peer, data);
        if (result == 0) {
            const sptr<RefBase> target = peer->Find(call.header.objectId);
            auto* const object = dynamic_cast<IRemoteObject*>(target.GetRefPtr());
            result =
                object != nullptr ? object->SendRequest(call.header.code, data, reply, option) : Transport::REFUSED;
            Transport::Process::WatchExit();
        }
        if (call.header.flags == Header::ONE_WAY || Transport::Process::IsForked()) {
            return {};
        }
        ParcelMessage answer(*peer, reply);
        // Contract: a result travels only with an empty reply, as on a device.
        const int status = reply.GetDataSize() > 0 ? 0 : result;
        const int error = answer.error != 0 ? answer.error : Answer(connection, call, answer.message, status);
        if (error != 0 && error != Transport::DEAD) { // The reply cannot travel: the caller learns why.
            Message failure;
            Answer(connection, call, failure, error);
        }
        return answer.HomeBound();
    }

    sptr<RefBase> NewProxy(const std::shared_ptr<Transport::Peer>& peer, uint64_t id) override
    {
        return sptr<RefBase>(new IPCObjectProxy(peer, id));
    }

    void AnnounceDeath(const sptr<RefBase>& proxy) override { dynamic_cast<IPCObjectProxy&>(*proxy).AnnounceDeath(); }

private:
    static int Answer(const Transport::Connection& connection, const Message& call, Message& answer, int status)
    {
        answer.header.kind = Header::REPLY;
        answer.header.code = static_cast<uint32_t>(status);
        answer.header.number = call.header.number;
        return answer.Send(connection.Get());
    }
};

// From the moment when this library is loaded.
[[maybe_unused]] static const auto* const IS_SET = Transport::ObjectLayer::instance = new RemoteObjects();

} // namespace OHOS
