// SPDX-License-Identifier: Apache-2.0
#ifndef PARCEL_MESSAGE_H
#define PARCEL_MESSAGE_H

#include "message.h"
#include "message_parcel.h"
#include "object_layer.h"
#include "object_table.h"

namespace OHOS {

/** A parcel as a message to a peer. Its objects are pinned for the peer, until its end if it is not sent. */
class ParcelMessage {
public:
    /** Both must outlive this. */
    ParcelMessage(Transport::ObjectTable& table, const MessageParcel& parcel);
    ParcelMessage(const ParcelMessage&) = delete;
    ParcelMessage& operator=(const ParcelMessage&) = delete;
    ~ParcelMessage();

    /** Those of its objects that are the peer's own. */
    Transport::ObjectLayer::Objects HomeBound() const;

    /**
     * Appends a peer's message to `parcel`. 0; or, `parcel` being as it was and what the message brought released,
     * Transport::REFUSED if it names an object that the peer cannot know, or Transport::NO_MEMORY.
     */
    static int Read(const Transport::Message& message, Transport::ObjectTable& table, MessageParcel& parcel);

    Transport::Message message; // To be given its kind and sent, unless there is an error.
    int error = 0;              // 0 or a Transport::Error.

private:
    Transport::ObjectTable& table_;
    const MessageParcel& parcel_;
};

} // namespace OHOS

#endif // PARCEL_MESSAGE_H
