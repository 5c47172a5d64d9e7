// SPDX-License-Identifier: Apache-2.0
#include <fstream>
#include <map>

#include "fake_service.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_proxy.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Service = PrivacyIndicatorServiceIntf;
using UsageQuery = PermissionUsageDurationQuery;
using Send = std::function<int32_t(Service&)>;

const std::u16string DESCRIPTOR = u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf";
const std::u16string SWITCH_DESCRIPTOR = u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf";
const std::u16string EVENT_DESCRIPTOR = u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener";
const Lines TOO_MANY = Labelled("The vector/array size exceeds the security limit!");
const Lines UNSENT = Labelled("Send request failed!"); // So the proxy sees a failure of the stub.
constexpr int32_t LIMIT = 102400;

Lines Cannot(const std::string& what, const std::string& name) { return Labelled(what + " [" + name + "] failed!"); }

// How a record is read and written, whole or not, the fuzz target of the records says. Those of the stubs say what a
// request gets that has another token or code, or arguments missing. Here are the lines that are logged.
TEST(RecordTest, BeginsWithTheseValues)
{
    const Bytes zero = I32(0);
    EXPECT_EQ(Marshalled(IndicatorData()), I32(2) + I32(1) + Times(4, zero) + Str("") + zero);
    EXPECT_EQ(Marshalled(IndicatorPosition()), Times(5, zero));
    EXPECT_EQ(Marshalled(IndicatorSize()), Times(2, zero));
    EXPECT_EQ(Marshalled(PrivacyEventDetail()), Str("") + I32(-1) + Times(10, zero));
    EXPECT_EQ(Marshalled(PrivacyEventRemindInfo()), Str("") + I32(-1) + Times(3, zero));
    EXPECT_EQ(Marshalled(PermissionUsageDuration()), Str("") + I32(-1) + Str("") + Times(5, zero));
    EXPECT_EQ(UsageQuery().ToString(),
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=0, endTimestamp=0}");
    EXPECT_EQ(Read<IndicatorPosition>(POSITION.bytes)->ToString(), POSITION.text); // The others are compared elsewhere.
    EXPECT_EQ(Read<IndicatorSize>(SIZE.bytes)->ToString(), SIZE.text);
    PrivacyEventDetail detail = *Read<PrivacyEventDetail>(DETAIL.bytes);
    detail.extraInfo = "extra"; // Copied but not sent.
    EXPECT_EQ(PrivacyEventDetail(detail).extraInfo, "extra");
    EXPECT_EQ(Marshalled(detail), DETAIL.bytes);
}

TEST(RecordTest, AQueryIsReadOntoWhatIsThereAndItsListsEndAt999)
{
    RawParcel again(QUERY.bytes);
    const std::unique_ptr<UsageQuery> twice(
        UsageQuery::UnmarshallingInner(again, Read<UsageQuery>(QUERY.bytes).release()));
    EXPECT_EQ(twice->ToString(), "PermissionUsageDurationQuery{bundleNames=['x', '', 'x', ''], "
                                 "permissionGroups=['LOCATION', 'LOCATION'], beginTimestamp=100, endTimestamp=-200}");
    twice->SetBundleNames(Lines(1000, "ab"));
    RawParcel parcel;
    EXPECT_FALSE(twice->Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel), I32(1000)); // A count too many is written, and nothing after it.
}

// The page's examples, one after another: the bytes of each line, up to its remark. The other tests compare what is
// sent and read with the same items.
TEST(WireFormatPageTest, TheExamplesAreOfThisFormat)
{
    std::ifstream page(WIRE_FORMAT_PAGE);
    Bytes examples;
    bool isExample = false;
    for (std::string line; std::getline(page, line); isExample = line == "```hex" || (isExample && line != "```")) {
        std::istringstream pairs(isExample ? line.substr(0, line.find("  ")) : "");
        for (int byte = 0; pairs >> std::hex >> byte;) {
            examples += static_cast<char>(byte);
        }
    }
    EXPECT_EQ(examples, Token(DESCRIPTOR) + I32(2) + I32(1) + // TurnOffIndicator
                            I32(0) + I32(1) + I32(1) + I32(0) + I32(0) + I32(0x41480000) + I32(0xBE800000) +
                            I32(0x40400000) + I32(0x3F000000) + Str("#00ff00") + I32(4) + // GetActiveIndicators
                            Token(EVENT_DESCRIPTOR) + Str("sensorStateChange") + I32(1) + I32(1) +
                            Str("com.example.chat") + I32(20010043) + I32(1) + I32(2) + I32(0)); // An event
}

struct Request {
    uint32_t code;
    Send send;
    Bytes arguments;                                           // Without the listener.
    Bytes call;                                                // As the fake service has it.
    std::string listener = {};                                 // The listener's name, if it has one.
    std::vector<std::pair<int32_t, std::string>> numbers = {}; // A number of each argument that has one, and its name.
    std::string record = {};                                   // The name of the reply's records, if it has any.
    Sample sample = {};                                        // One of them.
    Lines noMemory = {};                                       // What is logged if there is no memory for one.
};

class ListenerTest : public testing::Test {
protected:
    const sptr<FakeRemote> remote = new FakeRemote(); // Between a proxy and a stub.
    Journal journal;
};

class ServiceTest : public ListenerTest {
protected:
    ServiceTest()
    {
        remote->target = service;
        Journal::Take();
    }

    // Has the proxy send the request, by default to the stub.
    void Expect(const Send& send, int32_t result, const Lines& lines) const
    {
        EXPECT_EQ(send(*proxy), result);
        EXPECT_EQ(Journal::Take(), lines);
    }

    // A query that is sent with a record in the vector already, which must stay in front.
    template <typename T>
    Send Query(const std::function<int32_t(Service&, std::vector<T>&)>& query)
    {
        return [query](Service& asked) {
            std::vector<T> records(1);
            const int32_t result = query(asked, records);
            EXPECT_EQ(records.at(0).ToString(), T().ToString());
            for (size_t i = 1; i < records.size(); ++i) {
                Journal::Add(records[i].ToString());
            }
            return result;
        };
    }

    sptr<EventListener> eventListener = new Privacy::PrivacyEventListenerStubImpl({});
    sptr<SwitchListener> switchListener = new Indicator::IndicatorSwitchListenerStubImpl({});
    const IndicatorPosition somewhere = *Read<IndicatorPosition>(POSITION.bytes);
    const IndicatorSize small = *Read<IndicatorSize>(SIZE.bytes);
    const Lines noDetail = Line('E', "Unmarshalling: new PrivacyEventDetail failed.", "privacyIndicator");

    const std::vector<Request> requests = {
        {1, [this](auto& s) { return s.RegisterPrivacyEventListener("a\xC3\xA9\xE2\x82\xAC", eventListener); },
            Str16(u"a\u00E9\u20AC"), "RegisterEvent a\u00E9\u20AC", "privacyEventListener"},
        {2, [this](auto& s) { return s.UnregisterPrivacyEventListener(eventListener); }, {}, "UnregisterEvent",
            "privacyEventListener"},
        {3, Query<PrivacyEventDetail>([](auto& s, auto& out) { return s.GetPrivacyEventDetails(8, out); }), I32(8),
            "Details" + I32(8), {}, {{8, "userId"}}, "PrivacyEventDetail", DETAIL, noDetail},
        {4, Query<PrivacyEventDetail>([](auto& s, auto& out) {
             return s.GetPrivacyEventDetailsByPrivacySensorType(-4, 22, out);
         }),
            I32(-4) + I32(22), "DetailsOf" + I32(-4) + I32(22), {}, {{-4, "userId"}, {22, "privacySensorType"}},
            "PrivacyEventDetail", DETAIL, noDetail},
        {5, Query<IndicatorData>([](auto& s, auto& out) { return s.GetActiveIndicators(out); }), {}, "Active", {}, {},
            "IndicatorData", DATA, Line('E', "Unmarshalling: new Indicator failed.")},
        {6, [this](auto& s) { return s.TurnOnIndicator(31, somewhere, small, 33); },
            I32(31) + Present(POSITION) + Present(SIZE) + I32(33),
            "On" + I32(31) + POSITION.bytes + SIZE.bytes + I32(33), {},
            {{31, "privacySensorType"}, {270, "indicatorPosition"}, {33, "animationType"}}},
        {7, [](auto& s) { return s.TurnOffIndicator(22, 11); }, I32(22) + I32(11), "Off" + I32(22) + I32(11), {},
            {{22, "privacySensorType"}, {11, "animationType"}}},
        {8, [this](auto& s) { return s.RegisterPrivacyIndicatorSwitchListener(switchListener); }, {}, "RegisterSwitch",
            "listener"},
        {9, [this](auto& s) { return s.UnregisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "UnregisterSwitch", "listener"},
        {10, Query<PermissionUsageDuration>([](auto& s, auto& out) {
             return s.GetPermissionUsageDurationSummary(*Read<UsageQuery>(QUERY.bytes), out);
         }),
            Present(QUERY), "Usage" + QUERY.bytes, {}, {{2, "permissionUsageDurationQuery"}}, "PermissionUsageDuration",
            DURATION},
        {11, [](auto& s) { return s.NotifyPowerEvent(-3); }, I32(-3), "Power" + I32(-3), {}, {{-3, "event"}}},
    };

    const sptr<Service> proxy = iface_cast<Service>(remote);
    const sptr<FakeService> service = new FakeService();
};

TEST_F(ServiceTest, RequestsTravelAsTheseBytesOrNotAtAll)
{
    std::map<std::string, sptr<IRemoteObject>> objects = {
        {"", nullptr}, {"privacyEventListener", eventListener->AsObject()}, {"listener", switchListener->AsObject()}};
    PrivacyIndicatorServiceIntfProxy unconnected(nullptr);
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        const Lines call = {request.call};
        Expect(request.send, 0, call);
        EXPECT_EQ(service->listenerObject, objects.at(request.listener));
        EXPECT_EQ(remote->header, (std::vector<int64_t>{request.code, 0, 8}));
        const Bytes object = request.listener.empty() ? "" : Bytes(24, '\0');
        EXPECT_EQ(remote->request, Token(DESCRIPTOR) + request.arguments + object);

        for (const int32_t failure : {-777, 777}) {
            service->result = failure;
            service->elements = 1; // Which a failure does not bring back.
            Expect(request.send, failure, call + Labelled("Read Int32 failed!"));
            EXPECT_EQ(remote->replied, I32(failure));
            const Failing failing(failure);
            Expect(request.send, 22, call + Labelled("Write Int32 failed!") + UNSENT);
            remote->error = failure;
            Expect(request.send, failure, UNSENT);
            remote->error = 0;
        }
        service->result = 0;
        service->elements = 0;

        remote->calls = 0;
        EXPECT_EQ(request.send(unconnected), 5);
        EXPECT_EQ(Journal::Take(), Labelled("Remote is nullptr!"));
        for (const auto& [number, name] : request.numbers) {
            const Failing failing(number);
            Expect(request.send, 5, Cannot("Write", name));
        }
        const Failing failing(Failing::TOKEN);
        Expect(request.send, 22, Labelled("Write interface token failed!"));
        EXPECT_EQ(remote->calls, 0);
    }
}

// What is made of any reply, the fuzz target of replies says.
TEST_F(ServiceTest, RecordsOfAReplyAreLimited)
{
    for (const Request& query : requests) {
        if (query.record.empty()) {
            continue;
        }
        SCOPED_TRACE(query.code);
        const Bytes one = Present(query.sample);
        const Lines call = {query.call};
        remote->target = service;
        remote->answer.clear();
        service->elements = LIMIT;
        Expect(query.send, 0, call + Lines(LIMIT, query.sample.text));
        service->elements = LIMIT + 1;
        Expect(query.send, 5, call + TOO_MANY + UNSENT);
        EXPECT_EQ(remote->replied, I32(0));
        service->elements = 5;
        service->whenCalled = [] { Failing::write = 1; }; // The flag of a record.
        Expect(query.send, 5, call + Cannot("Write", "(*it)") + UNSENT);
        EXPECT_EQ(remote->replied, I32(0) + I32(5));
        service->whenCalled = [] { Failing::write = 5; }; // The count, whose failure is none.
        Failing::write.reset();
        query.send(*proxy);
        EXPECT_EQ(remote->replied, I32(0) + Times(5, one));
        service->whenCalled = [] {};
        Failing::write.reset();
        Journal::Take();

        remote->target = nullptr;
        remote->answer = I32(0) + I32(LIMIT + 1) + one;
        Expect(query.send, 5, TOO_MANY);
        remote->answer = I32(0) + I32(77) + one; // What comes before the end stays.
        Expect(query.send, 5, Cannot("Read", query.record) + Lines{query.sample.text});
        remote->whenCalled = [] { Failing::nthNew = 1; };
        Expect(query.send, 5, query.noMemory + Cannot("Read", query.record));
        remote->answer = I32(0) + I32(INT32_MIN) + one;
        Expect(query.send, 0, {});
    }
}

TEST_F(ServiceTest, ProxySendsNothingThatIsNullOrDoesNotFit)
{
    for (const bool isNull : {true, false}) {
        eventListener = isNull ? nullptr : new Privacy::PrivacyEventListenerProxy(nullptr); // Its object is.
        switchListener = isNull ? nullptr : new Indicator::IndicatorSwitchListenerProxy(nullptr);
        Journal::Take();
        for (const size_t code : {1U, 2U, 8U, 9U}) {
            const auto& [name, send] = std::tie(requests[code - 1].listener, requests[code - 1].send);
            Expect(send, 5, isNull ? Labelled(name + " is nullptr!") : Cannot("Write", name));
        }
    }
    EXPECT_EQ(PrivacyIndicatorServiceIntfProxy(nullptr).RegisterPrivacyEventListener("", nullptr), 5);
    EXPECT_EQ(Journal::Take(), Labelled("privacyEventListener is nullptr!"));
    Failing::nthNew = 1;
    EXPECT_EQ(iface_cast<Service>(remote), nullptr);
    struct UnwritableSize : IndicatorSize {
        bool Marshalling(Parcel& /*parcel*/) const override { return false; }
    };
    const Failing failing(9); // The first failure alone is logged, and ends the call.
    const std::pair<Send, std::string> failures[] = {
        {[](auto& s) { return s.RegisterPrivacyEventListener(std::string(300000, 'x'), nullptr); }, "dataType"},
        {[](auto& s) { return s.TurnOffIndicator(9, 9); }, "privacySensorType"},
        {[this](auto& s) { return s.TurnOnIndicator(9, somewhere, UnwritableSize(), 9); }, "privacySensorType"},
        {[this](auto& s) { return s.TurnOnIndicator(0, somewhere, UnwritableSize(), 9); }, "indicatorSize"}};
    for (const auto& [send, name] : failures) {
        Expect(send, 5, Cannot("Write", name));
    }
    EXPECT_EQ(remote->calls, 0);
}

TEST_F(ServiceTest, StubRefusesWhatItCannotRead)
{
    eventListener = iface_cast<EventListener>(remote); // For a remote one it makes a proxy.
    switchListener = iface_cast<SwitchListener>(remote);
    Journal::Take();
    const auto unread = [](const std::string& name) { return Cannot("Read", name); };
    // The request, which object the stub has no memory for, and what it logs.
    const std::tuple<size_t, int, Lines> cases[] = {{1, 1, unread("privacyEventListener")},
        {2, 1, unread("privacyEventListener")}, {8, 1, unread("listener")}, {9, 1, unread("listener")},
        {6, 1, Line('E', "Unmarshalling: new IndicatorPosition failed.") + unread("IndicatorPosition")},
        {6, 2, Line('E', "Unmarshalling: new IndicatorSize failed.") + unread("IndicatorSize")},
        {10, 1, unread("PermissionUsageDurationQuery")}};
    for (const auto& [code, nth, lines] : cases) {
        remote->whenCalled = [nth = nth] { Failing::nthNew = nth; };
        Expect(requests[code - 1].send, 5, lines + UNSENT);
    }
}

TEST_F(ListenerTest, SwitchChangesAreSentOneWay)
{
    const auto proxyLine = [](const std::string& message, char level = 'I') {
        return Line(level, "OnSwitchChanged: " + message, "service");
    };
    const Lines begin = proxyLine("OnSwitchChanged begin in proxy");
    const Lines written = begin + proxyLine("Write parcelable success  in proxy:'" + DATA.text + "'");
    const Lines received = Line('I', "OnRemoteRequest: OnRemoteRequest called in stub.");
    const Lines heard =
        Line('I', "OnSwitchChanged: OnRemoteRequest called in stub impl. 305419896") + Lines{"heard " + DATA.text};
    const Lines end = proxyLine("OnSwitchChanged end in proxy");
    const std::string proxyName = "IndicatorSwitchListenerProxy";
    const std::string stubName = "IndicatorSwitchListenerStub";
    const auto data = Read<IndicatorData>(DATA.bytes);
    sptr<SwitchListener> proxy = iface_cast<SwitchListener>(remote);
    const auto expect = [&proxy, &data](const Lines& lines) {
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(Journal::Take(), lines);
    };

    remote->target = new Indicator::IndicatorSwitchListenerStubImpl(
        [](const auto& got) { Journal::Add("heard " + got.ToString()); });
    EXPECT_EQ(Journal::Take(),
        Line('I', proxyName + ": create " + proxyName, "service") + Line('I', stubName + ": create " + stubName));
    expect(written + received + heard + end);
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 1, 8}));
    EXPECT_EQ(remote->request, Token(SWITCH_DESCRIPTOR) + Present(DATA));

    remote->whenCalled = [] { Failing::nthNew = 1; };
    expect(written + received + Line('E', "Unmarshalling: new Indicator failed.") +
           Line('E', "OnRemoteRequest: read privacy indicator from parcel failed.") +
           proxyLine("SendRequest is failed, error code: -1.", 'E') + end);
    for (const auto& [value, message] : {std::make_pair(0x12345678, "Write parcelable failed  in proxy."),
             std::make_pair(Failing::TOKEN, "WriteInterfaceToken failed")}) {
        const Failing failing(value); // The record's first int32, or the token's.
        expect(begin + proxyLine(message, 'E'));
    }
    EXPECT_EQ(remote->calls, 2);

    RawParcel other(Token(DESCRIPTOR));
    MessageParcel reply;
    MessageOption option;
    EXPECT_EQ(remote->target->SendRequest(0, other, reply, option), 10);
    EXPECT_EQ(Journal::Take(), received + Line('E', "OnRemoteRequest: verify descriptor failed"));
    remote->target = nullptr;
    EXPECT_EQ(Journal::Take(), Line('I', "~" + stubName + ": destroy " + stubName));
    proxy = new Indicator::IndicatorSwitchListenerProxy(nullptr);
    EXPECT_EQ(Lines{Journal::Take().back()}, Line('I', "~" + proxyName + ": destroy " + proxyName, "service"));
    expect(written + proxyLine("remote is null!", 'E'));
}

TEST_F(ListenerTest, EventsAreSentAndWaitedFor)
{
    remote->target = new Privacy::PrivacyEventListenerStubImpl([](const std::string& dataType, const auto& infos) {
        const std::string first = infos.empty() ? "none" : infos[0].ToString();
        Journal::Add(dataType + " " + std::to_string(infos.size()) + " " + first);
    });
    sptr<EventListener> proxy = iface_cast<EventListener>(remote);
    const auto info = *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes);
    std::string dataType = "audio";
    const auto send = [&](size_t count) {
        proxy->OnPrivacyEventChanged(dataType, {count, info});
        return Journal::Take();
    };
    const auto failed = [](const std::string& message) {
        return Line('E', "OnPrivacyEventChanged: " + message + " failed!");
    };
    const Bytes head = Token(EVENT_DESCRIPTOR) + Str("audio");
    EXPECT_EQ(send(2), Lines{"audio 2 " + REMIND_INFO.text});
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 0, 8}));
    EXPECT_EQ(remote->request, head + I32(2) + Times(2, Present(REMIND_INFO)));
    const Lines skipped = Line('D', "OnRemoteRequest: privacyEventRemindInfo is null");
    const Lines noMemory = Line('E', "Unmarshalling: new PrivacyEventRemindInfo failed.", "privacyIndicator") + skipped;
    Failing::nthNew = 2;
    EXPECT_EQ(send(2), noMemory + Lines{"audio 1 " + REMIND_INFO.text});
    Failing::nthNew = 1; // An event whose only record cannot be read is one all the same.
    EXPECT_EQ(send(1), noMemory + Lines{"audio 0 none"});
    // As many as fit are sent, and received.
    const Lines most = send(LIMIT);
    const size_t sent = LIMIT + 1 - most.size();
    EXPECT_EQ(most, Lines(LIMIT - sent, skipped[0]) + Lines{"audio " + std::to_string(sent) + " " + REMIND_INFO.text});
    for (const size_t count : {0U, LIMIT + 1U}) {
        EXPECT_EQ(
            send(count), Line('E', "OnRemoteRequest: error privacyEventRemindInfo size!") + failed("Send request"));
    }
    {
        const Failing failing(2); // The count: what can be written is sent all the same.
        send(2);
        EXPECT_EQ(remote->request, head + Times(2, Present(REMIND_INFO)));
    }
    for (const int error : {-1, 1}) {
        remote->error = error;
        EXPECT_EQ(send(2), failed("Send request"));
    }
    {
        const Failing failing(Failing::TOKEN);
        EXPECT_EQ(send(2), failed("Write interface token"));
    }
    dataType = std::string(300000, 'x');
    EXPECT_EQ(send(2), failed("Write data type"));
    dataType = "audio";
    EXPECT_EQ(remote->calls, 9);
    proxy = new Privacy::PrivacyEventListenerProxy(nullptr);
    EXPECT_EQ(send(2), Line('E', "OnPrivacyEventChanged: Remote is nullptr!"));
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
