// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <functional>

#include <gtest/gtest.h>

#include "fakes.h"
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
constexpr size_t WIDE = size_t{8} << 20;

struct Request {
    uint32_t code;
    Send send;
    Bytes arguments;                                                 // Without the listener.
    std::string call;                                                // As the implementation sees it.
    std::vector<std::pair<int32_t, std::string>> writeFailures = {}; // By the int32 that cannot be written.
    Sample element = {};                                             // Of the reply, if it has any.
    std::string elementFailure = {};
    std::string listenerName = {};
    sptr<IRemoteObject> listener = {};
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
    // Has the proxy send the request and take `answer` for its reply.
    int32_t Answer(const Request& request, const Bytes& answer)
    {
        remote->answer = answer;
        return request.send(*proxy, texts);
    }

    // A failure before anything is sent.
    void ExpectUnsent(int32_t error, const std::string& message, const std::function<int32_t(Service&)>& send)
    {
        const int calls = remote->calls;
        EXPECT_EQ(send(*proxy), error);
        EXPECT_EQ(logs.Take(), Labelled(message));
        EXPECT_EQ(remote->calls, calls);
    }

    // Has the stub serve a request; `object` is behind its arguments.
    void ExpectServed(int32_t error, uint32_t code, const Bytes& arguments, const sptr<IRemoteObject>& object,
        const Lines& calls, const Bytes& reply, const std::u16string& token = DESCRIPTOR)
    {
        RawParcel data(Token(token) + arguments);
        data.WriteRemoteObject(object);
        RawParcel written;
        written.SetMaxCapacity(replyRoom);
        written.FillUp(replyRoom);
        const size_t filled = written.GetDataSize();
        MessageOption option;
        EXPECT_EQ(implementation->SendRequest(code, data, written, option), error);
        EXPECT_EQ(implementation->Take(), calls);
        EXPECT_EQ(BytesOf(written).substr(filled), reply);
        unread = data.GetReadableBytes();
    }

    // A failure before the implementation is called.
    void ExpectUncalled(const Lines& lines, uint32_t code, const Bytes& arguments, const sptr<IRemoteObject>& object)
    {
        ExpectServed(5, code, arguments, object, {}, "");
        EXPECT_EQ(logs.Take(), lines);
    }

    sptr<EventListener> eventListener = new Privacy::PrivacyEventListenerStubImpl({});
    sptr<SwitchListener> switchListener = new Indicator::IndicatorSwitchListenerStubImpl({});
    const sptr<IRemoteObject> eventObject = eventListener->AsObject();
    const sptr<IRemoteObject> switchObject = switchListener->AsObject();
    const IndicatorPosition somewhere = *Read<IndicatorPosition>(POSITION.bytes);
    const IndicatorSize small = *Read<IndicatorSize>(SIZE.bytes);
    const PermissionUsageDurationQuery usage = *Read<PermissionUsageDurationQuery>(QUERY.bytes);
    const std::string badUser = "Write [userId] failed!";
    const std::string badType = "Write [privacySensorType] failed!";
    const std::string badAnimation = "Write [animationType] failed!";

    const std::vector<Request> requests = {
        {1, [this](auto& s, auto&) { return s.RegisterPrivacyEventListener("\xC3\xA9t", eventListener); },
            Str16(u"\u00E9t"), "RegisterEvent \u00E9t", {}, {}, {}, "privacyEventListener", eventObject},
        {2, [this](auto& s, auto&) { return s.UnregisterPrivacyEventListener(eventListener); }, {}, "UnregisterEvent",
            {}, {}, {}, "privacyEventListener", eventObject},
        {3, Query<PrivacyEventDetail>([](auto& s, auto& out) { return s.GetPrivacyEventDetails(8, out); }), I32(8),
            "Details 8", {{8, badUser}}, DETAIL, "Read [PrivacyEventDetail] failed!"},
        {4, Query<PrivacyEventDetail>([](auto& s, auto& out) {
             return s.GetPrivacyEventDetailsByPrivacySensorType(-4, 22, out);
         }),
            I32(-4) + I32(22), "Details -4 22", {{-4, badUser}, {22, badType}}, DETAIL,
            "Read [PrivacyEventDetail] failed!"},
        {5, Query<IndicatorData>([](auto& s, auto& out) { return s.GetActiveIndicators(out); }), {}, "Active", {}, DATA,
            "Read [IndicatorData] failed!"},
        {6, [this](auto& s, auto&) { return s.TurnOnIndicator(31, somewhere, small, 33); },
            I32(31) + Present(POSITION) + Present(SIZE) + I32(33), "On 31" + POSITION.text + SIZE.text + "33",
            {{31, badType}, {270, "Write [indicatorPosition] failed!"}, {33, badAnimation}}},
        {7, [](auto& s, auto&) { return s.TurnOffIndicator(22, 11); }, I32(22) + I32(11), "Off 22 11",
            {{22, badType}, {11, badAnimation}}},
        {8, [this](auto& s, auto&) { return s.RegisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "RegisterSwitch", {}, {}, {}, "listener", switchObject},
        {9, [this](auto& s, auto&) { return s.UnregisterPrivacyIndicatorSwitchListener(switchListener); }, {},
            "UnregisterSwitch", {}, {}, {}, "listener", switchObject},
        {10, Query<PermissionUsageDuration>([this](auto& s, auto& out) {
             return s.GetPermissionUsageDurationSummary(usage, out);
         }),
            Present(QUERY), "Usage " + QUERY.text, {{2, "Write [permissionUsageDurationQuery] failed!"}}, DURATION,
            "Read [PermissionUsageDuration] failed!"},
        {11, [](auto& s, auto&) { return s.NotifyPowerEvent(-3); }, I32(-3), "Power -3",
            {{-3, "Write [event] failed!"}}},
    };

    const sptr<FakeRemote> remote = new FakeRemote();
    const sptr<Service> proxy = iface_cast<Service>(remote);
    Lines texts;

    const sptr<FakeService> implementation = new FakeService();
    size_t replyRoom = WIDE;
    size_t unread = 0;
    LogCapture logs; // From here on.
};

TEST_F(ServiceTest, ProxySendsEachRequestAndPassesItsResultThrough)
{
    PrivacyIndicatorServiceIntfProxy unconnected(nullptr);
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        EXPECT_EQ(Answer(request, ""), 0) << "a missing result counts as success";
        EXPECT_EQ(std::make_tuple(remote->code, remote->flags, remote->waitTime), std::make_tuple(request.code, 0, 8));
        const Bytes object = request.listenerName.empty() ? "" : Bytes(24, '\0');
        EXPECT_EQ(remote->request, Token(DESCRIPTOR) + request.arguments + object);
        EXPECT_EQ(logs.Take(), Lines());

        EXPECT_EQ(Answer(request, I32(-1) + I32(1) + Present(request.element)), -1);
        EXPECT_EQ(logs.Take(), Labelled("Read Int32 failed!"));
        remote->result = 29189;
        EXPECT_EQ(Answer(request, I32(7) + I32(1) + Present(request.element)), 29189);
        EXPECT_EQ(logs.Take(), Labelled("Send request failed!"));
        EXPECT_EQ(texts, Lines());
        remote->result = 0;

        ExpectUnsent(5, "Remote is nullptr!", [&](auto&) { return request.send(unconnected, texts); });
        const auto send = [&](auto& s) { return request.send(s, texts); };
        for (const auto& [value, message] : request.writeFailures) {
            const Failing failing(0, value);
            ExpectUnsent(5, message, send);
        }
        const Failing failing(0, Failing::TOKEN);
        ExpectUnsent(22, "Write interface token failed!", send);
    }
}

TEST_F(ServiceTest, ProxyAppendsTheElementsOfAReply)
{
    for (const Request& query : requests) {
        if (query.elementFailure.empty()) {
            continue;
        }
        SCOPED_TRACE(query.code);
        const Bytes one = Present(query.element);
        // Any flag but 0 says that an element is there.
        EXPECT_EQ(Answer(query, I32(0) + I32(2) + one + I32(2) + query.element.bytes), 0);
        EXPECT_EQ(texts, Lines(2, query.element.text));
        for (const int32_t count : {0, -5, INT_MIN}) {
            EXPECT_EQ(Answer(query, I32(0) + I32(count) + one), 0) << count;
            EXPECT_EQ(texts, Lines()) << count;
        }
        EXPECT_EQ(Answer(query, I32(0) + I32(102400) + Times(102400, one)), 0);
        EXPECT_EQ(texts, Lines(102400, query.element.text));
        EXPECT_EQ(logs.Take(), Lines());
        for (const int32_t count : {102401, INT_MAX}) {
            EXPECT_EQ(Answer(query, I32(0) + I32(count) + one), 5) << count;
            EXPECT_EQ(logs.Take(), Labelled("The vector/array size exceeds the security limit!")) << count;
            EXPECT_EQ(texts, Lines());
        }
        // What comes before an element that is cut or missing stays.
        const Bytes two = I32(0) + I32(102400) + Times(2, one);
        EXPECT_EQ(Answer(query, two + I32(0) + query.element.bytes), 5);
        EXPECT_EQ(logs.Take(), Labelled(query.elementFailure));
        for (size_t size = 0; size < query.element.bytes.size(); size += 4) {
            EXPECT_EQ(Answer(query, two + one.substr(0, size)), 5) << size;
            EXPECT_EQ(logs.Take(), Labelled(query.elementFailure)) << size;
            EXPECT_EQ(texts, Lines(2, query.element.text));
        }
        const Failing failing(2);
        EXPECT_EQ(Answer(query, two), 5);
        EXPECT_EQ(logs.Take().back(), Labelled(query.elementFailure).back());
        EXPECT_EQ(texts, Lines(1, query.element.text));
    }
}

TEST_F(ServiceTest, ProxySendsNothingThatIsNullOrDoesNotFit)
{
    ExpectUnsent(5, "Write [privacyEventListener] failed!", // Behind a data type that fits.
        [this](auto& s) { return s.RegisterPrivacyEventListener(std::string(102320, 'x'), eventListener); });
    for (const Request& request : requests) {
        if (request.listenerName.empty()) {
            continue;
        }
        const auto send = [&](auto& s) { return request.send(s, texts); };
        eventListener = nullptr;
        switchListener = nullptr;
        logs.Take();
        ExpectUnsent(5, request.listenerName + " is nullptr!", send);
        eventListener = new Privacy::PrivacyEventListenerProxy(nullptr); // Its object is.
        switchListener = new Indicator::IndicatorSwitchListenerProxy(nullptr);
        logs.Take();
        ExpectUnsent(5, "Write [" + request.listenerName + "] failed!", send);
    }
    // The first failure alone is told, and ends the call.
    ExpectUnsent(5, "Write [dataType] failed!",
        [](auto& s) { return s.RegisterPrivacyEventListener(std::string(300000, 'x'), nullptr); });
    {
        const Failing failing(0, 270);
        ExpectUnsent(5, badType, [](auto& s) { return s.TurnOffIndicator(270, 270); });
        ExpectUnsent(5, badType, [this](auto& s) { return s.TurnOnIndicator(270, somewhere, {}, 270); });
    }
    struct Unwritable : IndicatorSize {
        bool Marshalling(Parcel& /*parcel*/) const override
        {
            return false;
        }
    };
    ExpectUnsent(5, "Write [indicatorSize] failed!",
        [this](auto& s) { return s.TurnOnIndicator(0, somewhere, Unwritable(), 0); });
    EXPECT_EQ(proxy->AsObject().GetRefPtr(), remote.GetRefPtr());
    const Failing failing(1);
    EXPECT_EQ(iface_cast<Service>(remote), nullptr);
}

TEST_F(ServiceTest, StubCallsTheImplementationAndReplies)
{
    for (const Request& request : requests) {
        SCOPED_TRACE(request.code);
        const auto object = request.listener;
        implementation->elements = 3;
        const Bytes elements = request.elementFailure.empty() ? "" : I32(3) + Times(3, Present(request.element));
        ExpectServed(0, request.code, request.arguments, object, {request.call}, I32(0) + elements);
        EXPECT_EQ(implementation->listenerObject, object);
        implementation->result = -7;
        ExpectServed(0, request.code, request.arguments, object, {request.call}, I32(-7));
        EXPECT_EQ(logs.Take(), Lines());
        replyRoom = 0;
        ExpectServed(22, request.code, request.arguments, object, {request.call}, "");
        EXPECT_EQ(logs.Take(), Labelled("Write Int32 failed!"));
        replyRoom = WIDE;
        implementation->result = 0;
    }
    // Any flag but 0 says that a record is there; what is missing reads as 0.
    ExpectServed(0, 6, I32(1) + Present(POSITION) + I32(2) + SIZE.bytes, nullptr,
        {"On 1" + POSITION.text + SIZE.text + "0"}, I32(0));
    ExpectServed(0, 11, "", nullptr, {"Power 0"}, I32(0));
}

TEST_F(ServiceTest, StubRefusesWhatItCannotRead)
{
    for (const Request& request : requests) {
        if (request.listenerName.empty()) {
            continue;
        }
        SCOPED_TRACE(request.code);
        const Lines failure = Labelled("Read [" + request.listenerName + "] failed!");
        ExpectUncalled(failure, request.code, request.arguments, nullptr);
        ExpectUncalled(failure, request.code, request.arguments, request.code < 3 ? switchObject : eventObject);
        ExpectServed(0, request.code, request.arguments, remote, {request.call}, I32(0));
        EXPECT_EQ(implementation->listenerObject, sptr<IRemoteObject>(remote));
        logs.Take();
        const Failing failing(1);
        ExpectUncalled(failure, request.code, request.arguments, remote);
    }
    const Lines noSize = Labelled("Read [IndicatorSize] failed!");
    const Lines noQuery = Labelled("Read [PermissionUsageDurationQuery] failed!");
    const Bytes head = I32(1) + Present(POSITION);
    ExpectUncalled(Labelled("Read [IndicatorPosition] failed!"), 6, I32(1) + I32(0) + Present(SIZE), nullptr);
    EXPECT_EQ(unread, Present(SIZE).size()) << "the size must not be read";
    ExpectUncalled(noSize, 6, head + I32(0) + SIZE.bytes, nullptr);
    ExpectUncalled(noSize, 6, head + I32(1) + I32(0), nullptr);
    ExpectUncalled(noQuery, 10, I32(0) + QUERY.bytes, nullptr);
    ExpectUncalled(noQuery, 10, I32(1) + I32(1000) + QUERY.bytes, nullptr);
    ExpectUncalled(noQuery, 10, Present(QUERY).substr(0, 40), nullptr);
    {
        const Failing failing(1);
        ExpectUncalled(noQuery, 10, Present(QUERY), nullptr);
    }
    const Failing failing(2);
    ExpectUncalled(
        Lines{Line('E', "Unmarshalling: new IndicatorSize failed.")} + noSize, 6, head + Present(SIZE), nullptr);
}

TEST_F(ServiceTest, StubLimitsTheElementsOfAReply)
{
    for (const Request& query : requests) {
        if (query.elementFailure.empty()) {
            continue;
        }
        SCOPED_TRACE(query.call);
        const Bytes one = Present(query.element);
        const auto serve = [&](size_t elements, int32_t error, const Bytes& reply, const Lines& lines) {
            implementation->elements = elements;
            ExpectServed(error, query.code, query.arguments, nullptr, {query.call}, reply);
            EXPECT_EQ(logs.Take(), lines);
        };
        serve(102400, 0, I32(0) + I32(102400) + Times(102400, one), {});
        serve(102401, 5, I32(0), Labelled("The vector/array size exceeds the security limit!"));
        implementation->result = 7;
        serve(102401, 0, I32(7), {}); // Without success there are no elements to be limited.
        implementation->result = 0;
        replyRoom = 8 + one.size() + 4;
        serve(2, 5, I32(0) + I32(2) + one + I32(1), Labelled("Write [(*it)] failed!"));
        replyRoom = WIDE;
        const Failing failing(0, 77); // A count that cannot be written is no failure.
        serve(77, 0, I32(0) + Times(77, one), {});
    }
}

TEST_F(ServiceTest, StubRefusesForeignTokensAndUnknownCodes)
{
    std::u16string middle = DESCRIPTOR;
    ++middle[30];
    for (const auto& foreign : {DESCRIPTOR + u"x", DESCRIPTOR.substr(1), u"o" + DESCRIPTOR.substr(1), middle}) {
        for (const uint32_t code : {0U, 7U, 12U}) {
            ExpectServed(1, code, I32(2) + I32(1), nullptr, {}, "", foreign);
        }
    }
    for (const uint32_t code : {0U, 12U, 13U, UINT32_MAX}) {
        ExpectServed(305, code, I32(2) + I32(1), nullptr, {}, "");
    }
    EXPECT_EQ(logs.Take(), Lines());
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
