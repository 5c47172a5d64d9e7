// SPDX-License-Identifier: Apache-2.0
#include <map>

#include <gtest/gtest.h>

#include "failing.h"
#include "fake_remote.h"
#include "fake_service.h"
#include "indicator_switch_listener_stub_impl.h"
#include "log_capture.h"
#include "privacy_event_listener_stub_impl.h"
#include "privacy_indicator_service_intf_stub.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

const std::u16string DESCRIPTOR = u"OHOS.Korvane.Quenlar.PrivacyIndicator.PrivacyIndicatorServiceIntf";

struct Request {
    uint32_t code;
    Bytes arguments;
    std::string call;
    Sample element; // Of the reply; empty where there are none.
};

const Request REQUESTS[] = {
    {3, I32(8), "Details 8", DETAIL}, {4, I32(-4) + I32(2), "Details -4 2", DETAIL}, {5, "", "Active", DATA},
    {6, I32(1) + Present(POSITION) + I32(2) + SIZE.bytes + I32(3), "On 1" + POSITION.text + SIZE.text + "3", {}},
    {7, I32(2) + I32(1), "Off 2 1", {}}, {10, Present(QUERY), "Usage " + QUERY.text, DURATION},
    {11, I32(-3), "Power -3", {}}, {11, "", "Power 0", {}}, // What is missing reads as 0.
};

constexpr size_t WIDE = size_t{32} << 20;

class ServiceStubTest : public testing::Test {
protected:
    // Serves a request; `object` is behind its arguments.
    int32_t Serve(uint32_t code, const Bytes& arguments, const sptr<IRemoteObject>& object = nullptr,
        const std::u16string& token = DESCRIPTOR)
    {
        RawParcel data(Token(token) + arguments);
        data.WriteRemoteObject(object);
        RawParcel reply;
        if (replyRoom < reply.GetMaxCapacity()) {
            reply.FillUp(replyRoom);
        } else {
            reply.SetMaxCapacity(replyRoom);
        }
        const size_t filled = reply.GetDataSize();
        MessageOption option;
        service->Take();
        const int32_t error = service->SendRequest(code, data, reply, option);
        replied = BytesOf(reply).substr(filled);
        unread = data.GetReadableBytes();
        return error;
    }

    // A failure before the implementation is called.
    void ExpectUncalled(int32_t error, const Lines& lines)
    {
        EXPECT_EQ(error, 5);
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(service->calls, Lines{});
        EXPECT_EQ(replied, "");
    }

    const sptr<FakeService> service = new FakeService();
    size_t replyRoom = WIDE;
    Bytes replied;
    size_t unread = 0;
    LogCapture logs;
};

TEST_F(ServiceStubTest, CallsTheImplementationAndReplies)
{
    for (const Request& request : REQUESTS) {
        SCOPED_TRACE(request.call);
        service->elements = 3;
        service->result = 0;
        EXPECT_EQ(Serve(request.code, request.arguments), 0);
        EXPECT_EQ(service->calls, Lines{request.call});
        const bool isQuery = !request.element.bytes.empty();
        EXPECT_EQ(replied, I32(0) + (isQuery ? I32(3) + Times(3, Present(request.element)) : ""));

        service->result = -7;
        EXPECT_EQ(Serve(request.code, request.arguments), 0);
        EXPECT_EQ(replied, I32(-7));
        EXPECT_EQ(logs.Take(), Lines());

        replyRoom = 0;
        EXPECT_EQ(Serve(request.code, request.arguments), 22);
        EXPECT_EQ(logs.Take(), Labelled("Write Int32 failed!"));
        replyRoom = WIDE;
    }
}

TEST_F(ServiceStubTest, HandsListenersOver)
{
    const sptr<IRemoteObject> remote = new FakeRemote();
    const sptr<IRemoteObject> event = new Privacy::PrivacyEventListenerStubImpl({});
    const sptr<IRemoteObject> change = new Indicator::IndicatorSwitchListenerStubImpl({});
    for (const auto& [code, call] : std::map<uint32_t, std::string>{
             {1, "RegisterEvent \u00E9t"}, {2, "UnregisterEvent"}, {8, "RegisterSwitch"}, {9, "UnregisterSwitch"}}) {
        SCOPED_TRACE(call);
        const Bytes arguments = code == 1 ? Str16(u"\u00E9t") : "";
        for (const auto& object : {code < 3 ? event : change, remote}) {
            EXPECT_EQ(Serve(code, arguments, object), 0);
            EXPECT_EQ(service->calls, Lines{call});
            EXPECT_EQ(service->listenerObject, object);
            EXPECT_EQ(replied, I32(0));
        }
        logs.Take();
        const Lines failure = Labelled(code < 3 ? "Read [privacyEventListener] failed!" : "Read [listener] failed!");
        ExpectUncalled(Serve(code, arguments), failure);
        ExpectUncalled(Serve(code, arguments, code < 3 ? change : event), failure); // Another interface's object.
        const Failing failing;
        Failing::nthNew = 1;
        ExpectUncalled(Serve(code, arguments, remote), failure);
    }
}

TEST_F(ServiceStubTest, RefusesRecordsThatCannotBeRead)
{
    const Bytes position = I32(1) + Present(POSITION);
    ExpectUncalled(Serve(6, I32(1) + I32(0) + Present(SIZE)), Labelled("Read [IndicatorPosition] failed!"));
    EXPECT_EQ(unread, Present(SIZE).size()) << "the size must not be read";
    ExpectUncalled(Serve(6, position + I32(0) + SIZE.bytes), Labelled("Read [IndicatorSize] failed!"));
    ExpectUncalled(Serve(6, position + I32(1) + I32(0)), Labelled("Read [IndicatorSize] failed!"));
    const Lines noQuery = Labelled("Read [PermissionUsageDurationQuery] failed!");
    ExpectUncalled(Serve(10, I32(0) + QUERY.bytes), noQuery);
    ExpectUncalled(Serve(10, I32(1) + I32(1000) + QUERY.bytes), noQuery);
    ExpectUncalled(Serve(10, Present(QUERY).substr(0, 40)), noQuery);
    const Failing failing;
    Failing::nthNew = 1;
    ExpectUncalled(Serve(10, Present(QUERY)), noQuery);
    Failing::nthNew = 2;
    ExpectUncalled(Serve(6, position + Present(SIZE) + I32(0)),
        {Tagged('E', "PrivacyIndicator]Unmarshalling: new IndicatorSize failed."),
            Labelled("Read [IndicatorSize] failed!").front()});
}

TEST_F(ServiceStubTest, LimitsTheElementsOfAReply)
{
    for (const Request& query : REQUESTS) {
        if (query.element.bytes.empty()) {
            continue;
        }
        SCOPED_TRACE(query.call);
        service->elements = 102400;
        EXPECT_EQ(Serve(query.code, query.arguments), 0);
        EXPECT_EQ(replied, I32(0) + I32(102400) + Times(102400, Present(query.element)));
        EXPECT_EQ(logs.Take(), Lines());
        service->elements = 102401;
        EXPECT_EQ(Serve(query.code, query.arguments), 5);
        EXPECT_EQ(replied, I32(0));
        EXPECT_EQ(logs.Take(), Labelled("The vector/array size exceeds the security limit!"));
        service->result = 7;
        EXPECT_EQ(Serve(query.code, query.arguments), 0);
        EXPECT_EQ(replied, I32(7)) << "without success there are no elements to be limited";
        EXPECT_EQ(logs.Take(), Lines());
        service->result = 0;

        service->elements = 2;
        const Bytes one = Present(query.element);
        replyRoom = 8 + one.size() + 4;
        EXPECT_EQ(Serve(query.code, query.arguments), 5);
        EXPECT_EQ(replied.substr(0, 8 + one.size()), I32(0) + I32(2) + one);
        EXPECT_EQ(logs.Take(), Labelled("Write [(*it)] failed!"));
        replyRoom = WIDE;

        // A count that cannot be written is no failure.
        service->elements = 77;
        const Failing failing;
        Failing::write = 77;
        EXPECT_EQ(Serve(query.code, query.arguments), 0);
        EXPECT_EQ(replied, I32(0) + Times(77, one));
    }
}

TEST_F(ServiceStubTest, RefusesForeignTokensAndUnknownCodes)
{
    std::u16string middle = DESCRIPTOR;
    ++middle[30];
    for (const auto& foreign : {DESCRIPTOR + u"x", DESCRIPTOR.substr(1), u"o" + DESCRIPTOR.substr(1), middle}) {
        for (const uint32_t code : {0U, 7U, 12U}) {
            EXPECT_EQ(Serve(code, I32(2) + I32(1), nullptr, foreign), 1);
            EXPECT_EQ(service->calls, Lines{});
            EXPECT_EQ(replied, "");
        }
    }
    for (const uint32_t code : {0U, 12U, 13U, UINT32_MAX}) {
        EXPECT_EQ(Serve(code, I32(2) + I32(1)), 305);
        EXPECT_EQ(service->calls, Lines{});
        EXPECT_EQ(replied, "");
    }
    EXPECT_EQ(logs.Take(), Lines());
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
