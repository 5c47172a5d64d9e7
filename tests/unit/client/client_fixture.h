// SPDX-License-Identifier: Apache-2.0
#ifndef CLIENT_FIXTURE_H
#define CLIENT_FIXTURE_H

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "fake_service.h"
#include "indicator_switch_listener.h"
#include "log_capture.h"
#include "privacy_event_listener.h"
#include "privacy_indicator_client.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** Where a variant has its own: runs the operations with the tests' service, with none, or not at all. */
struct Gate {
    enum Way { CLOSED, NO_SERVICE, OPEN };

    static inline std::atomic<Way> way = CLOSED;
    static inline std::atomic<int> passed = 0; // How often it was called.
    static inline sptr<FakeService> service;
    static inline std::function<void()> before; // Runs before each operation.
};

inline Lines Repeated(size_t count, const Lines& lines)
{
    return count == 0 ? Lines{} : Repeated(count - 1, lines) + lines;
}

/** Writes down what it hears. A listener of both kinds. */
class Ear : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
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
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(heard, {});
    }

    std::function<void()> whenCalled;
    std::atomic<bool> mayHear = true;

private:
    void Hear(const std::string& what)
    {
        EXPECT_TRUE(mayHear) << what;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            heard.push_back(what);
        }
        if (whenCalled) {
            whenCalled();
        }
    }

    std::mutex mutex;
    Lines heard;
};

/**
 * The client is one for all tests of a process, and keeps every stub. So each test has data types of its own, and
 * takes its listeners out when it ends.
 */
class ClientTest : public testing::Test {
public:
    ClientTest()
    {
        Gate::service = new FakeService();
        Gate::way = Gate::OPEN;
        Gate::passed = 0;
    }

    ~ClientTest() override
    {
        Gate::way = Gate::CLOSED;
        Gate::before = nullptr;
        for (const auto& listener : {first, second}) {
            client.UnregisterPrivacyIndicatorSwitchListener(listener);
            for (int i = 0; i < 4; ++i) { // More than any test has data types.
                client.UnregisterPrivacyEventListener(listener);
            }
        }
        Gate::service = nullptr;
    }

protected:
    /** The service's calls since the last time, without those for other tests' data types. */
    Lines Calls()
    {
        const std::string head = "RegisterEvent ";
        Lines calls;
        for (const auto& call : Gate::service->Take()) {
            if (call.compare(0, head.size(), head) != 0 || call.compare(head.size(), prefix.size(), prefix) == 0) {
                calls.push_back(call);
            }
        }
        return calls;
    }

    /** The listener object of the service's last call. */
    static sptr<IRemoteObject> Sent()
    {
        return Gate::service->listenerObject;
    }

    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const std::string prefix = "test " + std::to_string(++tests) + " ";
    const std::string typeA = prefix + "A";
    const std::string typeB = prefix + "B";
    // Listeners are called in the order of their addresses.
    const std::shared_ptr<std::array<Ear, 2>> ears = std::make_shared<std::array<Ear, 2>>();
    const std::shared_ptr<Ear> first{ears, &(*ears)[0]};
    const std::shared_ptr<Ear> second{ears, &(*ears)[1]};
    LogCapture log;

private:
    static inline int tests = 100000; // Of one length in text: the client keeps its data types in order.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // CLIENT_FIXTURE_H
