// SPDX-License-Identifier: Apache-2.0
#include "client_fixture.h"
#include "failing.h"
#include "new_process.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

const std::string START_SWITCH =
    "RegisterPrivacyIndicatorSwitchListener: start RegisterPrivacyIndicatorSwitchListener in client.";

class ListenerTest : public ClientTest {
protected:
    void Switch()
    {
        client.DispatchOnIndicatorSwitchChanged(data);
    }

    void Event(const std::string& type)
    {
        client.DispatchOnPrivacyEventChanged(type, {info});
    }

    const IndicatorData data = *Read<IndicatorData>(DATA.bytes);
    const PrivacyEventRemindInfo info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
};

TEST_F(ListenerTest, SwitchListenersShareOneRegistration)
{
    client.RegisterPrivacyIndicatorSwitchListener(
        first); // The process's first registration has a line of its own: the stub's.
    client.UnregisterPrivacyIndicatorSwitchListener(first);
    Gate::service->Take();
    log.Take();

    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
    const sptr<IRemoteObject> stub = Sent();
    EXPECT_NE(stub, nullptr);
    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), 0);
    EXPECT_EQ(Calls(), Lines{"RegisterSwitch"});
    EXPECT_EQ(log.Take(), Repeated(3, {Line('I', START_SWITCH)}));
    Switch();
    EXPECT_EQ(log.Take(),
        Repeated(
            2, {Line('I', "DispatchOnIndicatorSwitchChanged: start DispatchOnIndicatorSwitchChanged in client.")}));
    EXPECT_EQ(first->Take(), Lines{DATA.text});
    EXPECT_EQ(second->Take(), Lines{DATA.text});

    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
    EXPECT_EQ(Calls(), Lines{});
    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), 0);
    EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"});
    EXPECT_EQ(Sent(), stub);
    // Once more, though it is not there: the set is empty again.
    Gate::service->result = -9;
    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), -9);
    EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"});
    Switch();
    EXPECT_EQ(first->Take() + second->Take() + log.Take(), Lines{});

    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), -9);
    EXPECT_EQ(Calls(), Lines{"RegisterSwitch"});
    EXPECT_EQ(Sent(), stub);
}

TEST_F(ListenerTest, TheFirstSwitchListenerOfAProcessMakesTheStub)
{
    InNewProcess([this] {
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"});
        EXPECT_EQ(Sent(), nullptr);
        client.ReRegisterPrivacyIndicatorSwitchListener();
        EXPECT_EQ(Calls(), Lines{});
        log.Take();
        {
            Failing failing;
            Failing::nthNew = 1;
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), -1);
        }
        EXPECT_EQ(log.Take(), (Lines{Line('I', START_SWITCH),
                                  Line('E', "RegisterPrivacyIndicatorSwitchListener: failed to create privacy "
                                            "indicator switch listener stub")}));
        EXPECT_EQ(Calls(), Lines{});
        Switch();
        EXPECT_EQ(first->Take(), Lines{});

        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(log.Take(), (Lines{Line('I', START_SWITCH),
                                  Line('I', "IndicatorSwitchListenerStub: create IndicatorSwitchListenerStub")}));
        EXPECT_EQ(Calls(), Lines{"RegisterSwitch"});
        return true;
    });
}

TEST_F(ListenerTest, EventListenersShareOneRegistrationPerType)
{
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, first), 0);
    const sptr<IRemoteObject> stubA = Sent();
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, second), 0);
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, second), 0);
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeB, first), 0);
    const sptr<IRemoteObject> stubB = Sent();
    EXPECT_EQ(Calls(), (Lines{"RegisterEvent " + typeA, "RegisterEvent " + typeB}));
    EXPECT_TRUE(stubA != nullptr && stubB != nullptr && stubA != stubB);

    // Each call takes it out of one type, in their order; only a type left empty is the service's business.
    EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
    EXPECT_EQ(Calls(), Lines{});
    Event(typeA);
    Event(typeB);
    EXPECT_EQ(first->Take(), Lines{typeB + " " + REMIND_INFO.text});
    EXPECT_EQ(second->Take(), Lines{typeA + " " + REMIND_INFO.text});
    Gate::service->result = 22;
    EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 22);
    EXPECT_EQ(Calls(), Lines{"UnregisterEvent"});
    EXPECT_EQ(Sent(), stubB);
    log.Take();
    EXPECT_EQ(client.UnregisterPrivacyEventListener(first), -1);
    EXPECT_EQ(log.Take(), Lines{Line('W', "UnregisterPrivacyEventListener: dataType '' is empty callback!")});
    EXPECT_EQ(Calls(), Lines{});

    // A code of the service's leaves the listener where it is, and its type's stub is kept.
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeB, second), 22);
    EXPECT_EQ(Calls(), Lines{"RegisterEvent " + typeB});
    EXPECT_EQ(Sent(), stubB);
    Event(typeB);
    EXPECT_EQ(second->Take(), Lines{typeB + " " + REMIND_INFO.text});
    EXPECT_EQ(first->Take(), Lines{});
}

TEST_F(ListenerTest, WhoIsNotRegisteredIsLookedForUnderTheEmptyType)
{
    InNewProcess([this] {
        EXPECT_EQ(client.RegisterPrivacyEventListener("", first), 0);
        const sptr<IRemoteObject> stub = Sent();
        Gate::service->Take();
        Gate::service->result = 5;
        EXPECT_EQ(client.UnregisterPrivacyEventListener(second), 5);
        EXPECT_EQ(Gate::service->Take(), Lines{"UnregisterEvent"});
        EXPECT_EQ(Sent(), stub);
        Event("");
        EXPECT_EQ(first->Take(), Lines{" " + REMIND_INFO.text});
        return true;
    });
}

TEST_F(ListenerTest, AnEventStubThatCannotBeMadeLeavesNothing)
{
    {
        Failing failing;
        Failing::nthNew = 1;
        EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, first), -1);
    }
    EXPECT_EQ(
        log.Take(), Lines{Line('E', "RegisterPrivacyEventListener: failed to create privacy indicator listener stub")});
    Event(typeA);
    EXPECT_EQ(first->Take(), Lines{});
    EXPECT_EQ(Gate::passed, 0);
    // The dispatch has left an empty entry, which does not stand in the way of a registration.
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, first), 0);
    EXPECT_EQ(Calls(), Lines{"RegisterEvent " + typeA});
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(ListenerTest, NoListenerIsRefused)
{
    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(nullptr), -1);
    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(nullptr), -1);
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, nullptr), -1);
    EXPECT_EQ(client.UnregisterPrivacyEventListener(nullptr), -1);
    EXPECT_EQ(log.Take(),
        (Lines{Line('I', START_SWITCH), Line('E', "RegisterPrivacyIndicatorSwitchListener: listener is null!"),
            Line('E', "UnregisterPrivacyIndicatorSwitchListener: listener is null!"),
            Line('E', "RegisterPrivacyEventListener: privacyEventListener is null!"),
            Line('E', "UnregisterPrivacyEventListener: privacyEventListener is null!")}));
    EXPECT_EQ(Gate::passed, 0);
}

TEST_F(ListenerTest, WithoutServiceTheyAreRegisteredAllTheSame)
{
    Gate::way = Gate::NO_SERVICE;
    EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
    log.Take();
    client.ReRegisterPrivacyIndicatorSwitchListener();
    EXPECT_EQ(client.RegisterPrivacyEventListener(typeA, first), 0);
    EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
    EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
    const std::string failure = ": proxy is nullptr, please check.";
    const Lines failures = {Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
        Line('E', "RegisterPrivacyIndicatorSwitchListener" + failure),
        Line('E', "RegisterPrivacyEventListener" + failure), Line('E', "UnregisterPrivacyEventListener" + failure),
        Line('E', "UnregisterPrivacyIndicatorSwitchListener" + failure)};
    EXPECT_EQ(log.Take(), failures);
}

TEST_F(ListenerTest, EachListenerGetsTheWholeList)
{
    client.RegisterPrivacyEventListener(typeA, first);
    client.RegisterPrivacyEventListener(typeA, second);
    log.Take();
    client.DispatchOnPrivacyEventChanged(typeA, {info, {}, info});
    const std::string none = "PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, "
                             "remindFlag=0}";
    const std::string function = "DispatchOnPrivacyEventChanged: ";
    const std::string sample = Line('D', function + "'" + REMIND_INFO.text + "'");
    const Lines perListener = {Line('I', function + "start DispatchOnPrivacyEventChanged in client."), sample,
        Line('D', function + "'" + none + "'"), sample};
    EXPECT_EQ(log.Take(), Repeated(2, perListener));
    for (const auto& ear : {first, second}) {
        EXPECT_EQ(ear->Take(), Lines{typeA + " " + REMIND_INFO.text + " " + none + " " + REMIND_INFO.text});
    }
}

TEST_F(ListenerTest, TheServicesStubsLeadToTheListeners)
{
    client.RegisterPrivacyIndicatorSwitchListener(first);
    const auto change = iface_cast<Indicator::IndicatorSwitchListenerIntf>(Sent());
    client.RegisterPrivacyEventListener(typeA, first);
    const auto event = iface_cast<Privacy::PrivacyEventListenerIntf>(Sent());
    ASSERT_TRUE(change != nullptr && event != nullptr);
    change->OnSwitchChanged(data);
    event->OnPrivacyEventChanged(typeB, {info});
    event->OnPrivacyEventChanged(typeA, {info});
    EXPECT_EQ(first->Take(), (Lines{DATA.text, typeA + " " + REMIND_INFO.text}));
}

TEST_F(ListenerTest, WhatWasEverRegisteredIsRegisteredAgain)
{
    client.RegisterPrivacyEventListener(typeB, first);
    client.RegisterPrivacyEventListener(typeA, first);
    client.RegisterPrivacyIndicatorSwitchListener(first);
    const sptr<IRemoteObject> stub = Sent();
    client.UnregisterPrivacyIndicatorSwitchListener(first);
    client.UnregisterPrivacyEventListener(first);
    client.UnregisterPrivacyEventListener(first);
    Calls();
    log.Take();
    client.ReRegisterPrivacyIndicatorSwitchListener();
    EXPECT_EQ(Sent(), stub);
    client.ReRegisterPrivacyEventListener();
    EXPECT_EQ(Calls(), (Lines{"RegisterSwitch", "RegisterEvent " + typeA, "RegisterEvent " + typeB}));
    EXPECT_EQ(log.Take(), (Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
                              Line('I', "ReRegisterPrivacyEventListener: begin.")}));
    Switch();
    Event(typeA);
    EXPECT_EQ(first->Take(), Lines{});
}

TEST_F(ListenerTest, ASwitchListenerMayTouchTheEventListeners)
{
    client.RegisterPrivacyIndicatorSwitchListener(first);
    client.RegisterPrivacyEventListener(typeA, first);
    client.RegisterPrivacyEventListener(typeB, second);
    first->whenCalled = [this] {
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
        EXPECT_EQ(client.RegisterPrivacyEventListener(typeB, first), 0);
    };
    Switch();
    first->whenCalled = nullptr;
    Event(typeA);
    Event(typeB);
    EXPECT_EQ(first->Take(), (Lines{DATA.text, typeB + " " + REMIND_INFO.text}));
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
