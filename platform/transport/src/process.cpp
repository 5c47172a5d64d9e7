// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <system_error>
#include <thread>
#include <utility>

#include "mutex.h"
#include "never_destroyed.h"

namespace OHOS::Transport {

namespace {

constexpr std::chrono::seconds EXIT_PATIENCE{1};

struct State {
    std::atomic<bool> isUsable{true};
    std::atomic<bool> isForked{false};
    std::atomic<int> activities{0};
    std::atomic<uint64_t> callbacks{0};
    Mutex mutex;
    Condition idle;
};

State& GetState()
{
    static NeverDestroyed<State> state;
    return *state;
}

void BeginExit()
{
    State& state = GetState();
    if (!state.isUsable.exchange(false)) {
        return; // It has begun already, or this is a fork's child.
    }
    const auto deadline = Clock::now() + EXIT_PATIENCE;
    MutexLock lock(state.mutex);
    while (state.activities > 0 && state.idle.WaitUntil(lock, deadline)) {
    }
}

// The main thread's thread-locals go before any static object: the last moment at which callbacks are safe.
struct ExitGuard {
    bool isArmed = false;

    ~ExitGuard()
    {
        if (isArmed) {
            BeginExit();
        }
    }
};

const bool IS_LOADED_BY_MAIN = [] {
    thread_local ExitGuard guard;
    guard.isArmed = getpid() == gettid();
    return guard.isArmed;
}();

} // namespace

bool Process::IsUsable()
{
    return GetState().isUsable;
}

// First counted, then asked: whoever passes is waited for.
Process::Activity::Activity() : begun_((++GetState().activities, GetState().isUsable.load())) {}

Process::Activity::~Activity()
{
    State& state = GetState();
    if (--state.activities == 0 && !state.isUsable && !state.isForked) {
        const MutexLock lock(state.mutex);
        state.idle.NotifyAll();
    }
}

void Process::WatchExit()
{
    const uint64_t count = ++GetState().callbacks;
    if (!IS_LOADED_BY_MAIN && (count & (count - 1)) == 0) { // After 1, 2, 4, 8... of them.
        std::atexit(BeginExit);
    }
}

bool Process::StartThread(std::function<void()> body)
{
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    for (const int crash : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
        sigdelset(&blocked, crash);
    }
    pthread_sigmask(SIG_SETMASK, &blocked, &before);
    bool isStarted = true;
    try {
        std::thread(std::move(body)).detach();
    } catch (const std::system_error&) {
        isStarted = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isStarted;
}

bool Process::IsForked()
{
    return GetState().isForked;
}

void Process::MarkForked()
{
    GetState().isForked = true;
    GetState().isUsable = false;
}

} // namespace OHOS::Transport
