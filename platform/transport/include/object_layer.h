// SPDX-License-Identifier: Apache-2.0
#ifndef OBJECT_LAYER_H
#define OBJECT_LAYER_H

#include <cstdint>
#include <memory>
#include <vector>

#include "refbase.h"

namespace OHOS::Transport {

class Connection;
class Peer;
struct Message;

/** What the transport asks of the layer above, which knows the classes of objects. */
class ObjectLayer {
public:
    using Objects = std::vector<sptr<RefBase>>;

    virtual ~ObjectLayer() = default;

    /** Serves a call of `peer`, and answers it on `connection`. Returns what must live until the answer was read. */
    virtual Objects Serve(const std::shared_ptr<Peer>& peer, const Message& call, Connection& connection) = 0;

    /** A new proxy of one of the peer's objects. A lock of the peer's is held. */
    virtual sptr<RefBase> NewProxy(const std::shared_ptr<Peer>& peer, uint64_t id) = 0;

    /** On the notice thread: the peer of this proxy is dead. */
    virtual void AnnounceDeath(const sptr<RefBase>& proxy) = 0;

    /** Set once, when the layer's library is loaded. */
    static inline ObjectLayer* instance = nullptr;
};

} // namespace OHOS::Transport

#endif // OBJECT_LAYER_H
