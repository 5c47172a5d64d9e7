// SPDX-License-Identifier: Apache-2.0
#ifndef IREMOTE_STUB_H
#define IREMOTE_STUB_H

#include "ipc_object_stub.h"
#include "iremote_broker.h"

namespace OHOS {

/** Base of interface I's stub: a local object that is also the interface. */
template <typename I>
class IRemoteStub : public IPCObjectStub, public I {
public:
    explicit IRemoteStub(bool serialInvokeFlag = false) : IPCObjectStub(I::GetDescriptor(), serialInvokeFlag) {}

    sptr<IRemoteObject> AsObject() override { return sptr<IRemoteObject>(this); }

    sptr<IRemoteBroker> AsInterface() override { return sptr<IRemoteBroker>(this); }
};

} // namespace OHOS

#endif // IREMOTE_STUB_H
