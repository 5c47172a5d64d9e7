// SPDX-License-Identifier: Apache-2.0
#ifndef WORKER_H
#define WORKER_H

#include <sys/types.h>

#include <functional>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** A process forked from this one, which ends with this object. */
class Worker {
public:
    /** Runs `body` there. It is given the line to this process, a socket. */
    explicit Worker(const std::function<void(int)>& body);
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker();

    pid_t Pid() const { return pid_; }

    /** Hands plain bytes over; ends this process if the other has ended. */
    template <typename T>
    void Send(const T& value) const
    {
        SendBytes(&value, sizeof(value));
    }

    template <typename T>
    T Receive() const
    {
        T value{};
        ReceiveBytes(&value, sizeof(value));
        return value;
    }

private:
    void SendBytes(const void* data, size_t size) const;
    void ReceiveBytes(void* data, size_t size) const;

    pid_t pid_ = 0;
    int line_ = -1;
};

/** Where processes may run: all on the first processor, on one each in turn, or anywhere. */
enum class Placement { ONE_CORE, TWO_CORES, FREE };

/** Lets all threads of a process, which exist already, run on one processor alone; on any for a negative number. */
void Pin(pid_t process, int processor);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // WORKER_H
