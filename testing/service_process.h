// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_PROCESS_H
#define SERVICE_PROCESS_H

#include <chrono>

#include "iremote_object.h"
#include "refbase.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

/**
 * Lets a service run in this process as if it ran in one of its own: callers reach it through a remote object that can
 * die. No bus and no other process is needed. There may be one at a time. It is not thread-safe, and no listener may
 * call it: Start and Kill wait until the listeners have returned.
 */
class ServiceProcess {
public:
    /** Starts with `service`. */
    explicit ServiceProcess(const sptr<IRemoteObject>& service);

    /** Kills the process, if it runs. */
    ~ServiceProcess();

    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /**
     * Starts the process anew, with `service`, after Kill. On return the client has registered its listeners, and all
     * subscribers to the service have been called. A service that was killed still has its former listeners.
     */
    void Start(const sptr<IRemoteObject>& service);

    /**
     * Kills the process: every request fails, those that are delayed included. On return the client has dropped its
     * proxy and called its listeners, and all subscribers to the service have been called.
     */
    void Kill();

    /** Has every request wait before the service gets it, until the next start. */
    void SetDelay(std::chrono::milliseconds delay);

    /**
     * Has every request fail with this code of the platform's, without reaching the service, until the next start; 0
     * ends that.
     */
    void SetError(int error);

private:
    class Remote;

    sptr<Remote> remote_; // Null while the process is dead.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing

#endif // SERVICE_PROCESS_H
