// SPDX-License-Identifier: Apache-2.0
#ifndef MESSAGE_PARCEL_H
#define MESSAGE_PARCEL_H

#include <memory>
#include <string>
#include <vector>

#include "iremote_object.h"
#include "parcel.h"

namespace OHOS {

namespace Transport {
class Peer;
class Incoming;
class Outgoing;
} // namespace Transport

/** A parcel that also carries an interface token and remote objects. Not thread-safe. */
class MessageParcel : public Parcel {
public:
    MessageParcel();
    ~MessageParcel() override;

    /** Two int32, then the token as a UTF-16 string. A first int32 without room for the second is taken back. */
    bool WriteInterfaceToken(std::u16string token);

    /** The token; empty if there is none. */
    std::u16string ReadInterfaceToken();

    /**
     * Adds an object, which the parcel then holds strongly: 24 bytes. False for null, and for a proxy when the parcel
     * goes to, or already holds a proxy of, another process than the proxy's: objects are handed on by their owner
     * only.
     */
    bool WriteRemoteObject(const sptr<IRemoteObject>& object);

    /**
     * The object at the read cursor: this process's own one if it came home, else a proxy. Null, and no change, where
     * no object was written.
     */
    sptr<IRemoteObject> ReadRemoteObject();

protected:
    bool HasObject(size_t begin, size_t end) const override;

private:
    friend class Transport::Incoming;
    friend class Transport::Outgoing;
    friend class Transport::Peer;

    struct Entry {
        size_t position;
        sptr<IRemoteObject> object;
    };

    std::vector<Entry> objects_;            // By rising position.
    std::shared_ptr<Transport::Peer> peer_; // The one other process that this parcel has to do with, once known.
};

} // namespace OHOS

#endif // MESSAGE_PARCEL_H
