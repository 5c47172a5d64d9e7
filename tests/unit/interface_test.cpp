// SPDX-License-Identifier: Apache-2.0
#include <climits>
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

Lines Cannot(const std::string& what, const std::string& name)
{
    return Labelled(what + " [" + name + "] failed!");
}

TEST(RecordTest, BeginsWithTheseValues)
{
    EXPECT_EQ(IndicatorData().ToString(),
        "Indicator{privacySensorType=2, state=1, positionX=0.000000, positionY=0.000000, width=0.000000, "
        "height=0.000000, color='', animationType=0}");
    EXPECT_EQ(IndicatorPosition().ToString(),
        "IndicatorPosition{positionX=0.000000, positionY=0.000000, screenWidth=0, screenHeight=0, screenRotation=0}");
    EXPECT_EQ(IndicatorSize().ToString(), "IndicatorSize{width=0.000000, height=0.000000}");
    EXPECT_EQ(PrivacyEventDetail().ToString(),
        "PrivacyEventDetail='', uid=-1, privacySensorType=0, startTimestamp=0, realEndTimestamp=0, showEndTimestamp=0, "
        "realAccessState=0, showAccessState=00}");
    EXPECT_EQ(PrivacyEventRemindInfo().ToString(),
        "PrivacyEventRemindInfo='', uid=-1, privacySensorType=0, privacyAccessState=0, remindFlag=0}");
    EXPECT_EQ(PermissionUsageDuration().ToString(),
        "PermissionUsageDuration{bundleName_='', uid=-1, usageDuration_=0, permissionGroup_='', lastBeginTimestamp_=0, "
        "lastEndTimestamp_=0}");
    EXPECT_EQ(UsageQuery().ToString(),
        "PermissionUsageDurationQuery{bundleNames=[], permissionGroups=[], beginTimestamp=0, endTimestamp=0}");
    EXPECT_EQ(
        Read<IndicatorSize>(I32(0x7F800000) + I32(0xFFC00000))->ToString(), "IndicatorSize{width=inf, height=-nan}");
}

TEST(RecordTest, ExtraInfoIsCopiedButNotSent)
{
    PrivacyEventDetail detail = *Read<PrivacyEventDetail>(DETAIL.bytes);
    detail.extraInfo = "extra";
    const PrivacyEventDetail copy = detail;
    PrivacyEventDetail assigned;
    assigned = copy;
    EXPECT_EQ(assigned.extraInfo, "extra");
    RawParcel parcel;
    EXPECT_TRUE(copy.Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel), DETAIL.bytes);
}

// Whatever a record lacks, it is refused; whatever does not fit, is reported.
template <typename T>
void ExpectWhole(const Sample& sample)
{
    const auto record = Read<T>(sample.bytes);
    ASSERT_NE(record, nullptr);
    for (size_t size = 0; size <= sample.bytes.size(); size += 4) {
        const bool isWhole = size == sample.bytes.size();
        EXPECT_EQ(Read<T>(sample.bytes.substr(0, size)) != nullptr, isWhole) << size;
        RawParcel parcel;
        parcel.FillUp(size);
        EXPECT_EQ(record->Marshalling(parcel), isWhole) << size;
    }
}

TEST(RecordTest, EveryRecordIsReadAndWrittenWhole)
{
    ExpectWhole<IndicatorData>(DATA);
    ExpectWhole<IndicatorPosition>(POSITION);
    ExpectWhole<IndicatorSize>(SIZE);
    ExpectWhole<PrivacyEventDetail>(DETAIL);
    ExpectWhole<PrivacyEventRemindInfo>(REMIND_INFO);
    ExpectWhole<PermissionUsageDuration>(DURATION);
    ExpectWhole<UsageQuery>(QUERY);
}

TEST(RecordTest, QueryListsAppendAndEndAt999)
{
    const Bytes rest = I64(0) + I64(0);
    EXPECT_EQ(Read<UsageQuery>(I32(-5) + I32(999) + Times(999, Str("ab")) + rest)->GetPermissionGroups().size(), 999U);
    EXPECT_EQ(Read<UsageQuery>(I32(0) + I32(1000) + Times(1000, Str("ab")) + rest), nullptr);
    RawParcel again(QUERY.bytes);
    const std::unique_ptr<UsageQuery> twice(
        UsageQuery::UnmarshallingInner(again, Read<UsageQuery>(QUERY.bytes).release()));
    EXPECT_EQ(twice->ToString(), "PermissionUsageDurationQuery{bundleNames=['x', '', 'x', ''], "
                                 "permissionGroups=['LOCATION', 'LOCATION'], beginTimestamp=100, endTimestamp=-200}");
    RawParcel parcel;
    twice->SetPermissionGroups(Lines(999, "ab"));
    EXPECT_TRUE(twice->Marshalling(parcel));
    twice->SetBundleNames(Lines(1000, "ab"));
    const size_t before = parcel.GetDataSize();
    EXPECT_FALSE(twice->Marshalling(parcel));
    EXPECT_EQ(BytesOf(parcel).substr(before), I32(1000)); // A count too many is written, and nothing after it.
}

struct Request {
    uint32_t code;
    Send send;
    Bytes arguments;                                           // Without the listener.
    std::string call;                                          // As the implementation sees it.
    std::string listener = {};                                 // The listener's name, if it has one.
    std::vector<std::pair<int32_t, std::string>> numbers = {}; // A number of each argument that has one, and its name.
    std::string record = {};                                   // The name of the reply's records, if it has any.
    Sample sample = {};                                        // One of them.
    Lines noMemory = {};                                       // What is logged if there is no memory for one.
};

class ListenerTest : public testing::Test {
protected:
    // What `stub` returns for a request of these bytes, and how many of them it leaves unread; `reply` is what it
    // wrote.
    std::pair<int, size_t> Serve(const sptr<IRemoteObject>& stub, uint32_t code, const Bytes& bytes)
    {
        RawParcel data(bytes);
        MessageParcel replied;
        replied.SetMaxCapacity(size_t{1} << 20);
        MessageOption option;
        const int result = stub->SendRequest(code, data, replied, option);
        reply = BytesOf(replied);
        return {result, data.GetReadableBytes()};
    }

    Bytes reply;
    const sptr<FakeRemote> remote = new FakeRemote(); // Between a proxy and a stub.
    Lines heard;                                      // By a stub's function, or of the records of a reply.
    LogCapture logs;
};

class ServiceTest : public ListenerTest {
protected:
    ServiceTest()
    {
        remote->target = implementation;
        logs.Take();
    }

    // Has the proxy send the request, by default to the stub.
    void ExpectResult(int32_t result, const Send& send, const Lines& lines = {}, const Lines& records = {})
    {
        heard.clear();
        EXPECT_EQ(send(*proxy), result);
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(heard, records);
    }

    // A query that is sent with a record in the vector already, which must stay in front.
    template <typename T>
    Send Query(const std::function<int32_t(Service&, std::vector<T>&)>& query)
    {
        return [this, query](Service& service) {
            std::vector<T> records(1);
            const int32_t result = query(service, records);
            EXPECT_EQ(records.at(0).ToString(), T().ToString());
            for (size_t i = 1; i < records.size(); ++i) {
                heard.push_back(records[i].ToString());
            }
            return result;
        };
    }

    sptr<EventListener> eventListener = new Privacy::PrivacyEventListenerStubImpl({});
    sptr<SwitchListener> switchListener = new Indicator::IndicatorSwitchListenerStubImpl({});
    const IndicatorPosition somewhere = *Read<IndicatorPosition>(POSITION.bytes);
    const IndicatorSize small = *Read<IndicatorSize>(SIZE.bytes);
    const UsageQuery usage = *Read<UsageQuery>(QUERY.bytes);
    const Lines noDetail = {Line('E', "Unmarshalling: new PrivacyEventDetail failed.", "privacyIndicator")};

    const std::vector<Request> requests = {
        {1, [this](auto& s) { return s.RegisterPrivacyEventListener("a\xC3\xA9\xE2\x82\xAC", eventListener); },
            Str16(u"a\u00E9\u20AC"), "RegisterEvent a\u00E9\u20AC", "privacyEventListener"},
        {2, [this](auto& s) { return s.UnregisterPrivacyEventListener(eventListener); }, {}, "UnregisterEvent",
            "privacyEventListener"},
        {3, Query<PrivacyEventDetail>([](auto& s, auto& out) { return s.GetPrivacyEventDetails(8, out); }), I32(8),
            "Details 8", {}, {{8, "userId"}}, "PrivacyEventDetail", DETAIL, noDetail},
        {4, Query<PrivacyEventDetail>([](auto& s, auto& out) {
             return s.GetPrivacyEventDetailsByPrivacySensorType(-4, 22, out);
         }),
            I32(-4) + I32(22), "Details -4 22", {}, {{-4, "userId"}, {22, "privacySensorType"}}, "PrivacyEventDetail",
            DETAIL, noDetail},
        {5, Query<IndicatorData>([](auto& s, auto& out) { return s.GetActiveIndicators(out); }), {}, "Active", {}, {},
            "IndicatorData", DATA, {Line('E', "Unmarshalling: new Indicator failed.")}},
        {6, [this](auto& s) { return s.TurnOnIndicator(31, somewhere, small, 33); },
            I32(31) + Present(POSITION) + Present(SIZE) + I32(33), "On 31" + POSITION.text + SIZE.text + "33", {},
            {{31, "privacySensorType"}, {270, "indicatorPosition"}, {33, "animationType"}}},
        {7, [](auto& s) { return s.TurnOffIndicator(22, 11); }, I32(22) + I32(11), "Off 22 11", {},
            {{22, "privacySensorType"}, {11, "animationType"}}},
        {8, [this](auto& s) { return s.RegisterPrivacyIndicatorSwitchListener(switchListener); }, {}, "RegisterSwitch",
            "listener"},
        {9, [this](auto& s) { return s.UnregisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "UnregisterSwitch", "listener"},
        {10, Query<PermissionUsageDuration>([this](auto& s, auto& out) {
             return s.GetPermissionUsageDurationSummary(usage, out);
         }),
            Present(QUERY), "Usage " + QUERY.text, {}, {{2, "permissionUsageDurationQuery"}}, "PermissionUsageDuration",
            DURATION},
        {11, [](auto& s) { return s.NotifyPowerEvent(-3); }, I32(-3), "Power -3", {}, {{-3, "event"}}},
    };

    const sptr<Service> proxy = iface_cast<Service>(remote);
    const sptr<FakeService> implementation = new FakeService();
};

TEST_F(ServiceTest, RequestsTravelAsTheseBytes)
{
    std::map<std::string, sptr<IRemoteObject>> objects = {
        {"", nullptr}, {"privacyEventListener", eventListener->AsObject()}, {"listener", switchListener->AsObject()}};
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        ExpectResult(0, request.send);
        EXPECT_EQ(implementation->Take(), Lines{request.call});
        EXPECT_EQ(implementation->listenerObject, objects.at(request.listener));
        EXPECT_EQ(remote->header, (std::vector<int64_t>{request.code, 0, 8}));
        const Bytes object = request.listener.empty() ? "" : Bytes(24, '\0');
        EXPECT_EQ(remote->request, Token(DESCRIPTOR) + request.arguments + object);

        for (const int32_t failure : {-777, 777}) {
            implementation->result = failure;
            ExpectResult(failure, request.send, Labelled("Read Int32 failed!"));
            const Failing failing(failure);
            ExpectResult(22, request.send, Labelled("Write Int32 failed!") + UNSENT);
            remote->error = failure;
            ExpectResult(failure, request.send, UNSENT);
            remote->error = 0;
        }
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
        remote->target = implementation;
        remote->answer.clear();
        implementation->elements = LIMIT;
        ExpectResult(0, query.send, {}, Lines(LIMIT, query.sample.text));
        implementation->elements = LIMIT + 1;
        const Bytes request = remote->request;
        EXPECT_EQ(Serve(implementation, query.code, request).first, 5);
        EXPECT_EQ(std::make_pair(reply, logs.Take()), std::make_pair(I32(0), TOO_MANY));
        for (const int32_t failure : {-7, 7}) { // It has no records that could be too many.
            implementation->result = failure;
            EXPECT_EQ(Serve(implementation, query.code, request).first, 0);
            EXPECT_EQ(std::make_pair(reply, logs.Take()), std::make_pair(I32(failure), Lines()));
        }
        implementation->result = 0;
        implementation->elements = 5;
        Failing::write = 5; // The count, whose failure is none.
        EXPECT_EQ(Serve(implementation, query.code, request).first, 0);
        EXPECT_EQ(reply, I32(0) + Times(5, one));
        Failing::write = 1; // The flag of a record.
        EXPECT_EQ(Serve(implementation, query.code, request).first, 5);
        EXPECT_EQ(std::make_pair(reply, logs.Take()), std::make_pair(I32(0) + I32(5), Cannot("Write", "(*it)")));
        Failing::write.reset();

        remote->target = nullptr;
        remote->answer = I32(0) + I32(LIMIT + 1) + one;
        ExpectResult(5, query.send, TOO_MANY);
        for (const Bytes& next : {Bytes(), one.substr(0, 8), I32(0) + query.sample.bytes}) {
            remote->answer = fewer + next; // What comes before the end stays.
            ExpectResult(5, query.send, Cannot("Read", query.record), {query.sample.text});
        }
        remote->whenCalled = [] { Failing::nthNew = 1; };
        ExpectResult(5, query.send, query.noMemory + Cannot("Read", query.record));
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
        EXPECT_EQ(request.send(unconnected), 5);
        EXPECT_EQ(logs.Take(), Labelled("Remote is nullptr!"));
        for (const auto& [number, name] : request.numbers) {
            const Failing failing(number);
            ExpectResult(5, request.send, Cannot("Write", name));
        }
        const Failing failing(Failing::TOKEN);
        ExpectResult(22, request.send, Labelled("Write interface token failed!"));
    }
    for (const bool isNull : {true, false}) {
        eventListener = isNull ? nullptr : new Privacy::PrivacyEventListenerProxy(nullptr); // Its object is.
        switchListener = isNull ? nullptr : new Indicator::IndicatorSwitchListenerProxy(nullptr);
        logs.Take();
        for (const size_t code : {1U, 2U, 8U, 9U}) {
            const auto& [name, send] = std::tie(requests[code - 1].listener, requests[code - 1].send);
            ExpectResult(5, send, isNull ? Labelled(name + " is nullptr!") : Cannot("Write", name));
        }
    }
    struct UnwritableSize : IndicatorSize {
        bool Marshalling(Parcel& /*parcel*/) const override
        {
            return false;
        }
    };
    PrivacyIndicatorServiceIntfProxy unconnected(nullptr);
    EXPECT_EQ(unconnected.RegisterPrivacyEventListener("", nullptr), 5);
    EXPECT_EQ(logs.Take(), Labelled("privacyEventListener is nullptr!"));
    Failing::nthNew = 1;
    EXPECT_EQ(iface_cast<Service>(remote), nullptr);
    const Failing failing(9); // The first failure alone is logged, and ends the call.
    const std::pair<Send, std::string> failures[] = {
        {[](auto& s) { return s.RegisterPrivacyEventListener(std::string(300000, 'x'), nullptr); }, "dataType"},
        {[](auto& s) { return s.TurnOffIndicator(9, 9); }, "privacySensorType"},
        {[this](auto& s) { return s.TurnOnIndicator(9, somewhere, UnwritableSize(), 9); }, "privacySensorType"},
        {[this](auto& s) { return s.TurnOnIndicator(0, somewhere, UnwritableSize(), 9); }, "indicatorSize"}};
    for (const auto& [send, name] : failures) {
        ExpectResult(5, send, Cannot("Write", name));
    }
    EXPECT_EQ(remote->calls, 0);
}

TEST_F(ServiceTest, StubRefusesWhatItCannotRead)
{
    eventListener = iface_cast<EventListener>(remote); // For a remote one it makes a proxy.
    switchListener = iface_cast<SwitchListener>(remote);
    logs.Take();
    const auto unread = [](const std::string& name) { return Cannot("Read", name); };
    // The request, which object the stub has no memory for, and what it logs.
    const std::tuple<size_t, int, Lines> cases[] = {{1, 1, unread("privacyEventListener")},
        {2, 1, unread("privacyEventListener")}, {8, 1, unread("listener")}, {9, 1, unread("listener")},
        {6, 1, Lines{Line('E', "Unmarshalling: new IndicatorPosition failed.")} + unread("IndicatorPosition")},
        {6, 2, Lines{Line('E', "Unmarshalling: new IndicatorSize failed.")} + unread("IndicatorSize")},
        {10, 1, unread("PermissionUsageDurationQuery")}};
    for (const auto& [code, nth, lines] : cases) {
        remote->whenCalled = [nth = nth] { Failing::nthNew = nth; };
        ExpectResult(5, requests[code - 1].send, lines + UNSENT);
    }
    const Bytes token = Token(DESCRIPTOR);
    const Bytes size = Present(SIZE) + I32(33);
    EXPECT_EQ(Serve(implementation, 6, token + I32(31) + I32(0) + size), std::make_pair(5, size.size()));
    EXPECT_EQ(std::make_pair(reply, logs.Take()), std::make_pair(Bytes(), unread("IndicatorPosition")));
    for (const uint32_t code : {0U, 12U}) {
        EXPECT_EQ(Serve(implementation, code, token).first, 305);
    }
    EXPECT_EQ(implementation->Take(), Lines());
}

TEST_F(ListenerTest, TheTokenIsCheckedFirstThenTheCode)
{
    const std::tuple<sptr<IRemoteObject>, std::u16string, int> stubs[] = {{new FakeService(), DESCRIPTOR, 1},
        {new Privacy::PrivacyEventListenerStubImpl({}), EVENT_DESCRIPTOR, 1},
        {new Indicator::IndicatorSwitchListenerStubImpl({}), SWITCH_DESCRIPTOR, 10}};
    logs.Take();
    for (const auto& [stub, descriptor, mismatch] : stubs) {
        const Lines begin = {Line('I', "OnRemoteRequest: OnRemoteRequest called in stub.")};
        const Lines refused = begin + Lines{Line('E', "OnRemoteRequest: verify descriptor failed")};
        std::u16string changed = descriptor;
        ++changed.back();
        for (const uint32_t code : {0U, 1U, 77U}) {
            for (const Bytes& token : {Token(changed), Token(descriptor + u"."), Token(u""), Bytes()}) {
                EXPECT_EQ(Serve(stub, code, token).first, mismatch);
                EXPECT_EQ(logs.Take(), mismatch == 10 ? refused : Lines());
            }
        }
        EXPECT_EQ(Serve(stub, 77, Token(descriptor)).first, 305);
        EXPECT_EQ(logs.Take(), mismatch == 10 ? begin : Lines());
    }
    // Without a function, an event is dropped.
    EXPECT_EQ(
        Serve(std::get<0>(stubs[1]), 0, Token(EVENT_DESCRIPTOR) + Str("") + I32(1) + Present(REMIND_INFO)).first, 0);
    EXPECT_EQ(Serve(std::get<0>(stubs[2]), 0, Token(SWITCH_DESCRIPTOR) + Present(DATA)).first, 0);
}

TEST_F(ListenerTest, SwitchChangesAreSentOneWay)
{
    const auto proxyLine = [](const std::string& message, char level = 'I') {
        return Lines{Line(level, "OnSwitchChanged: " + message, "service")};
    };
    const Lines begin = proxyLine("OnSwitchChanged begin in proxy");
    const Lines written = begin + proxyLine("Write parcelable success  in proxy:'" + DATA.text + "'");
    const Lines called = written + Lines{Line('I', "OnRemoteRequest: OnRemoteRequest called in stub.")};
    const Lines impl = {Line('I', "OnSwitchChanged: OnRemoteRequest called in stub impl. 305419896")};
    const Lines end = proxyLine("OnSwitchChanged end in proxy");
    const std::string proxyName = "IndicatorSwitchListenerProxy";
    const std::string stubName = "IndicatorSwitchListenerStub";
    const auto data = Read<IndicatorData>(DATA.bytes);

    auto proxy = iface_cast<SwitchListener>(remote);
    remote->target =
        new Indicator::IndicatorSwitchListenerStubImpl([this](const auto& got) { heard.push_back(got.ToString()); });
    EXPECT_EQ(logs.Take(), (Lines{Line('I', proxyName + ": create " + proxyName, "service"),
                               Line('I', stubName + ": create " + stubName)}));
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 1, 8}));
    EXPECT_EQ(remote->request, Token(SWITCH_DESCRIPTOR) + Present(DATA));
    EXPECT_EQ(logs.Take(), called + impl + end);

    remote->whenCalled = [] { Failing::nthNew = 1; };
    proxy->OnSwitchChanged(*data);
    const Lines unreadable = {Line('E', "Unmarshalling: new Indicator failed."),
        Line('E', "OnRemoteRequest: read privacy indicator from parcel failed.")};
    EXPECT_EQ(logs.Take(), called + unreadable + proxyLine("SendRequest is failed, error code: -1.", 'E') + end);
    for (const auto& [value, message] : {std::make_pair(0x12345678, "Write parcelable failed  in proxy."),
             std::make_pair(Failing::TOKEN, "WriteInterfaceToken failed")}) {
        const Failing failing(value); // The record's first int32, or the token's.
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(logs.Take(), begin + proxyLine(message, 'E'));
    }
    EXPECT_EQ(remote->calls, 2);
    EXPECT_EQ(heard, Lines{DATA.text});

    remote->target = nullptr;
    proxy = nullptr;
    EXPECT_EQ(logs.Take(), (Lines{Line('I', "~" + stubName + ": destroy " + stubName),
                               Line('I', "~" + proxyName + ": destroy " + proxyName, "service")}));
    Indicator::IndicatorSwitchListenerProxy unconnected(nullptr);
    logs.Take();
    unconnected.OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), written + proxyLine("remote is null!", 'E'));
}

TEST_F(ListenerTest, EventsAreSentAndWaitedFor)
{
    remote->target = new Privacy::PrivacyEventListenerStubImpl([this](const std::string& dataType, const auto& infos) {
        heard = {dataType, infos.empty() ? "" : infos.front().ToString(), std::to_string(infos.size())};
    });
    const auto proxy = iface_cast<EventListener>(remote);
    Privacy::PrivacyEventListenerProxy unconnected(nullptr);
    const std::vector<PrivacyEventRemindInfo> infos(2, *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes));
    const std::string skipped = Line('D', "OnRemoteRequest: privacyEventRemindInfo is null");
    const Bytes head = Token(EVENT_DESCRIPTOR) + Str("audio");
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 0, 8}));
    EXPECT_EQ(remote->request, head + I32(2) + Times(2, Present(REMIND_INFO)));
    EXPECT_EQ(heard, (Lines{"audio", REMIND_INFO.text, "2"}));
    const Lines noMemory = {
        Line('E', "Unmarshalling: new PrivacyEventRemindInfo failed.", "privacyIndicator"), skipped};
    Failing::nthNew = 2;
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(std::make_pair(heard, logs.Take()), std::make_pair(Lines{"audio", REMIND_INFO.text, "1"}, noMemory));
    Failing::nthNew = 1; // An event whose only record cannot be read is one all the same.
    proxy->OnPrivacyEventChanged("audio", {infos[0]});
    EXPECT_EQ(std::make_pair(heard, logs.Take()), std::make_pair(Lines{"audio", "", "0"}, noMemory));
    // As many as fit are sent, and received.
    proxy->OnPrivacyEventChanged("audio", {102400, infos[0]});
    const auto sent = static_cast<size_t>(std::stoi(heard.at(2)));
    EXPECT_EQ(remote->request.find(head + I32(102400) + Times(static_cast<int>(sent), Present(REMIND_INFO))), 0U);
    EXPECT_EQ(logs.Take(), Lines(102400 - sent, skipped));
    for (const size_t count : {0U, 102401U}) {
        proxy->OnPrivacyEventChanged("audio", {count, infos[0]});
        EXPECT_EQ(logs.Take(), (Lines{Line('E', "OnRemoteRequest: error privacyEventRemindInfo size!"),
                                   Line('E', "OnPrivacyEventChanged: Send request failed!")}));
    }
    Failing::write = 2; // The count: what can be written is sent all the same.
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(remote->request, head + Times(2, Present(REMIND_INFO)));
    EXPECT_EQ(remote->calls, 7);
    logs.Take();
    for (const int error : {-1, 1}) {
        remote->error = error;
        proxy->OnPrivacyEventChanged("audio", infos);
        EXPECT_EQ(logs.Take(), Lines{Line('E', "OnPrivacyEventChanged: Send request failed!")});
    }
    remote->calls = 0;
    proxy->OnPrivacyEventChanged(std::string(300000, 'x'), infos);
    unconnected.OnPrivacyEventChanged("audio", infos);
    const Failing failing(Failing::TOKEN);
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), (Lines{Line('E', "OnPrivacyEventChanged: Write data type failed!"),
                               Line('E', "OnPrivacyEventChanged: Remote is nullptr!"),
                               Line('E', "OnPrivacyEventChanged: Write interface token failed!")}));
    EXPECT_EQ(remote->calls, 0);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
