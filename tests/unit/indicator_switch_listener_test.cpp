// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "failing.h"
#include "fake_remote.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "log_capture.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Indicator::IndicatorSwitchListenerProxy;
using Indicator::IndicatorSwitchListenerStubImpl;

const std::u16string DESCRIPTOR = u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf";

std::string Line(char level, const std::string& message)
{
    return Tagged(level, "service]OnSwitchChanged: " + message);
}

TEST(IndicatorSwitchListenerTest, ProxySendsOneWay)
{
    LogCapture logs;
    const sptr<FakeRemote> remote = new FakeRemote();
    const auto data = Read<IndicatorData>(DATA.bytes);
    const std::string begin = Line('I', "OnSwitchChanged begin in proxy");
    const std::string written = Line('I', "Write parcelable success  in proxy:'" + DATA.text + "'");
    const std::string end = Line('I', "OnSwitchChanged end in proxy");
    auto proxy = iface_cast<Indicator::IndicatorSwitchListenerIntf>(remote);
    EXPECT_EQ(
        logs.Take(), Lines{Tagged('I', "service]IndicatorSwitchListenerProxy: create IndicatorSwitchListenerProxy")});
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(remote->code, 0U);
    EXPECT_EQ(remote->flags, 1);
    EXPECT_EQ(remote->waitTime, 8);
    EXPECT_EQ(remote->request, Token(DESCRIPTOR) + Present(DATA));
    EXPECT_EQ(logs.Take(), (Lines{begin, written, end}));

    remote->result = -32;
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), (Lines{begin, written, Line('E', "SendRequest is failed, error code: -32."), end}));
    EXPECT_EQ(remote->calls, 2);
    {
        const Failing failing;
        Failing::write = 0x12345678; // The record's first.
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(logs.Take(), (Lines{begin, Line('E', "Write parcelable failed  in proxy.")}));
        Failing::write = Failing::TOKEN;
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(logs.Take(), (Lines{begin, Line('E', "WriteInterfaceToken failed")}));
    }
    EXPECT_EQ(remote->calls, 2);
    proxy = nullptr;
    EXPECT_EQ(
        logs.Take(), Lines{Tagged('I', "service]~IndicatorSwitchListenerProxy: destroy IndicatorSwitchListenerProxy")});
    proxy = new IndicatorSwitchListenerProxy(nullptr);
    logs.Take();
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), (Lines{begin, written, Line('E', "remote is null!")}));
}

class IndicatorSwitchListenerStubTest : public testing::Test {
protected:
    // The function object hears the records; `lines` are those behind the first, which every request makes.
    void ExpectServed(int32_t result, uint32_t code, const Bytes& request, Lines lines)
    {
        RawParcel data(request);
        RawParcel reply;
        MessageOption option;
        EXPECT_EQ(stub->SendRequest(code, data, reply, option), result);
        lines.insert(lines.begin(), Tagged('I', "PrivacyIndicator]OnRemoteRequest: OnRemoteRequest called in stub."));
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(reply.GetDataSize(), 0U);
    }

    Lines heard;
    LogCapture logs;
    sptr<IRemoteObject> stub =
        new IndicatorSwitchListenerStubImpl([this](const IndicatorData& data) { heard.push_back(data.ToString()); });
    const Lines created = logs.Take();
};

TEST_F(IndicatorSwitchListenerStubTest, HandsTheRecordToTheFunction)
{
    const std::string end = "IndicatorSwitchListenerStub";
    EXPECT_EQ(created, Lines{Tagged('I', "PrivacyIndicator]" + end + ": create " + end)});
    const Lines lines = {
        Tagged('I', "PrivacyIndicator]OnSwitchChanged: OnRemoteRequest called in stub impl. 305419896")};
    ExpectServed(0, 0, Token(DESCRIPTOR) + Present(DATA), lines);
    ExpectServed(0, 0, Token(DESCRIPTOR) + I32(2) + DATA.bytes, lines);
    EXPECT_EQ(heard, Lines(2, DATA.text));

    stub = new IndicatorSwitchListenerStubImpl({});
    EXPECT_EQ(logs.Take().back(), Tagged('I', "PrivacyIndicator]~" + end + ": destroy " + end));
    ExpectServed(0, 0, Token(DESCRIPTOR) + Present(DATA), lines);
}

TEST_F(IndicatorSwitchListenerStubTest, RefusesWhatItCannotRead)
{
    const std::string bad = Tagged('E', "PrivacyIndicator]OnRemoteRequest: read privacy indicator from parcel failed.");
    for (const Bytes& record : {I32(0) + DATA.bytes, Present(DATA).substr(0, 12), Bytes()}) {
        ExpectServed(-1, 0, Token(DESCRIPTOR) + record, {bad});
    }
    {
        const Failing failing;
        Failing::nthNew = 1;
        ExpectServed(-1, 0, Token(DESCRIPTOR) + Present(DATA),
            {Tagged('E', "PrivacyIndicator]Unmarshalling: new Indicator failed."), bad});
    }
    for (const auto& foreign : {DESCRIPTOR + u"x", DESCRIPTOR.substr(1), u"O" + DESCRIPTOR.substr(1)}) {
        for (const uint32_t code : {0U, 5U}) {
            ExpectServed(10, code, Token(foreign) + Present(DATA),
                {Tagged('E', "PrivacyIndicator]OnRemoteRequest: verify descriptor failed")});
        }
    }
    ExpectServed(305, 1, Token(DESCRIPTOR) + Present(DATA), {});
    EXPECT_EQ(heard, Lines());
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
