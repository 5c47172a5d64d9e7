// SPDX-License-Identifier: Apache-2.0
#include <climits>
#include <functional>

#include <gtest/gtest.h>

#include "failing.h"
#include "fake_remote.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "log_capture.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_proxy.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Service = PrivacyIndicatorServiceIntf;
using EventListener = Privacy::PrivacyEventListenerIntf;
using SwitchListener = Indicator::IndicatorSwitchListenerIntf;
using Texts = std::vector<std::string>;
using Send = std::function<int32_t(Service&, Texts&)>; // Collects the records of the reply as texts.

const Bytes OBJECT(24, '\0');

struct Request {
    uint32_t code;
    Send send;
    Bytes arguments;
    std::vector<std::pair<int32_t, std::string>> writeFailures; // By the int32 that cannot be written.
    Sample element;                                             // Of the reply; empty where there are none.
    std::string elementFailure;
};

// A query that is sent with a record in the vector already, which must stay in front.
template <typename T>
Send Query(const std::function<int32_t(Service&, std::vector<T>&)>& query)
{
    return [query](Service& service, Texts& texts) {
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

class ServiceProxyTest : public testing::Test {
protected:
    std::vector<Request> Requests()
    {
        const auto position = *Read<IndicatorPosition>(POSITION.bytes);
        const auto size = *Read<IndicatorSize>(SIZE.bytes);
        const auto query = *Read<PermissionUsageDurationQuery>(QUERY.bytes);
        const std::string badUser = "Write [userId] failed!";
        const std::string badType = "Write [privacySensorType] failed!";
        const std::string badAnimation = "Write [animationType] failed!";
        const std::string badDetail = "Read [PrivacyEventDetail] failed!";
        return {
            {1, [this](auto& s, auto&) { return s.RegisterPrivacyEventListener("\xC3\xA9t", eventListener); },
                Str16(u"\u00E9t") + OBJECT, {}, {}, ""},
            {2, [this](auto& s, auto&) { return s.UnregisterPrivacyEventListener(eventListener); }, OBJECT, {}, {}, ""},
            {3, Query<PrivacyEventDetail>([](auto& s, auto& out) { return s.GetPrivacyEventDetails(8, out); }), I32(8),
                {{8, badUser}}, DETAIL, badDetail},
            {4, Query<PrivacyEventDetail>([](auto& s, auto& out) {
                 return s.GetPrivacyEventDetailsByPrivacySensorType(-4, 22, out);
             }),
                I32(-4) + I32(22), {{-4, badUser}, {22, badType}}, DETAIL, badDetail},
            {5, Query<IndicatorData>([](auto& s, auto& out) { return s.GetActiveIndicators(out); }), "", {}, DATA,
                "Read [IndicatorData] failed!"},
            {6, [=](auto& s, auto&) { return s.TurnOnIndicator(31, position, size, 33); },
                I32(31) + Present(POSITION) + Present(SIZE) + I32(33),
                {{31, badType}, {270, "Write [indicatorPosition] failed!"}, {33, badAnimation}}, {}, ""},
            {7, [](auto& s, auto&) { return s.TurnOffIndicator(22, 11); }, I32(22) + I32(11),
                {{22, badType}, {11, badAnimation}}, {}, ""},
            {8, [this](auto& s, auto&) { return s.RegisterPrivacyIndicatorSwitchListener(switchListener); }, OBJECT, {},
                {}, ""},
            {9, [this](auto& s, auto&) { return s.UnregisterPrivacyIndicatorSwitchListener(switchListener); }, OBJECT,
                {}, {}, ""},
            {10, Query<PermissionUsageDuration>([=](auto& s, auto& out) {
                 return s.GetPermissionUsageDurationSummary(query, out);
             }),
                Present(QUERY), {{2, "Write [permissionUsageDurationQuery] failed!"}}, DURATION,
                "Read [PermissionUsageDuration] failed!"},
            {11, [](auto& s, auto&) { return s.NotifyPowerEvent(-3); }, I32(-3), {{-3, "Write [event] failed!"}}, {},
                ""},
        };
    }

    std::vector<Request> Queries()
    {
        std::vector<Request> queries;
        for (const Request& request : Requests()) {
            if (!request.elementFailure.empty()) {
                queries.push_back(request);
            }
        }
        return queries;
    }

    int32_t Answer(const Request& request, const Bytes& answer)
    {
        remote->answer = answer;
        return request.send(*service, texts);
    }

    // A failure before anything is sent.
    void ExpectUnsent(int32_t error, const std::string& message, const std::function<int32_t(Service&)>& send)
    {
        const int calls = remote->calls;
        EXPECT_EQ(send(*service), error);
        EXPECT_EQ(logs.Take(), Labelled(message));
        EXPECT_EQ(remote->calls, calls);
    }

    sptr<EventListener> eventListener = new Privacy::PrivacyEventListenerStubImpl({});
    sptr<SwitchListener> switchListener = new Indicator::IndicatorSwitchListenerStubImpl({});
    const sptr<FakeRemote> remote = new FakeRemote();
    const sptr<Service> service = iface_cast<Service>(remote);
    Texts texts;
    LogCapture logs;
};

TEST_F(ServiceProxyTest, SendsEachRequestAndPassesItsResultThrough)
{
    EXPECT_EQ(PRIVACY_INDICATOR_SA_ID, 66090);
    const Bytes token = Token(u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf");
    PrivacyIndicatorServiceIntfProxy unconnected(nullptr);
    for (const Request& request : Requests()) {
        SCOPED_TRACE(request.code);
        EXPECT_EQ(Answer(request, ""), 0) << "a missing result counts as success";
        EXPECT_EQ(remote->code, request.code);
        EXPECT_EQ(remote->flags, 0);
        EXPECT_EQ(remote->waitTime, 8);
        EXPECT_EQ(remote->request, token + request.arguments);
        EXPECT_EQ(logs.Take(), Lines());

        EXPECT_EQ(Answer(request, I32(-1) + I32(1) + Present(request.element)), -1);
        EXPECT_EQ(logs.Take(), Labelled("Read Int32 failed!"));
        remote->result = 29189;
        EXPECT_EQ(Answer(request, I32(7) + I32(1) + Present(request.element)), 29189);
        EXPECT_EQ(logs.Take(), Labelled("Send request failed!"));
        EXPECT_EQ(texts, Texts());
        remote->result = 0;

        ExpectUnsent(5, "Remote is nullptr!", [&](auto&) { return request.send(unconnected, texts); });
        const Failing failing;
        for (const auto& [value, message] : request.writeFailures) {
            Failing::write = value;
            ExpectUnsent(5, message, [&](auto& s) { return request.send(s, texts); });
        }
        Failing::write = Failing::TOKEN;
        ExpectUnsent(22, "Write interface token failed!", [&](auto& s) { return request.send(s, texts); });
    }
}

TEST_F(ServiceProxyTest, AppendsTheElementsOfAReply)
{
    for (const Request& query : Queries()) {
        SCOPED_TRACE(query.code);
        // Any flag but 0 says that an element is there.
        EXPECT_EQ(Answer(query, I32(0) + I32(2) + Present(query.element) + I32(2) + query.element.bytes), 0);
        EXPECT_EQ(texts, Texts(2, query.element.text));
        for (const int32_t count : {0, -5, INT_MIN}) {
            EXPECT_EQ(Answer(query, I32(0) + I32(count) + Present(query.element)), 0) << count;
            EXPECT_EQ(texts, Texts()) << count;
        }
        EXPECT_EQ(Answer(query, I32(0) + I32(102400) + Times(102400, Present(query.element))), 0);
        EXPECT_EQ(texts, Texts(102400, query.element.text));
        EXPECT_EQ(logs.Take(), Lines());
    }
}

TEST_F(ServiceProxyTest, RefusesElementsThatAreTooManyOrUnreadable)
{
    for (const Request& query : Queries()) {
        SCOPED_TRACE(query.code);
        for (const int32_t count : {102401, INT_MAX}) {
            EXPECT_EQ(Answer(query, I32(0) + I32(count) + Present(query.element)), 5) << count;
            EXPECT_EQ(logs.Take(), Labelled("The vector/array size exceeds the security limit!")) << count;
            EXPECT_EQ(texts, Texts());
        }
        const Bytes two = I32(0) + I32(102400) + Times(2, Present(query.element));
        EXPECT_EQ(Answer(query, two + I32(0) + query.element.bytes), 5);
        EXPECT_EQ(logs.Take(), Labelled(query.elementFailure));
        for (size_t size = 0; size < query.element.bytes.size(); size += 4) {
            EXPECT_EQ(Answer(query, two + Present(query.element).substr(0, size)), 5) << size;
            EXPECT_EQ(logs.Take(), Labelled(query.elementFailure)) << size;
            EXPECT_EQ(texts, Texts(2, query.element.text)) << "what came before stays";
        }
        const Failing failing;
        Failing::nthNew = 2;
        EXPECT_EQ(Answer(query, two), 5);
        EXPECT_EQ(logs.Take().back(), Labelled(query.elementFailure).back());
        EXPECT_EQ(texts, Texts(1, query.element.text));
    }
}

TEST_F(ServiceProxyTest, SendsNoListenerThatIsNull)
{
    const std::vector<Request> requests = Requests();
    for (const size_t code : {1U, 2U, 8U, 9U}) {
        const std::string name = code < 3 ? "privacyEventListener" : "listener";
        const auto send = [&](auto& s) { return requests[code - 1].send(s, texts); };
        eventListener = nullptr;
        switchListener = nullptr;
        logs.Take();
        ExpectUnsent(5, name + " is nullptr!", send);
        eventListener = new Privacy::PrivacyEventListenerProxy(nullptr); // Its object is.
        switchListener = new Indicator::IndicatorSwitchListenerProxy(nullptr);
        logs.Take();
        ExpectUnsent(5, "Write [" + name + "] failed!", send);
    }
}

TEST_F(ServiceProxyTest, SendsNothingThatDoesNotFit)
{
    ExpectUnsent(5, "Write [dataType] failed!",
        [](auto& s) { return s.RegisterPrivacyEventListener(std::string(300000, 'x'), nullptr); });
    {
        const Failing failing; // The first failure alone is told, and ends the call.
        Failing::write = 270;
        ExpectUnsent(5, "Write [privacySensorType] failed!", [](auto& s) { return s.TurnOffIndicator(270, 270); });
        ExpectUnsent(5, "Write [privacySensorType] failed!",
            [](auto& s) { return s.TurnOnIndicator(270, *Read<IndicatorPosition>(POSITION.bytes), {}, 270); });
    }
    ExpectUnsent(5, "Write [privacyEventListener] failed!", // Behind a data type that does.
        [this](auto& s) { return s.RegisterPrivacyEventListener(std::string(102320, 'x'), eventListener); });
    struct Unwritable : IndicatorSize {
        bool Marshalling(Parcel& /*parcel*/) const override
        {
            return false;
        }
    };
    ExpectUnsent(5, "Write [indicatorSize] failed!",
        [](auto& s) { return s.TurnOnIndicator(0, IndicatorPosition(), Unwritable(), 0); });
}

TEST_F(ServiceProxyTest, IsMadeByTheBrokerUnlessMemoryIsShort)
{
    EXPECT_EQ(service->AsObject().GetRefPtr(), remote.GetRefPtr());
    const Failing failing;
    Failing::nthNew = 1;
    EXPECT_EQ(iface_cast<Service>(remote), nullptr);
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
