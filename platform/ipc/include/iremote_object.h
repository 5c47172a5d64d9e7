// SPDX-License-Identifier: Apache-2.0
#ifndef IREMOTE_OBJECT_H
#define IREMOTE_OBJECT_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ipc_types.h"
#include "message_option.h"
#include "parcel.h"
#include "refbase.h"

namespace OHOS {

class IRemoteBroker;
class MessageParcel;

/** An object that requests can be sent to, in this process or in another. Any thread may call anything. */
class IRemoteObject : public virtual Parcelable, public virtual RefBase {
public:
    ~IRemoteObject() override = default; // Declared, since on a device the virtual functions begin with it.

    /** Is notified of the end of a remote object. */
    class DeathRecipient : public virtual RefBase {
    public:
        /** Called once, on the notice thread. A slow one delays later notices, never a call. */
        virtual void OnRemoteDied(const wptr<IRemoteObject>& object) = 0;
    };

    virtual int32_t GetObjectRefCount() = 0;

    /**
     * Sends a request, and waits for the reply unless `option` says otherwise. Returns what the target's
     * OnRemoteRequest returned, or, not 0, that it did not come so far; `reply` is filled only at 0.
     */
    virtual int SendRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) = 0;

    /** Has `recipient`, which is held strongly, called at the object's death. False if it is null or that can't be. */
    virtual bool AddDeathRecipient(const sptr<DeathRecipient>& recipient) = 0;

    /** Takes one entry of `recipient` away. False if there is none. Does not wait for a notice under way. */
    virtual bool RemoveDeathRecipient(const sptr<DeathRecipient>& recipient) = 0;

    /** Writes a description for people to `fd`. 0 for success. */
    virtual int Dump(int fd, const std::vector<std::u16string>& args) = 0;

    /** True unless the object lives in this process. */
    virtual bool IsProxyObject() const { return true; }

    /** True once the object's process is gone. */
    virtual bool IsObjectDead() const { return false; }

    /** Writes the object to `parcel`, which must be a MessageParcel: false otherwise. */
    bool Marshalling(Parcel& parcel) const override;

    /** The interface that a local object implements; null by default. */
    virtual sptr<IRemoteBroker> AsInterface();

    std::u16string GetObjectDescriptor() const { return descriptor_; }

protected:
    explicit IRemoteObject(std::u16string descriptor = std::u16string()) : descriptor_(std::move(descriptor)) {}

private:
    const std::u16string descriptor_;
};

} // namespace OHOS

#endif // IREMOTE_OBJECT_H
