// SPDX-License-Identifier: Apache-2.0
#ifndef MESSAGE_PARCEL_H
#define MESSAGE_PARCEL_H

#include <map>
#include <string>

#include "iremote_object.h"
#include "parcel.h"

namespace OHOS {

/** A parcel that also carries an interface token and remote objects. Not thread-safe. */
class MessageParcel : public Parcel {
public:
    /** Two int32, then the token as a UTF-16 string. A first int32 without room for the second is taken back. */
    bool WriteInterfaceToken(std::u16string token);

    /** The token; empty if there is none. */
    std::u16string ReadInterfaceToken();

    /**
     * Adds an object, which the parcel then holds strongly: 24 bytes. False for null. A parcel with a proxy can be sent
     * to the proxy's process only: objects are handed on by their owner.
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
    friend class ParcelMessage;

    std::map<size_t, sptr<IRemoteObject>> objects_; // By position.
};

} // namespace OHOS

#endif // MESSAGE_PARCEL_H
