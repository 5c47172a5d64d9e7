// SPDX-License-Identifier: Apache-2.0
#include "client_fixture.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

const std::string REGISTER_SWITCH = "RegisterPrivacyIndicatorSwitchListener: ";
const std::string START_SWITCH = Line('I', REGISTER_SWITCH + "start RegisterPrivacyIndicatorSwitchListener in client.");
const Lines NOTHING;

class ListenerTest : public ClientTest {
protected:
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

    const IndicatorData data = *Read<IndicatorData>(DATA.bytes);
    const PrivacyEventRemindInfo info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
    const std::string event = " " + REMIND_INFO.text;
};

TEST_F(ListenerTest, SwitchListenersShareOneRegistration)
{
    InNewProcess([this] {
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"}); // Though there was never a stub.
        EXPECT_EQ(Sent(), nullptr);
        client.ReRegisterPrivacyIndicatorSwitchListener();
        log.Take();
        {
            const Failing failing(1);
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), -1);
        }
        const std::string noStub = "failed to create privacy indicator switch listener stub";
        EXPECT_EQ(log.Take(), (Lines{START_SWITCH, Line('E', REGISTER_SWITCH + noStub)}));
        EXPECT_EQ(Calls(), NOTHING);
        EXPECT_EQ(Switch(), NOTHING);

        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(log.Take(),
            (Lines{START_SWITCH, Line('I', "IndicatorSwitchListenerStub: create IndicatorSwitchListenerStub")}));
        const sptr<IRemoteObject> stub = Sent();
        EXPECT_NE(stub, nullptr);
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), 0);
        EXPECT_EQ(Calls(), Lines{"RegisterSwitch"});
        EXPECT_EQ(log.Take(), Repeated(2, {START_SWITCH}));
        EXPECT_EQ(Switch(), (Lines{"1 " + DATA.text, "2 " + DATA.text}));
        EXPECT_EQ(log.Take(), Repeated(2, {Line('I', "DispatchOnIndicatorSwitchChanged: start "
                                                     "DispatchOnIndicatorSwitchChanged in client.")}));
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(first), 0);
        EXPECT_EQ(Calls(), NOTHING);
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), 0);
        EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"});
        EXPECT_EQ(Sent(), stub);
        EXPECT_EQ(Switch() + log.Take(), NOTHING);
        Gate::service->result = -9;
        EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(second), -9); // Once more, though it is not there.
        EXPECT_EQ(Calls(), Lines{"UnregisterSwitch"});

        // What was ever registered is registered again; a code of the service's keeps no listener out.
        client.ReRegisterPrivacyIndicatorSwitchListener();
        EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(second), -9);
        EXPECT_EQ(Calls(), (Lines{"RegisterSwitch", "RegisterSwitch"}));
        EXPECT_EQ(Sent(), stub);
        iface_cast<SwitchListener>(Sent())->OnSwitchChanged(data);
        EXPECT_EQ(Heard(), Lines{"2 " + DATA.text});
    });
}

TEST_F(ListenerTest, EventListenersShareOneRegistrationPerType)
{
    InNewProcess([this] {
        const std::string nowhere = Line('W', "UnregisterPrivacyEventListener: dataType '' is empty callback!");
        {
            const Failing failing(1);
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", first), -1);
        }
        EXPECT_EQ(log.Take(),
            Lines{Line('E', "RegisterPrivacyEventListener: failed to create privacy indicator listener stub")});
        EXPECT_EQ(Event("A") + Calls(), NOTHING);
        // The dispatch has left an empty entry, which does not stand in the way of a registration.
        EXPECT_EQ(client.RegisterPrivacyEventListener("A", first), 0);
        const sptr<IRemoteObject> stubA = Sent();
        EXPECT_EQ(client.RegisterPrivacyEventListener("A", second), 0);
        EXPECT_EQ(client.RegisterPrivacyEventListener("A", second), 0);
        EXPECT_EQ(client.RegisterPrivacyEventListener("B", first), 0);
        const sptr<IRemoteObject> stubB = Sent();
        EXPECT_EQ(Calls(), (Lines{"RegisterEvent A", "RegisterEvent B"}));
        EXPECT_TRUE(stubA != nullptr && stubB != nullptr && stubA != stubB);
        EXPECT_EQ(log.Take(), NOTHING);
        iface_cast<EventListener>(stubB)->OnPrivacyEventChanged("A", {info});
        EXPECT_EQ(Heard(), (Lines{"1 A" + event, "2 A" + event}));

        // Each call takes it out of one type, in their order; only a type left empty is the service's business.
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
        EXPECT_EQ(Calls(), NOTHING);
        EXPECT_EQ(Event("A") + Event("B"), (Lines{"2 A" + event, "1 B" + event}));
        Gate::service->result = 22;
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 22);
        EXPECT_EQ(Calls(), Lines{"UnregisterEvent"});
        EXPECT_EQ(Sent(), stubB);
        log.Take();
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), -1);
        EXPECT_EQ(log.Take(), Lines{nowhere});

        // What was ever registered is registered again; a code of the service's keeps no listener out.
        client.ReRegisterPrivacyEventListener();
        EXPECT_EQ(log.Take(), Lines{Line('I', "ReRegisterPrivacyEventListener: begin.")});
        EXPECT_EQ(client.RegisterPrivacyEventListener("B", second), 22);
        EXPECT_EQ(Calls(), (Lines{"RegisterEvent A", "RegisterEvent B", "RegisterEvent B"}));
        EXPECT_EQ(Sent(), stubB);
        EXPECT_EQ(Event("B"), Lines{"2 B" + event});

        // Who is not registered is looked for under the empty type.
        EXPECT_EQ(client.RegisterPrivacyEventListener("", second), 22);
        const sptr<IRemoteObject> unnamed = Sent();
        EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 22);
        EXPECT_EQ(Calls(), (Lines{"RegisterEvent ", "UnregisterEvent"}));
        EXPECT_EQ(Sent(), unnamed);
        EXPECT_EQ(Event(""), Lines{"2 " + event});
    });
}

TEST_F(ListenerTest, NullAndAMissingServiceAreErrorsInTheLog)
{
    InNewProcess([this] {
        Gate::service = nullptr;
        const std::shared_ptr<Ear> none;
        for (const auto& [listener, result] : {std::make_pair(none, -1), std::make_pair(first, 0)}) {
            const bool isNull = listener == nullptr;
            const std::string noService = "proxy is nullptr, please check.";
            const std::string noSwitch = isNull ? "listener is null!" : noService;
            const std::string noEvent = isNull ? "privacyEventListener is null!" : noService;
            log.Take();
            EXPECT_EQ(client.RegisterPrivacyIndicatorSwitchListener(listener), result);
            EXPECT_EQ(log.Take().back(), Line('E', REGISTER_SWITCH + noSwitch));
            EXPECT_EQ(client.RegisterPrivacyEventListener("A", listener), result);
            EXPECT_EQ(client.UnregisterPrivacyEventListener(listener), result);
            EXPECT_EQ(client.UnregisterPrivacyIndicatorSwitchListener(listener), result);
            EXPECT_EQ(log.Take(), (Lines{Line('E', "RegisterPrivacyEventListener: " + noEvent),
                                      Line('E', "UnregisterPrivacyEventListener: " + noEvent),
                                      Line('E', "UnregisterPrivacyIndicatorSwitchListener: " + noSwitch)}));
            EXPECT_EQ(Gate::passed, isNull ? 0 : 4);
        }
        client.ReRegisterPrivacyIndicatorSwitchListener();
        EXPECT_EQ(log.Take(), (Lines{Line('I', "ReRegisterPrivacyIndicatorSwitchListener: begin."),
                                  Line('E', REGISTER_SWITCH + "proxy is nullptr, please check.")}));
    });
}

TEST_F(ListenerTest, ASwitchListenerMayTouchTheEventListeners)
{
    InNewProcess([this] {
        client.RegisterPrivacyIndicatorSwitchListener(first);
        client.RegisterPrivacyEventListener("A", first);
        client.RegisterPrivacyEventListener("B", second);
        first->whenCalled = [this] {
            EXPECT_EQ(client.UnregisterPrivacyEventListener(first), 0);
            EXPECT_EQ(client.RegisterPrivacyEventListener("B", first), 0);
        };
        EXPECT_EQ(Switch(), Lines{"1 " + DATA.text});
        first->whenCalled = nullptr;
        EXPECT_EQ(Event("A"), NOTHING);
        log.Take();
        client.DispatchOnPrivacyEventChanged("B", {info, {}, info});
        const std::string none = "PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, "
                                 "remindFlag=0}";
        const std::string function = "DispatchOnPrivacyEventChanged: ";
        const std::string sample = Line('D', function + "'" + REMIND_INFO.text + "'");
        const Lines perListener = {Line('I', function + "start DispatchOnPrivacyEventChanged in client."), sample,
            Line('D', function + "'" + none + "'"), sample};
        EXPECT_EQ(log.Take(), Repeated(2, perListener));
        const std::string all = "B" + event + " " + none + event;
        EXPECT_EQ(Heard(), (Lines{"1 " + all, "2 " + all}));
    });
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
