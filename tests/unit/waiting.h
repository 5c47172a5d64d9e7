// SPDX-License-Identifier: Apache-2.0
#ifndef WAITING_H
#define WAITING_H

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** Counts what happens on any thread, so that another can wait for it. */
class Counter {
public:
    void Add()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        ++count;
        changed.notify_all();
    }

    /** True once it happened `times` times in all; false after half a minute. */
    bool Reaches(int times)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_until(lock, std::chrono::system_clock::now() + std::chrono::seconds(30),
            [this, times] { return count >= times; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // WAITING_H
