// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <future>

#include "fake_service.h"
#include "indicator_switch_listener.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"
#include "notify_power_event.h"
#include "privacy_event_listener.h"
#include "privacy_indicator_client.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

sptr<FakeService> g_service;    // Where a variant's gate has its own; null if it finds none.
std::function<void()> g_atGate; // Runs before each operation.
uid_t g_user = 0;               // Whose request is being served.

} // namespace

void PrivacyIndicatorClient::WithSystemAbilityProxy(
    const std::function<void(const sptr<PrivacyIndicatorServiceIntf>&)>& func) noexcept
{
    const auto atGate = g_atGate; // Which may replace itself.
    atGate();
    func(g_service);
}

// A program's own definition comes before that of its libraries.
uid_t IPCSkeleton::GetCallingUid()
{
    return g_user;
}

namespace {

const std::string START_SWITCH =
    Line('I', "RegisterPrivacyIndicatorSwitchListener: start RegisterPrivacyIndicatorSwitchListener in client.");
const std::string START_DISPATCH =
    Line('I', "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.");
const Lines NOTHING;

// A listener of both kinds.
class Listener : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    void OnSwitchChanged(const IndicatorData& indicatorData) override
    {
        hear(indicatorData.ToString());
    }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        hear(dataType + " " + std::to_string(infos.size()) + " " + infos.at(0).ToString());
    }

    std::function<void(const std::string&)> hear;
};

// The client is one for all tests of a process, and keeps what it is given: see InNewProcess.
class ClientTest : public testing::Test {
public:
    ClientTest()
    {
        g_service = service;
        g_atGate = [] {};
        first->hear = [this](const auto& text) { heard[0].push_back("1 " + text); };
        second->hear = [this](const auto& text) { heard[1].push_back("2 " + text); };
    }

protected:
    // What both listeners heard since the last time.
    Lines Heard()
    {
        return std::exchange(heard[0], {}) + std::exchange(heard[1], {});
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

    // What a call has returned, asked of the service, and logged.
    void Expect(int32_t returned, int32_t result, const Lines& calls, const Lines& lines = {})
    {
        EXPECT_EQ(returned, result);
        EXPECT_EQ(service->Take(), calls);
        EXPECT_EQ(log.Take(), lines);
    }

    const sptr<FakeService> service = new FakeService();
    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<PrivacyIndicatorClient::PrivacyIndicatorServiceListener> notices =
        new PrivacyIndicatorClient::PrivacyIndicatorServiceListener();
    const std::shared_ptr<Listener> first = std::make_shared<Listener>();
    const std::shared_ptr<Listener> second = std::make_shared<Listener>();
    Lines heard[2];
    const IndicatorData data = *Read<IndicatorData>(DATA.bytes);
    const PrivacyEventRemindInfo info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
    const std::string event = " 1 " + REMIND_INFO.text;
    LogCapture log;
};

std::string Failure(const std::string& function, const std::string& message = "proxy is nullptr, please check.")
{
    return Line('E', function + ": " + message);
}

TEST_F(ClientTest, ARequestReachesTheServiceAsItWasMadeAndBringsBackItsCodeAndRecords)
{
    service->elements = 1;
    service->result = -4711;
    for (const bool isThere : {true, false}) {
        g_service = isThere ? service : nullptr;
        // `record` is logged for each one in the vector, which held one before.
        const auto expect = [&](int32_t returned, const std::string& call, const Lines& begin,
                                const std::string& function, const Lines& record = {}, const Lines& end = {}) {
            const Lines more = isThere ? record : Lines();
            Expect(returned, isThere ? -4711 : 0, isThere ? Lines{call} : Lines(),
                begin + (isThere ? Lines() : Lines{Failure(function)}) + record + more + end);
        };
        std::vector<PrivacyEventDetail> details{*Read<PrivacyEventDetail>(DETAIL.bytes)};
        expect(client.GetPrivacyEventDetails(8, details), "Details 8", {}, "GetPrivacyEventDetails",
            {Line('D', "GetPrivacyEventDetails: '" + DETAIL.text + "'")});
        details.resize(1);
        expect(client.GetPrivacyEventDetailsByPrivacySensorType(-4, PrivacySensorType::LOCATION, details),
            "Details -4 2", {}, "GetPrivacyEventDetails",
            {Line('I', "GetPrivacyEventDetailsByPrivacySensorType: '" + DETAIL.text + "'")});
        std::vector<IndicatorData> indicators{data};
        expect(client.GetActiveIndicators(indicators), "Active", {}, "GetActiveIndicators",
            {Line('D', "GetActiveIndicators: '" + DATA.text + "'")});
        IndicatorPosition position = *Read<IndicatorPosition>(POSITION.bytes);
        IndicatorSize size = *Read<IndicatorSize>(SIZE.bytes);
        PrivacySensorType sensor = PrivacySensorType::LOCATION;
        g_atGate = [&] { position = {}, size = {}, sensor = {}; }; // What was handed over is what counts.
        expect(client.TurnOnIndicator(sensor, position, size, 3), "On 2" + POSITION.text + SIZE.text + "3",
            {Line('I', "TurnOnIndicator: TurnOnIndicator")}, "TurnOnIndicator");
        g_atGate = [] {};
        expect(client.TurnOffIndicator(PrivacySensorType::LOCATION, 100), "Off 2 100",
            {Line('I', "TurnOffIndicator: TurnOffIndicator")}, "TurnOnIndicator");
        std::vector<PermissionUsageDuration> durations(1);
        expect(client.GetPermissionUsageDurationSummary(*Read<PermissionUsageDurationQuery>(QUERY.bytes), durations),
            "Usage " + QUERY.text,
            {Line('I', "GetPermissionUsageDurationSummary: start GetPermissionUsageDurationSummary in client.")},
            "GetPermissionUsageDurationSummary", {},
            {Line('I', "GetPermissionUsageDurationSummary: stop GetPermissionUsageDurationSummary in client.")});
        EXPECT_EQ(durations.size(), isThere ? 2U : 1U);
        expect(client.NotifyPowerEvent(1), "Power 1", {Line('I', "NotifyPowerEvent: event: 1")}, "NotifyPowerEvent");
    }
}

TEST_F(ClientTest, WithoutAServiceOrAListenerAnErrorIsLogged)
{
    client.RegisterPrivacyIndicatorSwitchListener(first); // So that there is a stub.
    client.UnregisterPrivacyIndicatorSwitchListener(first);
    service->Take();
    log.Take();
    g_service = nullptr;
    const std::string registerEvent = "RegisterPrivacyEventListener";
    const std::string unregisterEvent = "UnregisterPrivacyEventListener";
    const std::string registerSwitch = "RegisterPrivacyIndicatorSwitchListener";
    const std::string unregisterSwitch = "UnregisterPrivacyIndicatorSwitchListener";
    Expect(client.RegisterPrivacyEventListener("A", first), 0, {}, {Failure(registerEvent)});
    Expect(client.UnregisterPrivacyEventListener(first), 0, {}, {Failure(unregisterEvent)});
    Expect(client.RegisterPrivacyIndicatorSwitchListener(first), 0, {}, {START_SWITCH, Failure(registerSwitch)});
    Expect(client.UnregisterPrivacyIndicatorSwitchListener(first), 0, {}, {Failure(unregisterSwitch)});
    const std::string nullEvent = "privacyEventListener is null!";
    Expect(client.RegisterPrivacyEventListener("A", nullptr), -1, {}, {Failure(registerEvent, nullEvent)});
    Expect(client.UnregisterPrivacyEventListener(nullptr), -1, {}, {Failure(unregisterEvent, nullEvent)});
    Expect(client.RegisterPrivacyIndicatorSwitchListener(nullptr), -1, {},
        {START_SWITCH, Failure(registerSwitch, "listener is null!")});
    Expect(client.UnregisterPrivacyIndicatorSwitchListener(nullptr), -1, {},
        {Failure(unregisterSwitch, "listener is null!")});
}

TEST_F(ClientTest, SwitchListenersShareOneRegistration)
{
    InNewProcess([this] {
        // Asked for without a stub, too.
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(first), 0, {"UnregisterSwitch"});
        EXPECT_EQ(service->listenerObject, nullptr);
        Failing::nthNew = 1;
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), -1, {},
            {START_SWITCH, Line('E', "RegisterPrivacyIndicatorSwitchListener: failed to create privacy indicator "
                                     "switch listener stub")});
        EXPECT_EQ(Switch(), NOTHING);
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), 0, {"RegisterSwitch"},
            {START_SWITCH, Line('I', "IndicatorSwitchListenerStub: create IndicatorSwitchListenerStub")});
        const sptr<IRemoteObject> stub = service->listenerObject;
        EXPECT_NE(stub, nullptr);
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), 0, {}, {START_SWITCH});
        Expect(client.RegisterPrivacyIndicatorSwitchListener(second), 0, {}, {START_SWITCH});
        EXPECT_EQ(Switch(), (Lines{"1 " + DATA.text, "2 " + DATA.text}));
        EXPECT_EQ(log.Take(), (Lines{START_DISPATCH, START_DISPATCH}));
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(first), 0, {});
        service->result = -9;
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(second), -9, {"UnregisterSwitch"});
        EXPECT_EQ(service->listenerObject, stub);
        EXPECT_EQ(Switch(), NOTHING);
        // A code of the service's keeps no listener out.
        Expect(client.RegisterPrivacyIndicatorSwitchListener(second), -9, {"RegisterSwitch"}, {START_SWITCH});
        EXPECT_EQ(service->listenerObject, stub);
        second->hear = [this](const auto& text) { // It may register event listeners.
            EXPECT_EQ(text, DATA.text);
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", second), -9);
        };
        iface_cast<SwitchListener>(stub)->OnSwitchChanged(data);
        EXPECT_EQ(service->Take(), Lines{"RegisterEvent A"});
    });
}

TEST_F(ClientTest, EventListenersShareOneRegistrationPerType)
{
    InNewProcess([this] {
        Failing::nthNew = 1;
        Expect(client.RegisterPrivacyEventListener("A", first), -1, {},
            {Line('E', "RegisterPrivacyEventListener: failed to create privacy indicator listener stub")});
        EXPECT_EQ(Event("A"), NOTHING);
        // The dispatch has left an empty entry, which does not stand in the way of a registration.
        Expect(client.RegisterPrivacyEventListener("A", first), 0, {"RegisterEvent A"});
        const sptr<IRemoteObject> stubA = service->listenerObject;
        Expect(client.RegisterPrivacyEventListener("A", second), 0, {});
        Expect(client.RegisterPrivacyEventListener("B", first), 0, {"RegisterEvent B"});
        const sptr<IRemoteObject> stubB = service->listenerObject;
        EXPECT_TRUE(stubA != nullptr && stubB != nullptr && stubA != stubB);
        iface_cast<EventListener>(stubB)->OnPrivacyEventChanged("A", {info});
        EXPECT_EQ(Heard(), (Lines{"1 A" + event, "2 A" + event}));

        // Each call takes it out of one type, in their order; only a type left empty is the service's business.
        log.Take();
        Expect(client.UnregisterPrivacyEventListener(first), 0, {});
        EXPECT_EQ(Event("A") + Event("B"), (Lines{"2 A" + event, "1 B" + event}));
        log.Take();
        service->result = 22;
        Expect(client.UnregisterPrivacyEventListener(first), 22, {"UnregisterEvent"});
        EXPECT_EQ(service->listenerObject, stubB);
        Expect(client.UnregisterPrivacyEventListener(first), -1, {},
            {Line('W', "UnregisterPrivacyEventListener: dataType '' is empty callback!")});

        // A code of the service's keeps no listener out.
        Expect(client.RegisterPrivacyEventListener("B", second), 22, {"RegisterEvent B"});
        EXPECT_EQ(service->listenerObject, stubB);
        EXPECT_EQ(Event("B"), Lines{"2 B" + event});

        // One that is not registered counts as one of the empty type.
        log.Take();
        Expect(client.RegisterPrivacyEventListener("", second), 22, {"RegisterEvent "});
        const sptr<IRemoteObject> unnamed = service->listenerObject;
        Expect(client.UnregisterPrivacyEventListener(first), 22, {"UnregisterEvent"});
        EXPECT_EQ(service->listenerObject, unnamed);
    });
}

TEST_F(ClientTest, TheServicesEndTurnsEverySensorOff)
{
    InNewProcess([this] {
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.RegisterPrivacyEventListener("sensorStateChange", first);
        client.RegisterPrivacyEventListener("sensorStateChange", second);
        client.RegisterPrivacyEventListener("another", second);
        Lines before[2]; // What is logged before each call of an event listener, and the call.
        const auto hearEvent = [this](Lines& lines) {
            return [this, &lines](const std::string& text) { lines = log.Take() + Lines{text}; };
        };
        first->hear = [this, &before, hearEvent](const std::string& text) {
            text[0] == 'I' ? heard[0].push_back(text) : hearEvent(before[0])(text);
        };
        second->hear = hearEvent(before[1]);
        log.Take();
        notices->OnAddSystemAbility(66091, ""); // Another one's.
        notices->OnRemoveSystemAbility(-1, "");
        notices->OnRemoveSystemAbility(66090, "");
        Lines switches;
        Lines called = {Line('I', "DispatchOnPrivacyEventChanged: start DispatchOnPrivacyEventChanged in client.")};
        for (const std::string sensor : {"0", "1", "2"}) {
            switches.push_back("Indicator{privacySensorType=" + sensor +
                               ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, "
                               "color='#000000', animationType=0}");
            called.push_back(Line(
                'D', "DispatchOnPrivacyEventChanged: 'PrivacyEventRemindInfo='', uid=-1, privacySensorType=" + sensor +
                         ", privacyAccessState=2, remindFlag=0}'"));
        }
        called.push_back("sensorStateChange 3 PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, "
                         "privacyAccessState=2, remindFlag=0}");
        const Lines begin = {Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66091"),
            Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=-1"),
            Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090"), START_DISPATCH, START_DISPATCH,
            START_DISPATCH};
        EXPECT_EQ(heard[0], switches);
        EXPECT_EQ(before[first < second ? 0 : 1], begin + called); // In the order of their addresses.
        EXPECT_EQ(before[first < second ? 1 : 0], called);
        EXPECT_EQ(log.Take(), NOTHING);
    });
}

TEST_F(ClientTest, ARegistryIsLockedWhileItIsUsed)
{
    using Step = std::function<int32_t()>;
    std::future<int32_t> other;
    const auto expectWaiting = [&other](const Step& step) {
        other = std::async(std::launch::async, step);
        EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    };
    const auto expectAllWaiting = [&](const Step& add, const Step& remove, const auto& addAgain, const auto& dispatch) {
        first->hear = second->hear = [&](const std::string& /* text */) { expectWaiting(remove); };
        g_atGate = [&] {
            g_atGate = [] {};
            expectWaiting(remove);
        };
        const auto atGate = g_atGate;
        EXPECT_EQ(add(), 0);
        EXPECT_EQ(other.get(), 0);
        EXPECT_EQ(add(), 0);
        g_atGate = atGate;
        addAgain();
        EXPECT_EQ(other.get(), 0);
        EXPECT_EQ(add(), 0);
        dispatch();
        EXPECT_EQ(other.get(), 0);
    };
    expectAllWaiting([this] { return client.RegisterPrivacyIndicatorSwitchListener(first); },
        [this] { return client.UnregisterPrivacyIndicatorSwitchListener(first); },
        [this] { client.ReRegisterPrivacyIndicatorSwitchListener(); },
        [this] { client.DispatchOnIndicatorSwitchChanged(data); });
    expectAllWaiting([this] { return client.RegisterPrivacyEventListener("A", second); },
        [this] { return client.UnregisterPrivacyEventListener(second); },
        [this] { client.ReRegisterPrivacyEventListener(); },
        [this] { client.DispatchOnPrivacyEventChanged("A", {info}); });
}

TEST_F(ClientTest, TheReportersPowerEventIsReportedAgainBeforeTheStubs)
{
    // When the service comes: whose event is remembered, which one is sent again, and the calls of the service.
    const auto expectComing = [this](const std::string& user, const Lines& again, const Lines& calls) {
        service->Take();
        log.Take();
        notices->OnAddSystemAbility(66090, "");
        EXPECT_EQ(service->Take(), calls);
        EXPECT_EQ(log.Take(), Lines{Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66090")} +
                                  Lines{Line('I', "NotifyPowerEventByCache: uid: " + user)} + again +
                                  Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin.")} +
                                  Lines{Line('I', "ReRegisterPrivacyEventListener: begin.")});
    };
    const auto again = [](const std::string& number) {
        return Lines{Line('I', "NotifyPowerEventByCache: To notify current event: " + number),
            Line('I', "NotifyPowerEvent: event: " + number)};
    };
    const Lines stubs = {"RegisterSwitch", "RegisterEvent A", "RegisterEvent B"};
    InNewProcess([&] {
        expectComing("0", {}, {});
        g_user = 3036;
        EXPECT_EQ(NotifyPowerEvent(1), 0);
        client.RegisterPrivacyEventListener("B", first);
        client.RegisterPrivacyEventListener("A", first);
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.UnregisterPrivacyIndicatorSwitchListener(first); // What was ever registered is registered again.
        client.UnregisterPrivacyEventListener(first);
        service->Take();
        log.Take();
        Expect(NotifyPowerEvent(2), -1, {},
            {Line('E', "UpdateEvent: error event: 2"), Line('I', "NotifyPowerEvent: event: 2"),
                Line('E', "NotifyPowerEvent: error event: 2")});
        for (const int32_t invalid : {-1, 256, INT32_MIN, INT32_MAX}) {
            EXPECT_EQ(client.NotifyPowerEvent(invalid), -1);
        }
        client.NotifyPowerEvent(0); // A report to the service alone is not remembered.
        g_user = 3037;              // Another caller now: the event is still the reporter's.
        expectComing("3036", again("1"), Lines{"Power 1"} + stubs);
        service->result = -9;                                       // Keeps none of the next ones back.
        expectComing("3036", again("1"), Lines{"Power 1"} + stubs); // Nor is the replay itself.
        NotifyPowerEvent(0);
        expectComing("3037", {}, stubs);
        g_user = 3036;
        NotifyPowerEvent(0);
        expectComing("3036", again("0"), Lines{"Power 0"} + stubs);
    });
}

TEST_F(ClientTest, ASubscriptionThatFailsIsLogged)
{
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    const std::string code = std::to_string(manager->SubscribeSystemAbility(66090, nullptr));
    Failing::nthNew = 1; // The listener.
    client.SubscribePrivacyIndicatorAbility();
    EXPECT_EQ(log.Take(), (Lines{Line('D', "SubscribePrivacyIndicatorAbility: SubscribePrivacyIndicatorAbility"),
                              Failure("SubscribePrivacyIndicatorAbility",
                                  "SubscribeSystemAbility for sa: 66090 failed!, ret: " + code)}));
}

TEST(SubscriptionTest, NeedsAManager)
{
    InNewProcess([] {
        setenv("OHOS_BUS_ADDRESS", "malformed", 1);
        LogCapture log;
        PrivacyIndicatorClient::GetInstance().InitializeProxy();
        EXPECT_EQ(log.Take(), (Lines{Line('D', "SubscribePrivacyIndicatorAbility: SubscribePrivacyIndicatorAbility"),
                                  Failure("SubscribePrivacyIndicatorAbility", "saMgrProxy is null!"),
                                  Failure("InitializeProxy", "SAM is nullptr, please check.")}));
    });
}

TEST_F(ClientTest, ARequestNeedsNoMemoryOfItsOwn)
{
    InNewProcess([this] {
        std::vector<IndicatorData> indicators;
        g_atGate = [] { Failing::everyNew = false; };
        Failing::everyNew = true;
        EXPECT_EQ(client.GetActiveIndicators(indicators), 0);
        EXPECT_EQ(service->Take(), Lines{"Active"});
    });
}

} // namespace
