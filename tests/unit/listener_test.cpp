// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "fake_service.h"
#include "indicator_switch_listener_proxy.h"
#include "indicator_switch_listener_stub_impl.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Indicator::IndicatorSwitchListenerStubImpl;
using Infos = std::vector<PrivacyEventRemindInfo>;
using Privacy::PrivacyEventListenerStubImpl;

class ListenerTest : public testing::Test {
protected:
    // What the stub's function heard since the last time.
    Lines Heard()
    {
        return std::exchange(heard, {});
    }

    const sptr<FakeRemote> remote = new FakeRemote(); // Between a proxy and a stub.
    Lines heard;
    LogCapture logs;
};

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
    EXPECT_EQ(logs.Take(), Lines{Line('I', proxyName + ": create " + proxyName, "service")});
    remote->behind = new IndicatorSwitchListenerStubImpl([this](const auto& got) { heard = {got.ToString()}; });
    EXPECT_EQ(logs.Take(), Lines{Line('I', stubName + ": create " + stubName)});
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 1, 8}));
    EXPECT_EQ(remote->request, Token(u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf") + Present(DATA));
    EXPECT_EQ(Heard(), Lines{DATA.text});
    EXPECT_EQ(logs.Take(), called + impl + end);

    remote->whenCalled = [] { Failing::nthNew = 1; };
    proxy->OnSwitchChanged(*data);
    remote->whenCalled = [] {};
    const Lines unreadable = {Line('E', "Unmarshalling: new Indicator failed."),
        Line('E', "OnRemoteRequest: read privacy indicator from parcel failed.")};
    EXPECT_EQ(logs.Take(), called + unreadable + proxyLine("SendRequest is failed, error code: -1.", 'E') + end);
    for (const auto& [value, message] : {std::make_pair(0x12345678, "Write parcelable failed  in proxy."),
             std::make_pair(Failing::TOKEN, "WriteInterfaceToken failed")}) {
        const Failing failing(0, value); // The record's first int32, or the token's.
        proxy->OnSwitchChanged(*data);
        EXPECT_EQ(logs.Take(), begin + proxyLine(message, 'E'));
    }
    iface_cast<EventListener>(remote)->OnPrivacyEventChanged("", {});
    EXPECT_EQ(logs.Take().at(1), Line('E', "OnRemoteRequest: verify descriptor failed"));
    EXPECT_EQ(remote->calls, 3);
    EXPECT_EQ(Heard(), Lines());

    remote->behind = new IndicatorSwitchListenerStubImpl({});
    EXPECT_EQ(logs.Take().back(), Line('I', "~" + stubName + ": destroy " + stubName));
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), called + impl + end);
    proxy = nullptr;
    EXPECT_EQ(logs.Take(), Lines{Line('I', "~" + proxyName + ": destroy " + proxyName, "service")});
    proxy = new Indicator::IndicatorSwitchListenerProxy(nullptr);
    logs.Take();
    proxy->OnSwitchChanged(*data);
    EXPECT_EQ(logs.Take(), written + proxyLine("remote is null!", 'E'));
}

TEST_F(ListenerTest, EventsAreSentAndWaitedFor)
{
    remote->behind = new PrivacyEventListenerStubImpl([this](const std::string& dataType, const Infos& infos) {
        heard = {dataType, infos.empty() ? "" : infos.front().ToString(), std::to_string(infos.size())};
    });
    const auto proxy = iface_cast<EventListener>(remote);
    const auto expect = [this](EventListener& listener, const std::string& dataType, const Infos& infos,
                            const Lines& lines, const std::string& failure = "") {
        listener.OnPrivacyEventChanged(dataType, infos);
        EXPECT_EQ(
            logs.Take(), lines + (failure.empty() ? Lines() : Lines{Line('E', "OnPrivacyEventChanged: " + failure)}));
    };
    const Infos infos(2, *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes));
    const std::string skipped = Line('D', "OnRemoteRequest: privacyEventRemindInfo is null");
    const Lines badCount = {Line('E', "OnRemoteRequest: error privacyEventRemindInfo size!")};
    const Bytes head = Token(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener") + Str("audio");
    expect(*proxy, "audio", infos, {});
    EXPECT_EQ(remote->header, (std::vector<int64_t>{0, 0, 8}));
    EXPECT_EQ(remote->request, head + I32(2) + Times(2, Present(REMIND_INFO)));
    EXPECT_EQ(Heard(), (Lines{"audio", REMIND_INFO.text, "2"}));
    {
        const Failing failing(2);
        expect(*proxy, "audio", infos,
            {Line('E', "Unmarshalling: new PrivacyEventRemindInfo failed.", "privacyIndicator"), skipped});
        EXPECT_EQ(Heard(), (Lines{"audio", REMIND_INFO.text, "1"}));
    }
    // As many as fit are sent, and received.
    proxy->OnPrivacyEventChanged("audio", Infos(102400, infos[0]));
    const auto sent = static_cast<size_t>(std::stoi(Heard().at(2)));
    EXPECT_EQ(remote->request.find(head + I32(102400) + Times(static_cast<int>(sent), Present(REMIND_INFO))), 0U);
    EXPECT_EQ(logs.Take(), Lines(102400 - sent, skipped));
    expect(*proxy, "audio", Infos(102401, infos[0]), badCount, "Send request failed!");
    expect(*proxy, "audio", {}, badCount, "Send request failed!");
    {
        const Failing failing(0, 2); // The count: what can be written is sent all the same.
        proxy->OnPrivacyEventChanged("audio", infos);
        EXPECT_EQ(remote->request, head + Times(2, Present(REMIND_INFO)));
    }
    logs.Take();
    EXPECT_EQ(remote->calls, 6);
    expect(*proxy, std::string(300000, 'x'), infos, {}, "Write data type failed!");
    Privacy::PrivacyEventListenerProxy unconnected(nullptr);
    expect(unconnected, "audio", infos, {}, "Remote is nullptr!");
    const Failing failing(0, Failing::TOKEN);
    expect(*proxy, "audio", infos, {}, "Write interface token failed!");
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
