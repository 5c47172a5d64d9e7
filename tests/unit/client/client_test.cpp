// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdlib>
#include <future>

#include "fake_service.h"
#include "indicator_switch_listener.h"
#include "ipc_skeleton.h"
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
uid_t IPCSkeleton::GetCallingUid() { return g_user; }

namespace {

const Lines START_SWITCH =
    Line('I', "RegisterPrivacyIndicatorSwitchListener: start RegisterPrivacyIndicatorSwitchListener in client.");
const Lines START_DISPATCH =
    Line('I', "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.");
const Lines START_EVENT = Line('I', "DispatchOnPrivacyEventChanged: start DispatchOnPrivacyEventChanged in client.");

Lines Failure(const std::string& function, const std::string& message = "proxy is nullptr, please check.")
{
    return Line('E', function + ": " + message);
}

// A listener of both kinds.
class Listener : public Indicator::IndicatorSwitchListener, public Privacy::PrivacyEventListener {
public:
    void OnSwitchChanged(const IndicatorData& indicatorData) override { onCall(indicatorData.ToString()); }

    void OnPrivacyEventChanged(const std::string& dataType, const std::vector<PrivacyEventRemindInfo>& infos) override
    {
        onCall(dataType + " " + std::to_string(infos.size()) + " " + infos.at(0).ToString());
    }

    std::function<void(const std::string&)> onCall;
};

// The client is one for all tests of a process, and keeps what it is given: see InNewProcess.
class ClientTest : public testing::Test {
public:
    ClientTest()
    {
        g_service = service;
        g_atGate = [] {};
        first->onCall = [](const auto& text) { Journal::Add("1 " + text); };
        second->onCall = [](const auto& text) { Journal::Add("2 " + text); };
    }

protected:
    // What a call has returned, and what has happened since the last time.
    static void Expect(int32_t returned, int32_t result, const Lines& lines)
    {
        EXPECT_EQ(returned, result);
        EXPECT_EQ(Journal::Take(), lines);
    }

    // A switch changes, or the event comes, by the service's stub if there is one: `calledOn` are the listeners that
    // are called, in the client's order.
    void ExpectSwitch(const std::string& calledOn)
    {
        client.DispatchOnIndicatorSwitchChanged(data);
        Lines lines;
        for (const char listener : calledOn) {
            lines = lines + START_DISPATCH + Lines{listener + (" " + DATA.text)};
        }
        EXPECT_EQ(Journal::Take(), lines);
    }

    void ExpectEvent(const std::string& type, const std::string& calledOn, const sptr<EventListener>& stub = nullptr)
    {
        stub != nullptr ? stub->OnPrivacyEventChanged(type, {info})
                        : client.DispatchOnPrivacyEventChanged(type, {info});
        Lines lines;
        for (const char listener : calledOn) {
            lines = lines + START_EVENT + Line('D', "DispatchOnPrivacyEventChanged: '" + REMIND_INFO.text + "'") +
                    Lines{listener + (" " + type + " 1 " + REMIND_INFO.text)};
        }
        EXPECT_EQ(Journal::Take(), lines);
    }

    const sptr<FakeService> service = new FakeService();
    PrivacyIndicatorClient& client = PrivacyIndicatorClient::GetInstance();
    const sptr<PrivacyIndicatorClient::PrivacyIndicatorServiceListener> notices =
        new PrivacyIndicatorClient::PrivacyIndicatorServiceListener();
    // In this order in the client's sets, too, which go by the address.
    const std::shared_ptr<std::array<Listener, 2>> listeners = std::make_shared<std::array<Listener, 2>>();
    const std::shared_ptr<Listener> first{listeners, &listeners->at(0)};
    const std::shared_ptr<Listener> second{listeners, &listeners->at(1)};
    const IndicatorData data = *Read<IndicatorData>(DATA.bytes);
    const PrivacyEventRemindInfo info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
    Journal journal;
};

TEST_F(ClientTest, ARequestReachesTheServiceAsItWasMadeAndBringsBackItsCodeAndRecords)
{
    service->elements = 1;
    service->result = -4711;
    for (const bool isThere : {true, false}) {
        g_service = isThere ? service : nullptr;
        // `record` is logged for each one in the vector, which held one before.
        const auto expect = [isThere](int32_t returned, const Lines& begin, const Bytes& call,
                                const std::string& function, const Lines& record = {}, const Lines& end = {}) {
            Expect(returned, isThere ? -4711 : 0,
                begin + (isThere ? Lines{call} + record : Failure(function)) + record + end);
        };
        std::vector<PrivacyEventDetail> details{*Read<PrivacyEventDetail>(DETAIL.bytes)};
        expect(client.GetPrivacyEventDetails(8, details), {}, "Details" + I32(8), "GetPrivacyEventDetails",
            Line('D', "GetPrivacyEventDetails: '" + DETAIL.text + "'"));
        details.resize(1);
        expect(client.GetPrivacyEventDetailsByPrivacySensorType(-4, PrivacySensorType::LOCATION, details), {},
            "DetailsOf" + I32(-4) + I32(2), "GetPrivacyEventDetails",
            Line('I', "GetPrivacyEventDetailsByPrivacySensorType: '" + DETAIL.text + "'"));
        std::vector<IndicatorData> indicators{data};
        expect(client.GetActiveIndicators(indicators), {}, "Active", "GetActiveIndicators",
            Line('D', "GetActiveIndicators: '" + DATA.text + "'"));
        IndicatorPosition position = *Read<IndicatorPosition>(POSITION.bytes);
        IndicatorSize size = *Read<IndicatorSize>(SIZE.bytes);
        PrivacySensorType sensor = PrivacySensorType::LOCATION;
        g_atGate = [&] { position = {}, size = {}, sensor = {}; }; // What was handed over is what counts.
        expect(client.TurnOnIndicator(sensor, position, size, 3), Line('I', "TurnOnIndicator: TurnOnIndicator"),
            "On" + I32(2) + POSITION.bytes + SIZE.bytes + I32(3), "TurnOnIndicator");
        g_atGate = [] {};
        expect(client.TurnOffIndicator(PrivacySensorType::LOCATION, 100),
            Line('I', "TurnOffIndicator: TurnOffIndicator"), "Off" + I32(2) + I32(100), "TurnOnIndicator");
        expect(
            client.NotifyPowerEvent(1), Line('I', "NotifyPowerEvent: event: 1"), "Power" + I32(1), "NotifyPowerEvent");
        std::vector<PermissionUsageDuration> durations(1);
        const std::string usage = "GetPermissionUsageDurationSummary";
        expect(client.GetPermissionUsageDurationSummary(*Read<PermissionUsageDurationQuery>(QUERY.bytes), durations),
            Line('I', usage + ": start " + usage + " in client."), "Usage" + QUERY.bytes, usage, {},
            Line('I', usage + ": stop " + usage + " in client."));
        EXPECT_EQ(durations.size(), isThere ? 2U : 1U);
    }
}

TEST_F(ClientTest, WithoutAServiceOrAListenerAnErrorIsLogged)
{
    client.RegisterPrivacyIndicatorSwitchListener(first); // So that there is a stub.
    client.UnregisterPrivacyIndicatorSwitchListener(first);
    Journal::Take();
    g_service = nullptr;
    for (const auto& [listener, result] : {std::make_pair(first, 0), {nullptr, -1}}) {
        const auto failure = [isNull = listener == nullptr](const std::string& function, const std::string& name) {
            return isNull ? Failure(function, name + " is null!") : Failure(function);
        };
        const std::string event = "privacyEventListener";
        Expect(
            client.RegisterPrivacyEventListener("A", listener), result, failure("RegisterPrivacyEventListener", event));
        Expect(
            client.UnregisterPrivacyEventListener(listener), result, failure("UnregisterPrivacyEventListener", event));
        Expect(client.RegisterPrivacyIndicatorSwitchListener(listener), result,
            START_SWITCH + failure("RegisterPrivacyIndicatorSwitchListener", "listener"));
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(listener), result,
            failure("UnregisterPrivacyIndicatorSwitchListener", "listener"));
    }
}

TEST_F(ClientTest, SwitchListenersShareOneRegistration)
{
    InNewProcess([this] {
        // Asked for without a stub, too.
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(first), 0, {"UnregisterSwitch"});
        EXPECT_EQ(service->listenerObject, nullptr);
        Failing::nthNew = 1;
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), -1,
            START_SWITCH + Failure("RegisterPrivacyIndicatorSwitchListener",
                               "failed to create privacy indicator switch listener stub"));
        ExpectSwitch("");
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), 0,
            START_SWITCH + Line('I', "IndicatorSwitchListenerStub: create IndicatorSwitchListenerStub") +
                Lines{"RegisterSwitch"});
        const sptr<IRemoteObject> stub = service->listenerObject;
        EXPECT_NE(stub, nullptr);
        Expect(client.RegisterPrivacyIndicatorSwitchListener(first), 0, START_SWITCH);
        Expect(client.RegisterPrivacyIndicatorSwitchListener(second), 0, START_SWITCH);
        ExpectSwitch("12");
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(first), 0, {});
        service->result = -9;
        Expect(client.UnregisterPrivacyIndicatorSwitchListener(second), -9, {"UnregisterSwitch"});
        EXPECT_EQ(service->listenerObject, stub);
        ExpectSwitch("");
        // A code of the service's keeps no listener out.
        Expect(client.RegisterPrivacyIndicatorSwitchListener(second), -9, START_SWITCH + Lines{"RegisterSwitch"});
        EXPECT_EQ(service->listenerObject, stub);
        second->onCall = [this](const auto& text) { // It may register event listeners.
            EXPECT_EQ(text, DATA.text);
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", second), -9);
        };
        iface_cast<SwitchListener>(stub)->OnSwitchChanged(data);
        EXPECT_EQ(Journal::Take().back(), "RegisterEvent A");
        // A listener's destructor may call the client, also where the client held it last.
        const auto end = [this](Listener*) { client.UnregisterPrivacyIndicatorSwitchListener(second); };
        client.RegisterPrivacyIndicatorSwitchListener(std::shared_ptr<Listener>(first.get(), end));
        client.UnregisterPrivacyIndicatorSwitchListener({std::shared_ptr<void>(), first.get()});
    });
}

TEST_F(ClientTest, EventListenersShareOneRegistrationPerType)
{
    InNewProcess([this] {
        Failing::nthNew = 1;
        Expect(client.RegisterPrivacyEventListener("A", first), -1,
            Failure("RegisterPrivacyEventListener", "failed to create privacy indicator listener stub"));
        ExpectEvent("A", "");
        // The dispatch has left an empty entry, which does not stand in the way of a registration.
        Expect(client.RegisterPrivacyEventListener("A", first), 0, {"RegisterEvent A"});
        const sptr<IRemoteObject> stubA = service->listenerObject;
        Expect(client.RegisterPrivacyEventListener("A", second), 0, {});
        Expect(client.RegisterPrivacyEventListener("B", first), 0, {"RegisterEvent B"});
        const sptr<IRemoteObject> stubB = service->listenerObject;
        EXPECT_TRUE(stubA != nullptr && stubB != nullptr && stubA != stubB);
        ExpectEvent("A", "12", iface_cast<EventListener>(stubB));

        // Each call takes it out of one type, in their order; only a type left empty is the service's business.
        Expect(client.UnregisterPrivacyEventListener(first), 0, {});
        ExpectEvent("A", "2");
        ExpectEvent("B", "1");
        service->result = 22;
        Expect(client.UnregisterPrivacyEventListener(first), 22, {"UnregisterEvent"});
        EXPECT_EQ(service->listenerObject, stubB);
        Expect(client.UnregisterPrivacyEventListener(first), -1,
            Line('W', "UnregisterPrivacyEventListener: dataType '' is empty callback!"));

        Expect(client.RegisterPrivacyEventListener("B", second), 22, {"RegisterEvent B"});
        EXPECT_EQ(service->listenerObject, stubB);
        ExpectEvent("B", "2");

        // One that is not registered counts as one of the empty type.
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
        Journal::Take();
        notices->OnAddSystemAbility(66091, ""); // Another one's.
        notices->OnRemoveSystemAbility(-1, "");
        notices->OnRemoveSystemAbility(66090, "");
        Lines expected = Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66091") +
                         Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=-1") +
                         Line('I', "OnRemoveSystemAbility: OnRemoveSystemAbility: saId=66090");
        Lines event = START_EVENT;
        const std::string off = "PrivacyEventRemindInfo='', uid=-1, privacySensorType=";
        for (const std::string sensor : {"0", "1", "2"}) {
            expected = expected + START_DISPATCH +
                       Lines{"1 Indicator{privacySensorType=" + sensor +
                             ", state=1, positionX=0.000000, positionY=0.000000, width=0.000000, height=0.000000, "
                             "color='#000000', animationType=0}"};
            event = event + Line('D', "DispatchOnPrivacyEventChanged: '" + off + sensor +
                                          ", privacyAccessState=2, remindFlag=0}'");
        }
        for (const std::string listener : {"1", "2"}) {
            expected = expected + event +
                       Lines{listener + " sensorStateChange 3 " + off + "0, privacyAccessState=2, remindFlag=0}"};
        }
        EXPECT_EQ(Journal::Take(), expected);
    });
}

TEST_F(ClientTest, ARegistryIsLockedWhileItIsUsed)
{
    using Step = std::function<int32_t()>;
    const Step nothing = [] { return 0; };
    const Step addSwitch = [this] { return client.RegisterPrivacyIndicatorSwitchListener(first); };
    const Step removeSwitch = [this] { return client.UnregisterPrivacyIndicatorSwitchListener(first); };
    const Step addEvent = [this] { return client.RegisterPrivacyEventListener("A", second); };
    const Step removeEvent = [this] { return client.UnregisterPrivacyEventListener(second); };
    // What comes before, what uses the registry, and what another thread must wait with meanwhile.
    const std::tuple<Step, Step, Step> cases[] = {{nothing, addSwitch, removeSwitch},
        {addSwitch, [this] { return client.ReRegisterPrivacyIndicatorSwitchListener(), 0; }, removeSwitch},
        {addSwitch, [this] { return client.DispatchOnIndicatorSwitchChanged(data), 0; }, removeSwitch},
        {nothing, addEvent, removeEvent},
        {addEvent, [this] { return client.ReRegisterPrivacyEventListener(), 0; }, removeEvent},
        {addEvent, [this] { return client.DispatchOnPrivacyEventChanged("A", {info}), 0; }, removeEvent}};
    for (const auto& [before, use, remove] : cases) {
        std::future<int32_t> other;
        const std::function<void()> wait = [&, &step = remove] {
            g_atGate = [] {};
            other = std::async(std::launch::async, step);
            EXPECT_EQ(other.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        };
        first->onCall = second->onCall = [&wait](const std::string& /* text */) { wait(); };
        EXPECT_EQ(before(), 0);
        g_atGate = wait;
        EXPECT_EQ(use(), 0);
        EXPECT_EQ(other.get(), 0);
    }
}

TEST_F(ClientTest, TheReportersPowerEventIsReportedAgainBeforeTheStubs)
{
    // When the service comes: whose event is remembered, which one is sent again, and the calls about the stubs.
    const auto expectComing = [this](const std::string& user, std::optional<int32_t> again, const Lines& switches,
                                  const Lines& events) {
        Journal::Take();
        notices->OnAddSystemAbility(66090, "");
        const std::string number = std::to_string(again.value_or(-1));
        const Lines sent = Line('I', "NotifyPowerEventByCache: To notify current event: " + number) +
                           Line('I', "NotifyPowerEvent: event: " + number) + Lines{"Power" + I32(again.value_or(-1))};
        EXPECT_EQ(Journal::Take(), Line('I', "OnAddSystemAbility: OnAddSystemAbility: saId=66090") +
                                       Line('I', "NotifyPowerEventByCache: uid: " + user) + (again ? sent : Lines()) +
                                       Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin.") + switches +
                                       Line('I', "ReRegisterPrivacyEventListener: begin.") + events);
    };
    const Lines switches = {"RegisterSwitch"};
    const Lines events = {"RegisterEvent A", "RegisterEvent B"};
    InNewProcess([&] {
        expectComing("0", {}, {}, {});
        g_user = 3036;
        EXPECT_EQ(NotifyPowerEvent(1), 0);
        client.RegisterPrivacyEventListener("B", first);
        client.RegisterPrivacyEventListener("A", first);
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.UnregisterPrivacyIndicatorSwitchListener(first); // What was ever registered is registered again.
        client.UnregisterPrivacyEventListener(first);
        Journal::Take();
        for (const std::string number : {"2", "-1", "256", "-2147483648", "2147483647"}) {
            Expect(NotifyPowerEvent(std::stoi(number)), -1,
                Line('E', "UpdateEvent: error event: " + number) + Line('I', "NotifyPowerEvent: event: " + number) +
                    Line('E', "NotifyPowerEvent: error event: " + number));
        }
        client.NotifyPowerEvent(0); // A report to the service alone is not remembered.
        g_user = 3037;              // Another caller now: the event is still the reporter's.
        expectComing("3036", 1, switches, events);
        service->result = -9;                      // Keeps none of the next ones back.
        expectComing("3036", 1, switches, events); // Nor is the replay itself.
        NotifyPowerEvent(0);
        expectComing("3037", {}, switches, events);
        g_user = 3036;
        NotifyPowerEvent(0);
        expectComing("3036", 0, switches, events);
    });
}

const Lines SUBSCRIBE = Line('D', "SubscribePrivacyIndicatorAbility: SubscribePrivacyIndicatorAbility");

TEST_F(ClientTest, ASubscriptionThatFailsIsLogged)
{
    Failing::nthNew = 1; // The listener.
    client.SubscribePrivacyIndicatorAbility();
    EXPECT_EQ(Journal::Take(), SUBSCRIBE + Failure("SubscribePrivacyIndicatorAbility",
                                               "SubscribeSystemAbility for sa: 66090 failed!, ret: 22"));
}

TEST(SubscriptionTest, NeedsAManager)
{
    InNewProcess([] {
        setenv("OHOS_BUS_ADDRESS", "malformed", 1);
        const Journal journal;
        PrivacyIndicatorClient::GetInstance().InitializeProxy();
        EXPECT_EQ(Journal::Take(), SUBSCRIBE + Failure("SubscribePrivacyIndicatorAbility", "saMgrProxy is null!") +
                                       Failure("InitializeProxy", "SAM is nullptr, please check."));
    });
}

TEST_F(ClientTest, ARequestNeedsNoMemoryOfItsOwn)
{
    InNewProcess([this] {
        std::vector<IndicatorData> indicators;
        g_atGate = [] { Failing::everyNew = false; };
        Failing::everyNew = true;
        const int32_t result = client.GetActiveIndicators(indicators);
        Expect(result, 0, {"Active"});
    });
}

} // namespace
