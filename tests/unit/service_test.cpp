// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include <gtest/gtest.h>

#include "fake_service.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_proxy.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Service = PrivacyIndicatorServiceIntf;
using Send = std::function<int32_t(Service&, Lines&)>; // Collects the records of the reply as texts.

const std::u16string DESCRIPTOR = u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf";
const Lines TOO_MANY = Labelled("The vector/array size exceeds the security limit!");
const Lines UNSENT = Labelled("Send request failed!"); // So the proxy sees a failure of the stub.
constexpr int32_t LIMIT = 102400;

Lines CannotRead(const std::string& name)
{
    return Labelled("Read [" + name + "] failed!");
}

Lines CannotWrite(const std::string& name)
{
    return Labelled("Write [" + name + "] failed!");
}

struct Request {
    uint32_t code;
    Send send;
    Bytes arguments;                                           // Without the listener.
    std::string call;                                          // As the implementation sees it.
    std::vector<std::pair<int32_t, std::string>> numbers = {}; // A number of each argument that has one, and its name.
    std::string record = {};                                   // The name of the reply's records, if it has any.
    Sample sample = {};                                        // One of them.
    std::string listener = {};                                 // The listener's name, if it has one.
    sptr<IRemoteObject> object = {};
};

// A query that is sent with a record in the vector already, which must stay in front.
template <typename T>
Send Query(const std::function<int32_t(Service&, std::vector<T>&)>& query)
{
    return [query](Service& service, Lines& texts) {
        std::vector<T> records(1);
        const int32_t result = query(service, records);
        EXPECT_EQ(records.at(0).ToString(), T().ToString());
        texts.clear();
        for (size_t i = 1; i < records.size(); ++i) {
            texts.push_back(records[i].ToString());
        }
        return result;
    };
}

class ServiceTest : public testing::Test {
protected:
    ServiceTest()
    {
        remote->behind = implementation;
    }

    // Has the proxy send the request, by default to the stub.
    void ExpectResult(int32_t result, const Send& send, const Lines& lines = {}, const Lines& records = {})
    {
        texts.clear();
        EXPECT_EQ(send(*proxy, texts), result);
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(texts, records);
    }

    sptr<EventListener> eventListener = new Privacy::PrivacyEventListenerStubImpl({});
    sptr<SwitchListener> switchListener = new Indicator::IndicatorSwitchListenerStubImpl({});
    const sptr<IRemoteObject> eventObject = eventListener->AsObject();
    const sptr<IRemoteObject> switchObject = switchListener->AsObject();
    const IndicatorPosition somewhere = *Read<IndicatorPosition>(POSITION.bytes);
    const IndicatorSize small = *Read<IndicatorSize>(SIZE.bytes);
    const PermissionUsageDurationQuery usage = *Read<PermissionUsageDurationQuery>(QUERY.bytes);

    const std::vector<Request> requests = {
        {1, [this](auto& s, auto&) { return s.RegisterPrivacyEventListener("a\xC3\xA9\xE2\x82\xAC", eventListener); },
            Str16(u"a\u00E9\u20AC"), "RegisterEvent a\u00E9\u20AC", {}, {}, {}, "privacyEventListener", eventObject},
        {2, [this](auto& s, auto&) { return s.UnregisterPrivacyEventListener(eventListener); }, {}, "UnregisterEvent",
            {}, {}, {}, "privacyEventListener", eventObject},
        {3, Query<PrivacyEventDetail>([](auto& s, auto& out) { return s.GetPrivacyEventDetails(8, out); }), I32(8),
            "Details 8", {{8, "userId"}}, "PrivacyEventDetail", DETAIL},
        {4, Query<PrivacyEventDetail>([](auto& s, auto& out) {
             return s.GetPrivacyEventDetailsByPrivacySensorType(-4, 22, out);
         }),
            I32(-4) + I32(22), "Details -4 22", {{-4, "userId"}, {22, "privacySensorType"}}, "PrivacyEventDetail",
            DETAIL},
        {5, Query<IndicatorData>([](auto& s, auto& out) { return s.GetActiveIndicators(out); }), {}, "Active", {},
            "IndicatorData", DATA},
        {6, [this](auto& s, auto&) { return s.TurnOnIndicator(31, somewhere, small, 33); },
            I32(31) + Present(POSITION) + Present(SIZE) + I32(33), "On 31" + POSITION.text + SIZE.text + "33",
            {{31, "privacySensorType"}, {270, "indicatorPosition"}, {33, "animationType"}}},
        {7, [](auto& s, auto&) { return s.TurnOffIndicator(22, 11); }, I32(22) + I32(11), "Off 22 11",
            {{22, "privacySensorType"}, {11, "animationType"}}},
        {8, [this](auto& s, auto&) { return s.RegisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "RegisterSwitch", {}, {}, {}, "listener", switchObject},
        {9, [this](auto& s, auto&) { return s.UnregisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "UnregisterSwitch", {}, {}, {}, "listener", switchObject},
        {10, Query<PermissionUsageDuration>([this](auto& s, auto& out) {
             return s.GetPermissionUsageDurationSummary(usage, out);
         }),
            Present(QUERY), "Usage " + QUERY.text, {{2, "permissionUsageDurationQuery"}}, "PermissionUsageDuration",
            DURATION},
        {11, [](auto& s, auto&) { return s.NotifyPowerEvent(-3); }, I32(-3), "Power -3", {{-3, "event"}}},
    };

    const sptr<FakeRemote> remote = new FakeRemote();
    const sptr<Service> proxy = iface_cast<Service>(remote);
    const sptr<FakeService> implementation = new FakeService();
    Lines texts;
    LogCapture logs;
};

TEST_F(ServiceTest, RequestsAndRepliesTravelAsTheseBytes)
{
    implementation->elements = 2;
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        const bool isQuery = !request.record.empty();
        ExpectResult(0, request.send, {}, isQuery ? Lines(2, request.sample.text) : Lines());
        EXPECT_EQ(implementation->Take(), Lines{request.call});
        EXPECT_EQ(implementation->listenerObject, request.object);
        EXPECT_EQ(remote->header, (std::vector<int64_t>{request.code, 0, 8}));
        const Bytes object = request.listener.empty() ? "" : Bytes(24, '\0');
        EXPECT_EQ(remote->request, Token(DESCRIPTOR) + request.arguments + object);
        EXPECT_EQ(remote->written, I32(0) + (isQuery ? I32(2) + Times(2, Present(request.sample)) : ""));

        implementation->result = -777;
        ExpectResult(-777, request.send, Labelled("Read Int32 failed!"));
        EXPECT_EQ(remote->written, I32(-777));
        const Failing failing(0, -777);
        ExpectResult(22, request.send, Labelled("Write Int32 failed!") + UNSENT);
        implementation->result = 0;
        implementation->Take();
    }
}

TEST_F(ServiceTest, RecordsOfAReplyAreLimited)
{
    for (const Request& query : requests) {
        if (query.record.empty()) {
            continue;
        }
        SCOPED_TRACE(query.code);
        const Bytes one = Present(query.sample);
        const Bytes fewer = I32(0) + I32(77) + one; // Than it says.
        remote->behind = implementation;
        remote->answer.clear();
        implementation->elements = LIMIT;
        ExpectResult(0, query.send, {}, Lines(LIMIT, query.sample.text));
        implementation->elements = LIMIT + 1;
        ExpectResult(5, query.send, TOO_MANY + UNSENT);
        implementation->elements = 1;
        // The count, whose failure is none, and the record's flag.
        remote->whenCalled = [] { Failing::write = 1; };
        ExpectResult(5, query.send, CannotWrite("(*it)") + UNSENT);
        remote->whenCalled = [] {};
        Failing::write.reset();

        remote->behind = nullptr;
        remote->answer = I32(0) + I32(LIMIT + 1) + one;
        ExpectResult(5, query.send, TOO_MANY);
        for (const Bytes& next : {Bytes(), one.substr(0, 8), I32(0) + query.sample.bytes}) {
            remote->answer = fewer + next;
            ExpectResult(5, query.send, CannotRead(query.record), {query.sample.text}); // What comes before it stays.
        }
        for (const Bytes& answer : {I32(0) + I32(INT_MIN) + one, Bytes()}) { // A missing result counts as success.
            remote->answer = answer;
            ExpectResult(0, query.send);
        }
    }
}

TEST_F(ServiceTest, ProxySendsNothingThatIsNullOrDoesNotFit)
{
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        PrivacyIndicatorServiceIntfProxy unconnected(nullptr);
        EXPECT_EQ(request.send(unconnected, texts), 5);
        EXPECT_EQ(logs.Take(), Labelled("Remote is nullptr!"));
        for (const auto& [number, name] : request.numbers) {
            const Failing failing(0, number);
            ExpectResult(5, request.send, CannotWrite(name));
        }
        const Failing failing(0, Failing::TOKEN);
        ExpectResult(22, request.send, Labelled("Write interface token failed!"));
    }
    for (const bool isNull : {true, false}) {
        eventListener = isNull ? nullptr : new Privacy::PrivacyEventListenerProxy(nullptr); // Its object is.
        switchListener = isNull ? nullptr : new Indicator::IndicatorSwitchListenerProxy(nullptr);
        logs.Take();
        for (const Request& request : requests) {
            if (!request.listener.empty()) {
                ExpectResult(5, request.send,
                    isNull ? Labelled(request.listener + " is nullptr!") : CannotWrite(request.listener));
            }
        }
    }
    // The first failure alone is told, and ends the call.
    const std::string tooLong(300000, 'x');
    ExpectResult(
        5, [&](auto& s, auto&) { return s.RegisterPrivacyEventListener(tooLong, nullptr); }, CannotWrite("dataType"));
    {
        const Failing failing(0, 270);
        ExpectResult(
            5, [](auto& s, auto&) { return s.TurnOffIndicator(270, 270); }, CannotWrite("privacySensorType"));
    }
    struct Unwritable : IndicatorSize {
        bool Marshalling(Parcel& /*parcel*/) const override
        {
            return false;
        }
    };
    ExpectResult(
        5, [this](auto& s, auto&) { return s.TurnOnIndicator(0, somewhere, Unwritable(), 0); },
        CannotWrite("indicatorSize"));
    EXPECT_EQ(remote->calls, 0);
    const Failing failing(1);
    EXPECT_EQ(iface_cast<Service>(remote), nullptr);
}

TEST_F(ServiceTest, StubRefusesWhatItCannotRead)
{
    // The stub has no memory for the nth object that it reads.
    const auto expectUnread = [this](int nth, const Send& send, const std::string& name, const Lines& before = {}) {
        remote->whenCalled = [nth] { Failing::nthNew = nth; };
        ExpectResult(5, send, before + CannotRead(name) + UNSENT);
    };
    eventListener = iface_cast<EventListener>(remote); // For a remote one it makes a proxy.
    switchListener = iface_cast<SwitchListener>(remote);
    logs.Take();
    for (const Request& request : requests) {
        if (!request.listener.empty()) {
            expectUnread(1, request.send, request.listener);
        }
    }
    const Send turnOn = requests[5].send;
    expectUnread(1, turnOn, "IndicatorPosition", {Line('E', "Unmarshalling: new IndicatorPosition failed.")});
    expectUnread(2, turnOn, "IndicatorSize", {Line('E', "Unmarshalling: new IndicatorSize failed.")});
    expectUnread(1, requests[9].send, "PermissionUsageDurationQuery");
    EXPECT_EQ(implementation->Take(), Lines());
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
