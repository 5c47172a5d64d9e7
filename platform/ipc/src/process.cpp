// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

namespace OHOS::Transport {

namespace {

constexpr std::chrono::seconds EXIT_PATIENCE{1};

// Never destroyed: other threads use it until the process is gone.
struct State {
    std::atomic<bool> usable{true};
    std::atomic<bool> forked{false};
    std::atomic<int> activities{0};
    std::mutex mutex;
    std::condition_variable idle;
};

State& GetState()
{
    static auto& state = *new State();
    return state;
}

bool BeginActivity()
{
    State& state = GetState();
    // First counted, then asked: whoever passes is waited for.
    ++state.activities;
    return state.usable;
}

void BeginExit()
{
    State& state = GetState();
    state.usable = false;
    std::unique_lock<std::mutex> lock(state.mutex);
    state.idle.wait_for(lock, EXIT_PATIENCE, [&state] { return state.activities == 0; });
}

// The main thread's thread-locals go before any static object: the last moment at which callbacks are safe.
struct ExitGuard {
    bool armed = false;

    ~ExitGuard()
    {
        if (armed && GetState().usable) {
            BeginExit();
        }
    }
};

const bool EXIT_GUARD_ARMED = [] {
    thread_local ExitGuard guard;
    guard.armed = getpid() == gettid();
    return guard.armed;
}();

void* RunThread(void* argument)
{
    const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(argument));
    (*body)();
    return nullptr;
}

} // namespace

bool Process::IsUsable()
{
    return GetState().usable;
}

Process::Activity::Activity() : begun_(BeginActivity()) {}

Process::Activity::~Activity()
{
    State& state = GetState();
    if (--state.activities == 0 && !state.usable) {
        std::lock_guard<std::mutex> lock(state.mutex);
        state.idle.notify_all();
    }
}

bool Process::StartThread(std::function<void()> body)
{
    auto argument = std::make_unique<std::function<void()>>(std::move(body));
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const bool started = pthread_create(&thread, &attributes, RunThread, argument.get()) == 0;
    if (started) {
        static_cast<void>(argument.release()); // The thread's own now.
    }
    pthread_attr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

bool Process::IsForked()
{
    return GetState().forked;
}

void Process::MarkForked()
{
    GetState().forked = true;
    GetState().usable = false;
}

} // namespace OHOS::Transport
