// SPDX-License-Identifier: Apache-2.0
#include "worker.h"

#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "contender.h"
#include "sockets.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

Worker::Worker(const std::function<void(int)>& body)
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        Fail("no socket pair");
    }
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        close(ends[0]);
        body(ends[1]);
        std::_Exit(0);
    }
    close(ends[1]);
    line_ = ends[0];
}

Worker::~Worker()
{
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    close(line_);
}

void Worker::SendBytes(const void* data, size_t size) const
{
    if (!SendAll(line_, data, size)) {
        Fail("a worker has ended");
    }
}

void Worker::ReceiveBytes(void* data, size_t size) const
{
    if (!ReceiveAll(line_, data, size)) {
        Fail("a worker has ended");
    }
}

void Pin(pid_t process, int processor)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    for (int i = 0; i < CPU_SETSIZE; ++i) {
        if (processor < 0 || i == processor) {
            CPU_SET(i, &set);
        }
    }
    const std::filesystem::path tasks = "/proc/" + std::to_string(process) + "/task";
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
        // A thread may have ended meanwhile.
        if (sched_setaffinity(std::atoi(task.path().filename().c_str()), sizeof(set), &set) != 0 && errno != ESRCH) {
            Fail("there is no processor " + std::to_string(processor) + " to run on");
        }
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
