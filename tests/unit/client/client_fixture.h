// SPDX-License-Identifier: Apache-2.0
#ifndef CLIENT_FIXTURE_H
#define CLIENT_FIXTURE_H

#include <atomic>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "fakes.h"
#include "indicator_switch_listener.h"
#include "privacy_event_listener.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** Where a variant has its own: runs the operations with the tests' service, or with none if there is none. */
struct Gate {
    static inline std::atomic<int> passed = 0; // How often it was called.
    static inline sptr<FakeService> service;
    static inline std::function<void()> before; // Runs before each operation.
};

inline Lines Repeated(size_t count, const Lines& lines)
{
    return count == 0 ? Lines{} : Repeated(count - 1, lines) + lines;
}

/** A listener of both kinds. Writes down what it hears, with its name in front. */
class Ear : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    explicit Ear(std::string name) : name_(std::move(name)) {}

    void OnSwitchChanged(const IndicatorData& indicatorData) override
    {
        Hear(indicatorData.ToString());
    }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        std::string all = dataType;
        for (const auto& info : infos) {
            all += " " + info.ToString();
        }
        Hear(all);
    }

    /** What was heard since the last time. */
    Lines Take()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(heard_, {});
    }

    std::function<void()> whenCalled;
    std::atomic<bool> mayHear = true;

private:
    void Hear(const std::string& what)
    {
        EXPECT_TRUE(mayHear) << what;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            heard_.push_back(name_ + what);
        }
        if (whenCalled) {
            whenCalled();
        }
    }

    const std::string name_;
    std::mutex mutex_;
    Lines heard_;
};

/** The client is one for all tests of a process, and keeps what it is given: see InNewProcess. */
class ClientTest : public testing::Test {
public:
    ClientTest()
    {
        Gate::service = new FakeService();
        Gate::passed = 0;
    }

    ~ClientTest() override
    {
        Gate::service = nullptr;
        Gate::before = nullptr;
    }

protected:
    /** The service's calls since the last time. */
    static Lines Calls()
    {
        return Gate::service->Take();
    }

    /** The listener object of the service's last call. */
    static sptr<IRemoteObject> Sent()
    {
        return Gate::service->listenerObject;
    }

    /** What both listeners heard since the last time: "1 " and "2 " say which one it was. */
    Lines Heard()
    {
        return first->Take() + second->Take();
    }

    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const std::shared_ptr<Ear> first = std::make_shared<Ear>("1 ");
    const std::shared_ptr<Ear> second = std::make_shared<Ear>("2 ");
    LogCapture log;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // CLIENT_FIXTURE_H
