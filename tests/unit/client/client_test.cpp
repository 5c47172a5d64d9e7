// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <cstdlib>
#include <future>
#include <numeric>
#include <thread>
#include <unistd.h>

#include "fake_service.h"
#include "indicator_switch_listener.h"
#include "iservice_registry.h"
#include "notify_power_event.h"
#include "privacy_event_listener.h"
#include "privacy_indicator_client.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {
namespace Test {
namespace {

sptr<FakeService> g_service;    // Where a variant's gate has its own; null if it finds none.
std::function<void()> g_atGate; // Runs before each operation.
std::atomic<uid_t> g_user = 0;  // Whom this process runs for.

} // namespace
} // namespace Test

void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func)
{
    Test::g_atGate();
    func(Test::g_service);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

// A program's own definition comes before that of its libraries.
uid_t getuid() noexcept
{
    return OHOS::Korvane::Quenlar::PrivacyIndicator::Test::g_user;
}

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

constexpr int32_t SERVICE_ID = 66090;
const std::string NO_SERVICE = "proxy is nullptr, please check.";
const std::string REGISTER_SWITCH = "RegisterPrivacyIndicatorSwitchListener: ";
const std::string START_SWITCH = Line('I', REGISTER_SWITCH + "start RegisterPrivacyIndicatorSwitchListener in client.");
const std::string START_DISPATCH =
    Line('I', "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.");
const Lines NOTHING;

// A listener of both kinds. Writes down what it hears, with its name in front.
class Ear : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    explicit Ear(std::string name) : name_(std::move(name)) {}

    void OnSwitchChanged(const IndicatorData& indicatorData) override
    {
        Hear(indicatorData.ToString());
    }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        Hear(std::accumulate(infos.begin(), infos.end(), dataType,
            [](const std::string& all, const auto& info) { return all + " " + info.ToString(); }));
    }

    // What was heard since the last time.
    Lines Take()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::exchange(heard_, {});
    }

    std::function<void()> whenCalled = [] {};
    std::atomic<bool> mayHear = true;

private:
    void Hear(const std::string& what)
    {
        EXPECT_TRUE(mayHear) << what;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            heard_.push_back(name_ + what);
        }
        whenCalled();
    }

    const std::string name_;
    std::mutex mutex_;
    Lines heard_;
};

// The client is one for all tests of a process, and keeps what it is given: see InNewProcess.
class ClientTest : public testing::Test {
public:
    ClientTest()
    {
        g_service = service;
        g_atGate = [] {};
    }

protected:
    // What both listeners heard since the last time: "1 " and "2 " say which one it was.
    Lines Heard()
    {
        return first->Take() + second->Take();
    }

    Lines Switch()
    {
        client.DispatchOnIndicatorSwitchChanged(data);
        return Heard();
    }

    Lines Event(const std::string& type)
    {
        client.DispatchOnPrivacyEventChanged(type, {info});
        return Heard();
    }

    // What is logged when the service comes.
    Lines Come()
    {
        log.Take();
        notices->OnAddSystemAbility(SERVICE_ID, "");
        return log.Take();
    }

    const sptr<FakeService> service = new FakeService();
    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<PrivacyIndicatorClient::PrivacyIndicatorServiceListener> notices =
        new PrivacyIndicatorClient::PrivacyIndicatorServiceListener();
    const std::shared_ptr<Ear> first = std::make_shared<Ear>("1 ");
    const std::shared_ptr<Ear> second = std::make_shared<Ear>("2 ");
    IndicatorData data = *Read<IndicatorData>(DATA.bytes);
    PrivacyEventRemindInfo info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
    const std::string event = " " + REMIND_INFO.text;
    LogCapture log;
};

struct Request {
    std::function<int32_t()> send;
    std::string call;          // As the service sees it.
    std::string nameOfFailure; // The function that the log names when there is no service.
    Lines begin;               // What is logged before it,
    Lines perElement;          // behind it for each element of its vector,
    Lines end;                 // and at last.
};

// What is handed over by reference, and copied.
struct Arguments {
    PrivacySensorType sensor{};
    IndicatorPosition position;
    IndicatorSize size;
};

class RequestTest : public ClientTest {
protected:
    // Each vector holds one element before the first request, and gets one more from each that reaches the service.
    std::vector<PrivacyEventDetail> details{*Read<PrivacyEventDetail>(DETAIL.bytes)};
    std::vector<IndicatorData> indicators{*Read<IndicatorData>(DATA.bytes)};
    std::vector<PermissionUsageDuration> durations{*Read<PermissionUsageDuration>(DURATION.bytes)};
    PermissionUsageDurationQuery query = *Read<PermissionUsageDurationQuery>(QUERY.bytes);
    const Arguments given{
        PrivacySensorType::LOCATION, *Read<IndicatorPosition>(POSITION.bytes), *Read<IndicatorSize>(SIZE.bytes)};
    Arguments now = given;

    const std::vector<Request> requests = {
        {[this] { return client.GetPrivacyEventDetails(8, details); }, "Details 8", "GetPrivacyEventDetails", {},
            {Line('D', "GetPrivacyEventDetails: '" + DETAIL.text + "'")}, {}},
        {[this] { return client.GetPrivacyEventDetailsByPrivacySensorType(-4, now.sensor, details); }, "Details -4 2",
            "GetPrivacyEventDetails", {},
            {Line('I', "GetPrivacyEventDetailsByPrivacySensorType: '" + DETAIL.text + "'")}, {}},
        {[this] { return client.GetActiveIndicators(indicators); }, "Active", "GetActiveIndicators", {},
            {Line('D', "GetActiveIndicators: '" + DATA.text + "'")}, {}},
        {[this] { return client.TurnOnIndicator(now.sensor, now.position, now.size, 3); },
            "On 2" + POSITION.text + SIZE.text + "3", "TurnOnIndicator",
            {Line('I', "TurnOnIndicator: TurnOnIndicator")}, {}, {}},
        {[this] { return client.TurnOffIndicator(now.sensor, 100); }, "Off 2 100", "TurnOnIndicator",
            {Line('I', "TurnOffIndicator: TurnOffIndicator")}, {}, {}},
        {[this] { return client.GetPermissionUsageDurationSummary(query, durations); }, "Usage " + QUERY.text,
            "GetPermissionUsageDurationSummary",
            {Line('I', "GetPermissionUsageDurationSummary: start GetPermissionUsageDurationSummary in client.")}, {},
            {Line('I', "GetPermissionUsageDurationSummary: stop GetPermissionUsageDurationSummary in client.")}},
        {[this] { return client.NotifyPowerEvent(1); }, "Power 1", "NotifyPowerEvent",
            {Line('I', "NotifyPowerEvent: event: 1")}, {}, {}},
    };
};

TEST_F(RequestTest, ReachesTheServiceAsItWasMadeAndBringsBackItsCodeAndElements)
{
    service->elements = 1;
    service->result = -4711;
    g_atGate = [this] { now = {}; };
    for (const Request& request : requests) {
        SCOPED_TRACE(request.call);
        now = given;
        details.resize(1);
        EXPECT_EQ(request.send(), -4711);
        EXPECT_EQ(service->Take(), Lines{request.call});
        EXPECT_EQ(log.Take(), request.begin + request.perElement + request.perElement + request.end);
    }
    EXPECT_EQ(std::make_pair(indicators.size(), durations.size()), std::make_pair(size_t{2}, size_t{2}));

    g_service = nullptr;
    details.resize(1);
    indicators.resize(1);
    for (const Request& request : requests) {
        SCOPED_TRACE(request.call);
        EXPECT_EQ(request.send(), 0);
        const Lines failure = {Line('E', request.nameOfFailure + ": " + NO_SERVICE)};
        EXPECT_EQ(log.Take(), request.begin + failure + request.perElement + request.end);
    }
}

TEST_F(ClientTest, SwitchListenersShareOneRegistration)
{
    InNewProcess([this] {
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(service->Take(), Lines{"UnregisterSwitch"}); // Though there was never a stub.
        EXPECT_EQ(service->listenerObject, nullptr);
        client.ReRegisterPrivacyIndicatorSwitchListener();
        log.Take();
        {
            const Failing failing(1);
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), -1);
        }
        const std::string noStub = "failed to create privacy indicator switch listener stub";
        EXPECT_EQ(log.Take(), (Lines{START_SWITCH, Line('E', REGISTER_SWITCH + noStub)}));
        EXPECT_EQ(service->Take() + Switch(), NOTHING);

        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(log.Take(),
            (Lines{START_SWITCH, Line('I', "IndicatorSwitchListenerStub: create IndicatorSwitchListenerStub")}));
        const sptr<IRemoteObject> stub = service->listenerObject;
        EXPECT_NE(stub, nullptr);
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), 0);
        EXPECT_EQ(service->Take(), Lines{"RegisterSwitch"});
        EXPECT_EQ(Switch(), (Lines{"1 " + DATA.text, "2 " + DATA.text}));
        EXPECT_EQ(log.Take(), (Lines{START_SWITCH, START_SWITCH, START_DISPATCH, START_DISPATCH}));
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(service->Take(), NOTHING);
        service->result = -9;
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), -9);
        EXPECT_EQ(service->Take(), Lines{"UnregisterSwitch"});
        EXPECT_EQ(service->listenerObject, stub);
        EXPECT_EQ(Switch(), NOTHING);
        EXPECT_EQ(log.Take(), NOTHING);

        // What was ever registered is registered again; a code of the service's keeps no listener out.
        client.ReRegisterPrivacyIndicatorSwitchListener();
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), -9);
        EXPECT_EQ(service->Take(), (Lines{"RegisterSwitch", "RegisterSwitch"}));
        EXPECT_EQ(service->listenerObject, stub);
        iface_cast<SwitchListener>(stub)->OnSwitchChanged(data);
        EXPECT_EQ(Heard(), Lines{"2 " + DATA.text});
    });
}

TEST_F(ClientTest, EventListenersShareOneRegistrationPerType)
{
    InNewProcess([this] {
        {
            const Failing failing(1);
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", first), -1);
        }
        EXPECT_EQ(log.Take(),
            Lines{Line('E', "RegisterPrivacyEventListener: failed to create privacy indicator listener stub")});
        EXPECT_EQ(Event("A") + service->Take(), NOTHING);
        // The dispatch has left an empty entry, which does not stand in the way of a registration.
        EXPECT_EQ(client.RegisterPrivacyEventListener("A", first), 0);
        const sptr<IRemoteObject> stubA = service->listenerObject;
        EXPECT_EQ(client.RegisterPrivacyEventListener("A", second), 0);
        EXPECT_EQ(client.RegisterPrivacyEventListener("B", first), 0);
        const sptr<IRemoteObject> stubB = service->listenerObject;
        EXPECT_EQ(service->Take(), (Lines{"RegisterEvent A", "RegisterEvent B"}));
        EXPECT_TRUE(stubA != nullptr && stubB != nullptr && stubA != stubB);
        EXPECT_EQ(log.Take(), NOTHING);
        iface_cast<EventListener>(stubB)->OnPrivacyEventChanged("A", {info});
        EXPECT_EQ(Heard(), (Lines{"1 A" + event, "2 A" + event}));

        // Each call takes it out of one type, in their order; only a type left empty is the service's business.
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
        EXPECT_EQ(service->Take(), NOTHING);
        EXPECT_EQ(Event("A") + Event("B"), (Lines{"2 A" + event, "1 B" + event}));
        service->result = 22;
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 22);
        EXPECT_EQ(service->Take(), Lines{"UnregisterEvent"});
        EXPECT_EQ(service->listenerObject, stubB);
        log.Take();
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), -1);
        EXPECT_EQ(log.Take(), Lines{Line('W', "UnregisterPrivacyEventListener: dataType '' is empty callback!")});

        // What was ever registered is registered again; a code of the service's keeps no listener out.
        client.ReRegisterPrivacyEventListener();
        EXPECT_EQ(client.RegisterPrivacyEventListener("B", second), 22);
        EXPECT_EQ(service->Take(), (Lines{"RegisterEvent A", "RegisterEvent B", "RegisterEvent B"}));
        EXPECT_EQ(service->listenerObject, stubB);
        EXPECT_EQ(Event("B"), Lines{"2 B" + event});

        // Who is not registered is looked for under the empty type.
        EXPECT_EQ(client.RegisterPrivacyEventListener("", second), 22);
        const sptr<IRemoteObject> unnamed = service->listenerObject;
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 22);
        EXPECT_EQ(service->Take(), (Lines{"RegisterEvent ", "UnregisterEvent"}));
        EXPECT_EQ(service->listenerObject, unnamed);
    });
}

TEST_F(ClientTest, NullListenersAndAMissingServiceAreErrorsInTheLog)
{
    InNewProcess([this] {
        g_service = nullptr;
        for (const bool isNull : {true, false}) {
            const auto listener = isNull ? nullptr : first;
            const int32_t result = isNull ? -1 : 0;
            const std::string noSwitch = isNull ? "listener is null!" : NO_SERVICE;
            const std::string noEvent = isNull ? "privacyEventListener is null!" : NO_SERVICE;
            log.Take();
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", listener), result);
            EXPECT_EQ(client.UnregisterPrivacyEventListener(listener), result);
            EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(listener), result);
            EXPECT_EQ(log.Take(), (Lines{Line('E', "RegisterPrivacyEventListener: " + noEvent),
                                      Line('E', "UnregisterPrivacyEventListener: " + noEvent),
                                      Line('E', "UnregisterPrivacyIndicatorSwitchListener: " + noSwitch)}));
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(listener), result);
            EXPECT_EQ(log.Take().back(), Line('E', REGISTER_SWITCH + noSwitch));
        }
    });
}

TEST_F(ClientTest, ASwitchListenerMayTouchTheEventListeners)
{
    InNewProcess([this] {
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.RegisterPrivacyEventListener("A", first);
        first->whenCalled = [this] {
            EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
            EXPECT_EQ(client.RegisterPrivacyEventListener("B", first), 0);
        };
        EXPECT_EQ(Switch(), Lines{"1 " + DATA.text});
        first->whenCalled = [] {};
        EXPECT_EQ(Event("A") + Event("B"), Lines{"1 B" + event});
    });
}

TEST_F(ClientTest, TheServicesEndTurnsEverySensorOff)
{
    InNewProcess([this] {
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.RegisterPrivacyEventListener("sensorStateChange", first);
        log.Take();
        notices->OnAddSystemAbility(66091, ""); // Another one's.
        notices->OnRemoveSystemAbility(-1, "");
        EXPECT_EQ(log.Take(), (Lines{Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66091"),
                                  Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=-1")}));
        Lines switches;
        Lines events;
        std::string allOff = "1 sensorStateChange";
        for (const char* sensor : {"0", "1", "2"}) {
            const std::string number = sensor;
            switches.push_back("1 Indicator{privacySensorType=" + number +
                               ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, "
                               "color='#000000', animationType=0}");
            const std::string off = "PrivacyEventRemindInfo='', uid=-1, privacySensorType=" + number +
                                    ", privacyAccessState=2, remindFlag=0}";
            events.push_back(Line('D', "DispatchOnPrivacyEventChanged: '" + off + "'"));
            allOff += " " + off;
        }
        const Lines begin = {Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090"), START_DISPATCH,
            START_DISPATCH, START_DISPATCH,
            Line('I', "DispatchOnPrivacyEventChanged: start DispatchOnPrivacyEventChanged in client.")};
        notices->OnRemoveSystemAbility(SERVICE_ID, "");
        EXPECT_EQ(log.Take(), begin + events);
        EXPECT_EQ(Heard(), switches + Lines{allOff});
    });
}

TEST_F(ClientTest, TheReportersPowerEventIsReportedAgainBeforeTheStubs)
{
    // Whose event is known, and which one is reported again.
    const auto coming = [](const std::string& user, const Lines& again = {}) {
        return Lines{Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66090"),
                   Line('I', "NotifyPowerEventByCache: uid: " + user)} +
               again +
               Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
                   Line('I', "ReRegisterPrivacyEventListener: begin.")};
    };
    const Lines again = {
        Line('I', "NotifyPowerEventByCache: To notify current event: 1"), Line('I', "NotifyPowerEvent: event: 1")};
    InNewProcess([&] {
        EXPECT_EQ(Come(), coming("0"));
        g_user = 3036;
        EXPECT_EQ(NotifyPowerEvent(1), 0);
        client.RegisterPrivacyEventListener("B", first);
        client.RegisterPrivacyEventListener("A", first);
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.UnregisterPrivacyIndicatorSwitchListener(first);
        log.Take();
        EXPECT_EQ(NotifyPowerEvent(2), -1);
        EXPECT_EQ(log.Take(), (Lines{Line('E', "UpdateEvent: error event: 2"), Line('I', "NotifyPowerEvent: event: 2"),
                                  Line('E', "NotifyPowerEvent: error event: 2")}));
        EXPECT_EQ(client.NotifyPowerEvent(-1), -1);
        client.NotifyPowerEvent(0); // A report to the service alone is not remembered.
        service->Take();
        g_user = 3037; // Whoever this process is now, the report was the reporter's.
        EXPECT_EQ(Come(), coming("3036", again));
        EXPECT_EQ(service->Take(), (Lines{"Power 1", "RegisterSwitch", "RegisterEvent A", "RegisterEvent B"}));
        EXPECT_EQ(Come(), coming("3036", again)); // Nor is the replay itself.
        NotifyPowerEvent(0);
        EXPECT_EQ(Come(), coming("3037"));
    });
}

TEST(SubscriptionTest, NeedsAManager)
{
    InNewProcess([] {
        setenv("OHOS_BUS_ADDRESS", "unix:path=/nonexistent", 1);
        LogCapture log;
        PrivacyIndicatorClient::GetInstance().InitializeProxy();
        EXPECT_EQ(log.Take(), (Lines{Line('D', "SubscribePrivacyIndicatorAbility: SubscribePrivacyIndicatorAbility"),
                                  Line('E', "SubscribePrivacyIndicatorAbility: saMgrProxy is null!"),
                                  Line('E', "InitializeProxy: SAM is nullptr, please check.")}));
    });
}

TEST_F(ClientTest, NoticesRaceWithRegistrationAndDispatch)
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
    repeat([&] {
        EXPECT_EQ(manager->AddSystemAbility(SERVICE_ID, service), 0);
        EXPECT_EQ(manager->RemoveSystemAbility(SERVICE_ID), 0);
    });
    repeat([this] {
        notices->OnRemoveSystemAbility(SERVICE_ID, "");
        notices->OnAddSystemAbility(SERVICE_ID, "");
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
    EXPECT_EQ(switches, 6 * ROUNDS);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
