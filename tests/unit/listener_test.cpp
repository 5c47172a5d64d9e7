// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include <gtest/gtest.h>

#include "fakes.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Indicator::IndicatorSwitchListenerProxy;
using Indicator::IndicatorSwitchListenerStubImpl;
using Infos = std::vector<PrivacyEventRemindInfo>;
using Privacy::PrivacyEventListenerProxy;
using Privacy::PrivacyEventListenerStubImpl;

const std::u16string SWITCH = u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf";
const std::u16string EVENT = u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener";
const Bytes SWITCH_TOKEN = Token(SWITCH);
const Bytes EVENT_TOKEN = Token(EVENT);
const Bytes EVENT_HEAD = EVENT_TOKEN + Str("audio");
const Bytes FOREIGN[] = {
    Token(SWITCH + u"x"), Token(EVENT + u"x"), Token(SWITCH.substr(1)), Token(u"O" + EVENT.substr(1)), ""};

class ListenerTest : public testing::Test {
protected:
    void ExpectSent(int calls, int flags, const Bytes& request)
    {
        EXPECT_EQ(std::make_tuple(remote->calls, remote->code, remote->flags, remote->waitTime),
            std::make_tuple(calls, 0U, flags, 8));
        EXPECT_EQ(remote->request, request);
    }

    // `call` is what the stub's function hears: the data type and the records. No call if it is empty.
    void ExpectServed(int32_t result, uint32_t code, const Bytes& request, const Lines& call, const Lines& lines)
    {
        RawParcel data(request);
        RawParcel reply;
        MessageOption option;
        EXPECT_EQ(stub->SendRequest(code, data, reply, option), result);
        EXPECT_EQ(std::exchange(heard, {}), call);
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(reply.GetDataSize(), 0U);
    }

    const sptr<FakeRemote> remote = new FakeRemote();
    sptr<IRemoteObject> stub;
    Lines heard;
    LogCapture logs;
};

TEST_F(ListenerTest, SwitchProxySendsOneWay)
{
    const auto lines = [](const std::vector<std::pair<char, std::string>>& messages) {
        Lines all = {Tagged('I', "service]OnSwitchChanged: OnSwitchChanged begin in proxy")};
        for (const auto& [level, message] : messages) {
            all.push_back(Tagged(level, "service]OnSwitchChanged: " + message));
        }
        return all;
    };
    const std::string name = "IndicatorSwitchListenerProxy";
    const auto data = Read<IndicatorData>(DATA.bytes);
    const std::string written = "Write parcelable success  in proxy:'" + DATA.text + "'";
    auto proxy = iface_cast<SwitchListener>(remote);
    EXPECT_EQ(logs.Take(), Lines{Tagged('I', "service]" + name + ": create " + name)});
    proxy->OnSwitchChanged(*data);
    ExpectSent(1, 1, SWITCH_TOKEN + Present(DATA));
    EXPECT_EQ(logs.Take(), lines({{'I', written}, {'I', "OnSwitchChanged end in proxy"}}));
    remote->result = -32;
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), lines({{'I', written}, {'E', "SendRequest is failed, error code: -32."},
                               {'I', "OnSwitchChanged end in proxy"}}));
    for (const auto& [value, message] : {std::make_pair(0x12345678, "Write parcelable failed  in proxy."),
             std::make_pair(Failing::TOKEN, "WriteInterfaceToken failed")}) {
        const Failing failing(0, value); // The record's first int32, or the token's.
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(logs.Take(), lines({{'E', message}}));
    }
    proxy = nullptr;
    EXPECT_EQ(logs.Take(), Lines{Tagged('I', "service]~" + name + ": destroy " + name)});
    proxy = new IndicatorSwitchListenerProxy(nullptr);
    logs.Take();
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), lines({{'I', written}, {'E', "remote is null!"}}));
    EXPECT_EQ(remote->calls, 2);
}

TEST_F(ListenerTest, SwitchStubHandsTheRecordToItsFunction)
{
    const std::string name = "IndicatorSwitchListenerStub";
    stub = new IndicatorSwitchListenerStubImpl([this](const auto& data) { heard.push_back(data.ToString()); });
    EXPECT_EQ(logs.Take(), Lines{Line('I', name + ": create " + name)});
    const Lines called = {Line('I', "OnRemoteRequest: OnRemoteRequest called in stub.")};
    const Lines impl = {Line('I', "OnSwitchChanged: OnRemoteRequest called in stub impl. 305419896")};
    ExpectServed(0, 0, SWITCH_TOKEN + Present(DATA), {DATA.text}, called + impl);
    ExpectServed(0, 0, SWITCH_TOKEN + I32(2) + DATA.bytes, {DATA.text}, called + impl);

    const Lines bad = {Line('E', "OnRemoteRequest: read privacy indicator from parcel failed.")};
    for (const Bytes& record : {I32(0) + DATA.bytes, Present(DATA).substr(0, 12), Bytes()}) {
        ExpectServed(-1, 0, SWITCH_TOKEN + record, {}, called + bad);
    }
    {
        const Failing failing(1);
        ExpectServed(-1, 0, SWITCH_TOKEN + Present(DATA), {},
            called + Lines{Line('E', "Unmarshalling: new Indicator failed.")} + bad);
    }
    for (const Bytes& token : FOREIGN) {
        const Lines refused = called + Lines{Line('E', "OnRemoteRequest: verify descriptor failed")};
        ExpectServed(10, 0, token + Present(DATA), {}, refused);
        ExpectServed(10, 5, token + Present(DATA), {}, refused);
    }
    ExpectServed(305, 1, SWITCH_TOKEN + Present(DATA), {}, called);
    stub = new IndicatorSwitchListenerStubImpl({});
    EXPECT_EQ(logs.Take().back(), Line('I', "~" + name + ": destroy " + name));
    ExpectServed(0, 0, SWITCH_TOKEN + Present(DATA), {}, called + impl);
}

TEST_F(ListenerTest, EventProxySendsAndWaits)
{
    const auto failure = [](const char* message) {
        return Lines{Line('E', std::string("OnPrivacyEventChanged: ") + message)};
    };
    const auto proxy = iface_cast<EventListener>(remote);
    const Infos infos(2, *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes));
    proxy->OnPrivacyEventChanged("audio", infos);
    ExpectSent(1, 0, EVENT_HEAD + I32(2) + Times(2, Present(REMIND_INFO)));
    proxy->OnPrivacyEventChanged("", {});
    ExpectSent(2, 0, EVENT_TOKEN + Str("") + I32(0));
    proxy->OnPrivacyEventChanged("audio", Infos(6000, infos[0])); // As far as it fits.
    const Bytes fitting = EVENT_HEAD + I32(6000) + Times(5000, Present(REMIND_INFO));
    EXPECT_EQ(remote->request.compare(0, fitting.size(), fitting), 0);
    EXPECT_GT(remote->request.size(), 204800 - Present(REMIND_INFO).size());
    {
        const Failing failing(0, 2); // The count: what can be written is sent all the same.
        proxy->OnPrivacyEventChanged("audio", infos);
        ExpectSent(4, 0, EVENT_HEAD + Times(2, Present(REMIND_INFO)));
    }
    EXPECT_EQ(logs.Take(), Lines());
    remote->result = 29189;
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), failure("Send request failed!"));
    proxy->OnPrivacyEventChanged(std::string(300000, 'x'), infos);
    EXPECT_EQ(logs.Take(), failure("Write data type failed!"));
    PrivacyEventListenerProxy(nullptr).OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), failure("Remote is nullptr!"));
    const Failing failing(0, Failing::TOKEN);
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), failure("Write interface token failed!"));
    EXPECT_EQ(remote->calls, 5);
}

TEST_F(ListenerTest, EventStubHandsTheReadableRecordsToItsFunction)
{
    stub = new PrivacyEventListenerStubImpl([this](const std::string& dataType, const Infos& infos) {
        heard.push_back(dataType);
        for (const PrivacyEventRemindInfo& info : infos) {
            heard.push_back(info.ToString());
        }
    });
    const Bytes record = Present(REMIND_INFO);
    const Lines two = {"audio", REMIND_INFO.text, REMIND_INFO.text};
    const std::string skipped = Line('D', "OnRemoteRequest: privacyEventRemindInfo is null");
    ExpectServed(0, 0, EVENT_HEAD + I32(2) + record + I32(2) + REMIND_INFO.bytes, two, {});
    ExpectServed(0, 0, EVENT_HEAD + I32(3) + record + I32(0) + record, two, {skipped});
    ExpectServed(
        0, 0, EVENT_HEAD + I32(102400) + Times(102400, record), Lines{"audio"} + Lines(102400, REMIND_INFO.text), {});
    ExpectServed(0, 0, EVENT_HEAD + I32(102400), {"audio"}, Lines(102400, skipped));
    for (size_t size = 0; size < record.size(); ++size) {
        ExpectServed(0, 0, EVENT_HEAD + I32(1) + record.substr(0, size), {"audio"}, {skipped});
    }
    {
        const Failing failing(1);
        ExpectServed(0, 0, EVENT_HEAD + I32(1) + record, {"audio"},
            {Tagged('E', "privacyIndicator]Unmarshalling: new PrivacyEventRemindInfo failed."), skipped});
    }
    const Lines badCount = {Line('E', "OnRemoteRequest: error privacyEventRemindInfo size!")};
    for (const int32_t count : {0, -5, INT_MIN, 102401, INT_MAX}) {
        const Bytes counted = I32(count) + record;
        ExpectServed(22, 0, EVENT_HEAD + counted, {}, badCount);
    }
    const Bytes rest = Str("audio") + I32(1) + record;
    for (const Bytes& token : FOREIGN) {
        ExpectServed(1, 0, token + rest, {}, {});
        ExpectServed(1, 5, token + rest, {}, {});
    }
    ExpectServed(305, 1, EVENT_HEAD + I32(1) + record, {}, {});
    stub = new PrivacyEventListenerStubImpl({});
    ExpectServed(0, 0, EVENT_HEAD + I32(1) + record, {}, {});
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
