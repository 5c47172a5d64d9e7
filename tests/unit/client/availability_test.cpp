// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <future>
#include <thread>
#include <unistd.h>

#include "client_fixture.h"
#include "iservice_registry.h"
#include "notify_power_event.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

constexpr int32_t SERVICE_ID = 66090;

// What the removal of the service tells of each sensor.
std::string OffSwitch(const std::string& sensor)
{
    return "1 Indicator{privacySensorType=" + sensor +
           ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, color='#000000', "
           "animationType=0}";
}

std::string OffEvent(const std::string& sensor)
{
    return "PrivacyEventRemindInfo='', uid=-1, privacySensorType=" + sensor + ", privacyAccessState=2, remindFlag=0}";
}

const std::string ALL_OFF = "1 sensorStateChange " + OffEvent("0") + " " + OffEvent("1") + " " + OffEvent("2");

std::atomic<uid_t> g_user = 0; // Whom this process runs for.

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

// A program's own definition comes before that of its libraries.
uid_t getuid() noexcept
{
    return OHOS::Korvane::Quenlar::PrivacyIndicator::Test::g_user;
}

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

class AvailabilityTest : public ClientTest {
protected:
    // What is logged when the service comes.
    Lines Come(int32_t id = SERVICE_ID)
    {
        log.Take();
        notices->OnAddSystemAbility(id, "");
        return log.Take();
    }

    Lines Go(int32_t id = SERVICE_ID)
    {
        log.Take();
        notices->OnRemoveSystemAbility(id, "");
        return log.Take();
    }

    // The same with the power event's part in it: whose event is known, and which one is reported again if any is.
    static Lines Coming(const std::string& user, const std::string& event = "")
    {
        Lines lines = {Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66090"),
            Line('I', "NotifyPowerEventByCache: uid: " + user)};
        if (!event.empty()) {
            lines.push_back(Line('I', "NotifyPowerEventByCache: To notify current event: " + event));
            lines.push_back(Line('I', "NotifyPowerEvent: event: " + event));
        }
        return lines + Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
                           Line('I', "ReRegisterPrivacyEventListener: begin.")};
    }

    const sptr<PrivacyIndicatorClient::PrivacyIndicatorServiceListener> notices =
        new PrivacyIndicatorClient::PrivacyIndicatorServiceListener();
};

TEST_F(AvailabilityTest, RemovalTurnsEverySensorOff)
{
    InNewProcess([this] {
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.RegisterPrivacyEventListener("sensorStateChange", first);
        client.RegisterPrivacyEventListener("other", first);
        EXPECT_EQ(Come(66091), Lines{Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66091")});
        EXPECT_EQ(Go(-1), Lines{Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=-1")});
        const std::string change =
            "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.";
        const std::string event = "DispatchOnPrivacyEventChanged: ";
        const Lines removal = {Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090"), Line('I', change),
            Line('I', change), Line('I', change), Line('I', event + "start DispatchOnPrivacyEventChanged in client."),
            Line('D', event + "'" + OffEvent("0") + "'"), Line('D', event + "'" + OffEvent("1") + "'"),
            Line('D', event + "'" + OffEvent("2") + "'")};
        EXPECT_EQ(Go(), removal);
        EXPECT_EQ(Heard(), (Lines{OffSwitch("0"), OffSwitch("1"), OffSwitch("2"), ALL_OFF}));
        EXPECT_EQ(Gate::passed, 3);
    });
}

TEST(SubscriptionTest, IsTheConstructorsAndNeedsAManager)
{
    const Lines begin = {Line('D', "SubscribePrivacyIndicatorAbility: SubscribePrivacyIndicatorAbility")};
    InNewProcess([&begin] {
        LogCapture log;
        PrivacyIndicatorClient::GetInstance();
        PrivacyIndicatorClient::GetInstance();
        EXPECT_EQ(log.Take(), begin);
    });
    InNewProcess([&begin] {
        setenv("OHOS_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        LogCapture log;
        PrivacyIndicatorClient::GetInstance().InitializeProxy();
        const Lines errors = {Line('E', "SubscribePrivacyIndicatorAbility: saMgrProxy is null!"),
            Line('E', "InitializeProxy: SAM is nullptr, please check.")};
        EXPECT_EQ(log.Take(), begin + errors);
    });
}

TEST_F(AvailabilityTest, NoticesRaceWithRegistrationAndDispatch)
{
    constexpr size_t ROUNDS = 100;
    const auto over = std::make_shared<std::promise<void>>();
    std::atomic<size_t> events = 0;
    std::atomic<size_t> switches = 0;
    first->whenCalled = [over, &events] {
        if (++events == 2 * ROUNDS) {
            over->set_value();
        }
    };
    second->whenCalled = [&switches] { ++switches; };
    client.RegisterPrivacyEventListener("sensorStateChange", first);
    client.RegisterPrivacyIndicatorSwitchListener(second);

    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    std::vector<std::thread> threads;
    const auto repeat = [&threads](const std::function<void()>& step) {
        threads.emplace_back([step] {
            for (size_t i = 0; i < ROUNDS; ++i) {
                step();
            }
        });
    };
    repeat([&manager] {
        EXPECT_EQ(manager->AddSystemAbility(SERVICE_ID, Gate::service->AsObject()), 0);
        EXPECT_EQ(manager->RemoveSystemAbility(SERVICE_ID), 0);
    });
    repeat([this] {
        Go();
        Come();
    });
    repeat([this] { client.DispatchOnPrivacyEventChanged("A", {{}, {}}); });
    for (const auto& comer : {std::make_shared<Ear>("3 "), std::make_shared<Ear>("4 ")}) {
        repeat([this, comer] {
            comer->mayHear = true;
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(comer), 0);
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", comer), 0);
            EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(comer), 0);
            EXPECT_EQ(client.UnregisterPrivacyEventListener(comer), 0);
            comer->mayHear = false; // Once it is out, no call comes or is under way.
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    // The last of the manager's notices is a removal, whose last act is this.
    ASSERT_EQ(over->get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0); // Waits for the end of that call.
    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), 0);
    EXPECT_EQ(first->Take(), Repeated(2 * ROUNDS, {ALL_OFF}));
    EXPECT_EQ(switches, 6 * ROUNDS);
}

TEST_F(AvailabilityTest, TheReportersPowerEventIsReportedAgainBeforeTheStubs)
{
    InNewProcess([this] {
        EXPECT_EQ(Come(), Coming("0"));
        g_user = 3036;
        EXPECT_EQ(NotifyPowerEvent(1), 0);
        client.RegisterPrivacyEventListener("B", first);
        client.RegisterPrivacyEventListener("A", first);
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.UnregisterPrivacyIndicatorSwitchListener(first);
        Calls();
        log.Take();
        EXPECT_EQ(NotifyPowerEvent(5), -1);
        EXPECT_EQ(log.Take(), (Lines{Line('E', "UpdateEvent: error event: 5"), Line('I', "NotifyPowerEvent: event: 5"),
                                  Line('E', "NotifyPowerEvent: error event: 5")}));
        EXPECT_EQ(Come(), Coming("3036", "1"));
        EXPECT_EQ(Calls(), (Lines{"Power 1", "RegisterSwitch", "RegisterEvent A", "RegisterEvent B"}));
        client.NotifyPowerEvent(0); // A report to the service alone is not remembered, nor is the replay itself.
        EXPECT_EQ(Come(), Coming("3036", "1"));
        EXPECT_EQ(NotifyPowerEvent(0), 0);
        EXPECT_EQ(Come(), Coming("3036", "0"));

        g_user = 3037; // Whoever this process is now, the report was the reporter's.
        EXPECT_EQ(Come(), Coming("3036", "0"));
        NotifyPowerEvent(1);
        EXPECT_EQ(Come(), Coming("3037"));
    });
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
