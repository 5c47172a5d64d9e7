// SPDX-License-Identifier: Apache-2.0
#include "listener_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "indicator_switch_listener_intf.h"
#include "ipc_object_stub.h"
#include "print.h"
#include "service_probe.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

// For a service that has yet to notice the death of former listeners.
constexpr std::chrono::seconds REGISTRATION_PATIENCE{3};
constexpr std::chrono::milliseconds RETRY_INTERVAL{20};

} // namespace

void HoldListeners(const sptr<IRemoteObject>& service, size_t count)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const ServiceProbe probe(service);
    const auto deadline = std::chrono::steady_clock::now() + REGISTRATION_PATIENCE;
    std::vector<sptr<IRemoteObject>> taken;
    while (taken.size() < count && std::chrono::steady_clock::now() < deadline) {
        const sptr<IRemoteObject> listener(new IPCObjectStub(Indicator::IndicatorSwitchListenerIntf::GetDescriptor()));
        if (probe.RegisterSwitchListener(listener) == ACCEPTED) {
            taken.push_back(listener);
        } else {
            std::this_thread::sleep_for(RETRY_INTERVAL);
        }
    }
    PrintLine(std::to_string(taken.size()));
    for (;;) {
        pause();
    }
}

ListenerProcess::ListenerProcess(size_t count)
{
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        return;
    }
    std::string program = "indicator_ctl";
    std::string command = HOLD_LISTENERS;
    std::string number = std::to_string(count);
    std::array<char*, 4> arguments{program.data(), command.data(), number.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    if (posix_spawn(&process_, "/proc/self/exe", &actions, nullptr, arguments.data(), environ) != 0) {
        process_ = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(pipe[1]);
    // It prints one line within REGISTRATION_PATIENCE, or ends.
    std::FILE* const output = fdopen(pipe[0], "r");
    if (std::fscanf(output, "%zu", &taken_) != 1) {
        taken_ = 0;
    }
    std::fclose(output);
}

ListenerProcess::~ListenerProcess()
{
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

size_t ListenerProcess::GetTaken() const { return taken_; }

void ListenerProcess::Freeze() const
{
    if (process_ > 0) {
        kill(process_, SIGSTOP);
        waitpid(process_, nullptr, WUNTRACED);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
