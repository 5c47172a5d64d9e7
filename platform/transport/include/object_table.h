// SPDX-License-Identifier: Apache-2.0
#ifndef OBJECT_TABLE_H
#define OBJECT_TABLE_H

#include <cstdint>

#include "refbase.h"

namespace OHOS::Transport {

/** The objects that a peer and this process have of each other, by the ids in handles. Any thread may call anything. */
class ObjectTable {
public:
    virtual ~ObjectTable() = default;

    /** Pins an object of this process, once more, for the peer, who is about to be sent it. False if that is gone. */
    virtual bool Pin(const sptr<RefBase>& object, uint64_t& id) = 0;

    /** Takes pins off, or as many as there are: the object was not sent, or the peer gives it up. */
    virtual void Unpin(uint64_t id, uint32_t count) = 0;

    /** An object of this process that the peer may call; null if there is none. */
    virtual sptr<RefBase> Find(uint64_t id) = 0;

    /** The one proxy of an object of the peer's, which has just been received. */
    virtual sptr<RefBase> Receive(uint64_t id) = 0;
};

} // namespace OHOS::Transport

#endif // OBJECT_TABLE_H
