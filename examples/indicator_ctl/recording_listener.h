// SPDX-License-Identifier: Apache-2.0
#ifndef RECORDING_LISTENER_H
#define RECORDING_LISTENER_H

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "ipc_object_stub.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** A switch listener that decodes what it is sent by itself, and keeps it. Any thread may call anything. */
class RecordingListener : public IPCObjectStub {
public:
    RecordingListener();

    int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override;

    /**
     * What it was called with since the last time, in order: "camera on", or what was wrong with the call. Waits until
     * it has been called `count` times, or for some seconds, and then a moment for further calls.
     */
    std::vector<std::string> TakeCalls(size_t count);

    /** Whether it is called with `call` within some seconds. Forgets all calls until then. */
    bool IsCalledWith(const std::string& call);

private:
    std::mutex mutex_;
    std::condition_variable called_;
    std::vector<std::string> calls_;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // RECORDING_LISTENER_H
