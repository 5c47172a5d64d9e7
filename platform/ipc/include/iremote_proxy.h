// SPDX-License-Identifier: Apache-2.0
#ifndef IREMOTE_PROXY_H
#define IREMOTE_PROXY_H

#include "iremote_broker.h"
#include "peer_holder.h"

namespace OHOS {

/** Base of interface I's proxy, which sends each operation of I to the remote object. */
template <typename I>
class IRemoteProxy : public PeerHolder, public I {
public:
    explicit IRemoteProxy(const sptr<IRemoteObject>& object) : PeerHolder(object) {}

protected:
    sptr<IRemoteObject> AsObject() override { return Remote(); }
};

} // namespace OHOS

#endif // IREMOTE_PROXY_H
