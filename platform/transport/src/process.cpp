// SPDX-License-Identifier: Apache-2.0
#include "process.h"

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <thread>

#include "mutex.h"

namespace OHOS::Transport {

namespace {

constexpr std::chrono::seconds EXIT_PATIENCE{1};

std::atomic<bool> g_isUsable{true};
std::atomic<bool> g_isForked{false};
std::atomic<int> g_activities{0};
std::atomic<unsigned> g_callbacks{0};

Mutex& g_mutex = *new Mutex();
Condition& g_idle = *new Condition(); // No activity is left, at exit.

void BeginExit()
{
    if (g_isUsable.exchange(false)) { // Else it has begun already, or this is a fork's child.
        const auto deadline = Clock::now() + EXIT_PATIENCE;
        MutexLock lock(g_mutex);
        while (g_activities > 0 && g_idle.WaitUntil(lock, deadline)) {
        }
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

[[maybe_unused]] const bool IS_LOADED_BY_MAIN = [] {
    thread_local ExitGuard guard;
    guard.isArmed = getpid() == gettid();
    return guard.isArmed;
}();

} // namespace

bool Process::IsUsable() { return g_isUsable; }

// First counted, then asked: whoever passes is waited for.
Process::Activity::Activity() : begun_((++g_activities, g_isUsable.load())) {}

Process::Activity::~Activity()
{
    if (--g_activities == 0 && !g_isUsable && !g_isForked) {
        const MutexLock lock(g_mutex);
        g_idle.NotifyAll();
    }
}

void Process::WatchExit()
{
    const unsigned count = ++g_callbacks;
    if ((count & (count - 1)) == 0) { // After 1, 2, 4, 8... of them.
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
    } catch (const std::exception&) { // No thread, or no memory for it.
        isStarted = false;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return isStarted;
}

bool Process::IsForked() { return g_isForked; }

void Process::MarkForked()
{
    g_isForked = true;
    g_isUsable = false;
}

} // namespace OHOS::Transport
