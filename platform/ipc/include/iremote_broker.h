// SPDX-License-Identifier: Apache-2.0
#ifndef IREMOTE_BROKER_H
#define IREMOTE_BROKER_H

#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "iremote_object.h"
#include "refbase.h"

namespace OHOS {

/** Base of every interface whose objects can be remote. Derive plainly: iface_cast casts down statically. */
class IRemoteBroker : public virtual RefBase {
public:
    ~IRemoteBroker() override = default; // Declared, since on a device the virtual functions begin with it.

    /** The object that requests go to; null if there is none. */
    virtual sptr<IRemoteObject> AsObject() = 0;
};

/** Names an interface: the token of its requests, and the key of its proxy's registration. */
#define DECLARE_INTERFACE_DESCRIPTOR(DESCRIPTOR)                                                                       \
    static std::u16string GetDescriptor() { return DESCRIPTOR; }

/** Makes a proxy of type T for a remote object; null if there is no memory for it. */
template <typename T>
class BrokerCreator {
public:
    sptr<IRemoteBroker> operator()(const sptr<IRemoteObject>& object) { return sptr<T>::MakeSptr(object); }
};

/** What the registration knows of a delegator. */
class BrokerDelegatorBase {
public:
    BrokerDelegatorBase() = default;
    BrokerDelegatorBase(const BrokerDelegatorBase&) = delete;
    BrokerDelegatorBase& operator=(const BrokerDelegatorBase&) = delete;
    virtual ~BrokerDelegatorBase() = default;

    bool isSoUnloaded = false;  // Nothing is left to unregister from.
    std::u16string descriptor_; // Empty if the registration was refused.
};

/** Which proxy belongs to which interface. One per process, never destroyed; any thread may call anything. */
class BrokerRegistration {
public:
    using Constructor = std::function<sptr<IRemoteBroker>(const sptr<IRemoteObject>&)>;

    static BrokerRegistration& Get();

    /** False, and no change, if `descriptor` is empty or taken. `delegator` unregisters it later. */
    bool Register(const std::u16string& descriptor, const Constructor& creator, const BrokerDelegatorBase* delegator);

    void Unregister(const std::u16string& descriptor);

    /**
     * An interface to `object`: a proxy from the registered creator for an object of another process, the object
     * itself if it is local and of that descriptor. Null otherwise.
     */
    sptr<IRemoteBroker> NewInstance(const std::u16string& descriptor, const sptr<IRemoteObject>& object);

private:
    BrokerRegistration() = default;

    std::mutex mutex_;
    std::map<std::u16string, Constructor> creators_;
};

/** Registers T's creator as long as it lives. It is a static member of the proxy T. */
template <typename T>
class BrokerDelegator : public BrokerDelegatorBase {
public:
    BrokerDelegator()
    {
        const std::u16string descriptor = T::GetDescriptor();
        if (BrokerRegistration::Get().Register(descriptor, BrokerCreator<T>(), this)) {
            descriptor_ = descriptor;
        }
    }

    ~BrokerDelegator() override
    {
        if (!isSoUnloaded && !descriptor_.empty()) {
            BrokerRegistration::Get().Unregister(descriptor_);
        }
    }
};

/** `object` as interface I, whose proxies and stubs derive from it plainly; null if it is none. */
template <typename I>
sptr<I> iface_cast(const sptr<IRemoteObject>& object)
{
    const sptr<IRemoteBroker> broker = BrokerRegistration::Get().NewInstance(I::GetDescriptor(), object);
    return sptr<I>(static_cast<I*>(broker.GetRefPtr()));
}

} // namespace OHOS

#endif // IREMOTE_BROKER_H
