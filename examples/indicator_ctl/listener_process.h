// SPDX-License-Identifier: Apache-2.0
#ifndef LISTENER_PROCESS_H
#define LISTENER_PROCESS_H

#include <sys/types.h>

#include <cstddef>

#include "iremote_object.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The command of this program that ListenerProcess starts. The help leaves it out. */
inline constexpr const char* HOLD_LISTENERS = "hold-listeners";

/** Registers `count` switch listeners, prints how many the service took within some seconds, and waits to be killed. */
[[noreturn]] void HoldListeners(const sptr<IRemoteObject>& service, size_t count);

/** Another process of this program, which holds listeners. It is killed with this object. */
class ListenerProcess {
public:
    explicit ListenerProcess(size_t count);
    ~ListenerProcess();
    ListenerProcess(const ListenerProcess&) = delete;
    ListenerProcess& operator=(const ListenerProcess&) = delete;

    /** How many of its listeners the service has taken; 0 if the process could not be started. */
    size_t GetTaken() const;

    /** Stops the process, so that it reads nothing any more. */
    void Freeze() const;

private:
    pid_t process_ = -1;
    size_t taken_ = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // LISTENER_PROCESS_H
