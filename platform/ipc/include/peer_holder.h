// SPDX-License-Identifier: Apache-2.0
#ifndef PEER_HOLDER_H
#define PEER_HOLDER_H

#include "iremote_object.h"

namespace OHOS {

/** Holds the remote object of a proxy. */
class PeerHolder {
public:
    virtual ~PeerHolder() = default;

protected:
    explicit PeerHolder(const sptr<IRemoteObject>& object) : remote_(object) {}

    /** The remote object; null if the proxy was made without one. */
    sptr<IRemoteObject> Remote() { return remote_; }

private:
    const sptr<IRemoteObject> remote_;
};

} // namespace OHOS

#endif // PEER_HOLDER_H
