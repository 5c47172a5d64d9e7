// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <fstream>
#include <sched.h>
#include <thread>
#include <unistd.h>

#include "client_fixture.h"
#include "iservice_registry.h"
#include "new_process.h"
#include "notify_power_event.h"
#include "waiting.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

constexpr int32_t SERVICE_ID = 66090;
constexpr uid_t REPORTER = 3036;

// What the removal of the service tells: one line per switch, and all events in one.
Lines Off()
{
    Lines lines;
    for (const std::string sensor : {"0", "1", "2"}) {
        lines.push_back("Indicator{privacySensorType=" + sensor +
                        ", state=1, positionX=0.000000, "
                        "positionY=0.000000, width=0.000000, height=0.000000, color='#000000', animationType=0}");
    }
    return lines;
}

const Lines OFF_EVENTS = {"PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=2, remindFlag=0}",
    "PrivacyEventRemindInfo='', uid=-1, privacySensorType=1, privacyAccessState=2, remindFlag=0}",
    "PrivacyEventRemindInfo='', uid=-1, privacySensorType=2, privacyAccessState=2, remindFlag=0}"};
const std::string ALL_OFF = "sensorStateChange " + OFF_EVENTS[0] + " " + OFF_EVENTS[1] + " " + OFF_EVENTS[2];

// Has this process run for `user` from now on: by its rights, or in a user namespace. False if neither is to be had.
bool BecomeUser(uid_t user)
{
    constexpr auto SAME = static_cast<uid_t>(-1);
    if (setresuid(user, SAME, SAME) != 0) {
        const auto write = [](const char* file, const std::string& text) { std::ofstream(file) << text; };
        const std::string users = std::to_string(user) + " " + std::to_string(geteuid()) + " 1";
        const std::string groups = "0 " + std::to_string(getegid()) + " 1"; // None may be missing in the next one.
        if (unshare(CLONE_NEWUSER) != 0) {
            return false;
        }
        write("/proc/self/uid_map", users);
        write("/proc/self/setgroups", "deny");
        write("/proc/self/gid_map", groups);
    }
    return getuid() == user;
}

class AvailabilityTest : public ClientTest {
protected:
    void Come(int32_t id = SERVICE_ID)
    {
        notices->OnAddSystemAbility(id, "");
    }

    void Go(int32_t id = SERVICE_ID)
    {
        notices->OnRemoveSystemAbility(id, "");
    }

    // What is logged when the service comes, with the power event's part in it.
    static Lines Coming(const Lines& powerEvent)
    {
        return Lines{Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66090")} + powerEvent +
               Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
                   Line('I', "ReRegisterPrivacyEventListener: begin.")};
    }

    static Lines Replay(const std::string& event)
    {
        return {Line('I', "NotifyPowerEventByCache: uid: 3036"),
            Line('I', "NotifyPowerEventByCache: To notify current event: " + event),
            Line('I', "NotifyPowerEvent: event: " + event)};
    }

    const sptr<PrivacyIndicatorClient::PrivacyIndicatorServiceListener> notices =
        new PrivacyIndicatorClient::PrivacyIndicatorServiceListener();
};

TEST_F(AvailabilityTest, RemovalTurnsEverySensorOff)
{
    client.RegisterPrivacyIndicatorSwitchListener(first);
    client.RegisterPrivacyEventListener("sensorStateChange", first);
    client.RegisterPrivacyEventListener(typeA, first);
    Gate::passed = 0;
    log.Take();
    Go();
    const Lines perSwitch = {
        Line('I', "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.")};
    const std::string function = "DispatchOnPrivacyEventChanged: ";
    const Lines events = {Line('I', function + "start DispatchOnPrivacyEventChanged in client."),
        Line('D', function + "'" + OFF_EVENTS[0] + "'"), Line('D', function + "'" + OFF_EVENTS[1] + "'"),
        Line('D', function + "'" + OFF_EVENTS[2] + "'")};
    Come(66091);
    Go(-1);
    const Lines others = {Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66091"),
        Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=-1")};
    const Lines removal = {Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090")};
    EXPECT_EQ(log.Take(), removal + Repeated(3, perSwitch) + events + others);
    EXPECT_EQ(first->Take(), Off() + Lines{ALL_OFF}); // Of the service's removal alone.
    EXPECT_EQ(Gate::passed, 0);
}

TEST(SubscriptionTest, IsTheConstructorsAndNeedsAManager)
{
    const std::string function = "SubscribePrivacyIndicatorAbility: ";
    for (const bool hasManager : {true, false}) {
        InNewProcess([&function, hasManager] {
            if (!hasManager) {
                setenv("OHOS_BUS_ADDRESS", "unix:path=/nonexistent", 1);
            }
            LogCapture log;
            PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
            EXPECT_EQ(log.Take(), Lines{Line('D', function + "SubscribePrivacyIndicatorAbility")} +
                                      (hasManager ? Lines{} : Lines{Line('E', function + "saMgrProxy is null!")}));
            EXPECT_EQ(&PrivacyIndicatorClient::GetInstance(), &client);
            EXPECT_EQ(client.TurnOffIndicator(PrivacySensorType::CAMERA, 0), 0);
            EXPECT_EQ(log.Take(), Lines{Line('I', "TurnOffIndicator: TurnOffIndicator")});
            return true;
        });
    }
}

TEST_F(AvailabilityTest, NoticesRaceWithRegistrationAndDispatch)
{
    constexpr size_t ROUNDS = 100;
    const auto heardEvents = std::make_shared<Counter>();
    std::atomic<size_t> switches = 0;
    client.RegisterPrivacyEventListener("sensorStateChange", first);
    first->whenCalled = [heardEvents] { heardEvents->Add(); };
    second->whenCalled = [&switches] { ++switches; };
    client.RegisterPrivacyIndicatorSwitchListener(second);

    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    const auto repeat = [](const std::function<void()>& step) {
        return std::thread([step] {
            for (size_t i = 0; i < ROUNDS; ++i) {
                step();
            }
        });
    };
    std::vector<std::thread> threads;
    threads.push_back(repeat([&manager] {
        EXPECT_EQ(manager->AddSystemAbility(SERVICE_ID, Gate::service->AsObject()), 0);
        EXPECT_EQ(manager->RemoveSystemAbility(SERVICE_ID), 0);
    }));
    threads.push_back(repeat([this] {
        Go();
        Come();
    }));
    threads.push_back(repeat([this] { client.DispatchOnPrivacyEventChanged(typeA, {{}, {}}); }));
    std::array<Ear, 2> comers;
    for (Ear& comer : comers) {
        threads.push_back(repeat([this, &comer] {
            const std::shared_ptr<Ear> ear(std::shared_ptr<void>(), &comer); // Not owned.
            comer.mayHear = true;
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(ear), 0);
            EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, ear), 0);
            EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(ear), 0);
            EXPECT_EQ(client.UnregisterPrivacyEventListener(ear), 0);
            comer.mayHear = false; // Once it is out, no call comes or is under way.
        }));
    }
    for (auto& thread : threads) {
        thread.join();
    }
    // The last of the manager's notices is a removal, whose last act is this.
    ASSERT_TRUE(heardEvents->Reaches(2 * ROUNDS));
    EXPECT_EQ(first->Take(), Repeated(2 * ROUNDS, {ALL_OFF}));
    EXPECT_EQ(switches, 6 * ROUNDS);
    first->whenCalled = nullptr;
    second->whenCalled = nullptr;
}

TEST_F(AvailabilityTest, TheReportersPowerEventIsReportedAgainBeforeTheStubs)
{
    const bool could = InNewProcess([this] {
        Come();
        EXPECT_EQ(log.Take(), Coming({Line('I', "NotifyPowerEventByCache: uid: 0")}));
        if (!BecomeUser(REPORTER)) {
            return false;
        }
        EXPECT_EQ(NotifyPowerEvent(1), 0);
        client.RegisterPrivacyEventListener(typeA, first);
        client.RegisterPrivacyIndicatorSwitchListener(first);
        Calls();
        log.Take();
        EXPECT_EQ(NotifyPowerEvent(5), -1);
        EXPECT_EQ(log.Take(), (Lines{Line('E', "UpdateEvent: error event: 5"), Line('I', "NotifyPowerEvent: event: 5"),
                                  Line('E', "NotifyPowerEvent: error event: 5")}));
        EXPECT_EQ(Calls(), Lines{});
        Come();
        EXPECT_EQ(Calls(), (Lines{"Power 1", "RegisterSwitch", "RegisterEvent " + typeA}));
        EXPECT_EQ(log.Take(), Coming(Replay("1")));

        // A report to the service alone is not remembered, nor is the replay itself.
        client.NotifyPowerEvent(0);
        log.Take();
        Come();
        EXPECT_EQ(log.Take(), Coming(Replay("1")));
        EXPECT_EQ(NotifyPowerEvent(0), 0);
        log.Take();
        Come();
        EXPECT_EQ(log.Take(), Coming(Replay("0")));

        if (!BecomeUser(REPORTER + 1)) {
            return false;
        }
        log.Take();
        Come(); // Whoever this process is now, the report was the reporter's.
        EXPECT_EQ(log.Take(), Coming(Replay("0")));
        NotifyPowerEvent(1);
        log.Take();
        Come();
        EXPECT_EQ(log.Take(), Coming({Line('I', "NotifyPowerEventByCache: uid: 3037")}));
        return true;
    });
    if (!could) {
        GTEST_SKIP() << "No process of another user is to be had on this machine.";
    }
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
