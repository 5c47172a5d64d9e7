// SPDX-License-Identifier: Apache-2.0
#include <climits>

#include <gtest/gtest.h>

#include "failing.h"
#include "fake_remote.h"
#include "log_capture.h"
#include "privacy_event_listener_proxy.h"
#include "privacy_event_listener_stub_impl.h"
#include "samples.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {
namespace {

using Infos = std::vector<PrivacyEventRemindInfo>;
using Privacy::PrivacyEventListenerProxy;
using Privacy::PrivacyEventListenerStubImpl;

const std::u16string DESCRIPTOR = u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener";
const Bytes HEAD = Token(DESCRIPTOR) + Str("audio");

Lines Failure(const std::string& message)
{
    return {Tagged('E', "PrivacyIndicator]OnPrivacyEventChanged: " + message)};
}

TEST(PrivacyEventListenerTest, ProxySendsAndWaits)
{
    LogCapture logs;
    const sptr<FakeRemote> remote = new FakeRemote();
    const auto proxy = iface_cast<Privacy::PrivacyEventListenerIntf>(remote);
    const Infos infos(2, *Read<PrivacyEventRemindInfo>(REMIND_INFO.bytes));
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(remote->code, 0U);
    EXPECT_EQ(remote->flags, 0);
    EXPECT_EQ(remote->waitTime, 8);
    EXPECT_EQ(remote->request, HEAD + I32(2) + Times(2, Present(REMIND_INFO)));
    proxy->OnPrivacyEventChanged("", {});
    EXPECT_EQ(remote->request, Token(DESCRIPTOR) + Str("") + I32(0));
    proxy->OnPrivacyEventChanged("audio", Infos(6000, infos[0])); // As far as it fits.
    const Bytes fitting = HEAD + I32(6000) + Times(5000, Present(REMIND_INFO));
    EXPECT_EQ(remote->request.compare(0, fitting.size(), fitting), 0);
    EXPECT_GT(remote->request.size(), 204800 - Present(REMIND_INFO).size());
    EXPECT_EQ(remote->calls, 3);
    const Failing failing;
    Failing::write = 2; // The count: what can be written is sent all the same.
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(remote->request, HEAD + Times(2, Present(REMIND_INFO)));
    Failing::write.reset();
    EXPECT_EQ(logs.Take(), Lines());

    remote->result = 29189;
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), Failure("Send request failed!"));
    EXPECT_EQ(remote->calls, 5);
    proxy->OnPrivacyEventChanged(std::string(300000, 'x'), infos);
    EXPECT_EQ(logs.Take(), Failure("Write data type failed!"));
    PrivacyEventListenerProxy(nullptr).OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), Failure("Remote is nullptr!"));
    Failing::write = Failing::TOKEN;
    proxy->OnPrivacyEventChanged("audio", infos);
    EXPECT_EQ(logs.Take(), Failure("Write interface token failed!"));
    EXPECT_EQ(remote->calls, 5);
}

class PrivacyEventListenerStubTest : public testing::Test {
protected:
    // `call` is what the function object hears: the data type and the records. No call if it is empty.
    void ExpectServed(int32_t result, uint32_t code, const Bytes& request, const Lines& call, const Lines& lines)
    {
        RawParcel data(request);
        RawParcel reply;
        MessageOption option;
        heard.clear();
        EXPECT_EQ(stub->SendRequest(code, data, reply, option), result);
        EXPECT_EQ(heard, call);
        EXPECT_EQ(logs.Take(), lines);
        EXPECT_EQ(reply.GetDataSize(), 0U);
    }

    Lines heard;
    LogCapture logs;
    sptr<IRemoteObject> stub =
        new PrivacyEventListenerStubImpl([this](const std::string& dataType, const Infos& infos) {
            heard.push_back(dataType);
            for (const PrivacyEventRemindInfo& info : infos) {
                heard.push_back(info.ToString());
            }
        });
    const std::string skipped = Tagged('D', "PrivacyIndicator]OnRemoteRequest: privacyEventRemindInfo is null");
};

TEST_F(PrivacyEventListenerStubTest, HandsTheRecordsToTheFunction)
{
    Lines call = {"audio", REMIND_INFO.text, REMIND_INFO.text};
    ExpectServed(0, 0, HEAD + I32(2) + Present(REMIND_INFO) + I32(2) + REMIND_INFO.bytes, call, {});
    call.resize(102401, REMIND_INFO.text);
    ExpectServed(0, 0, HEAD + I32(102400) + Times(102400, Present(REMIND_INFO)), call, {});
    stub = new PrivacyEventListenerStubImpl({});
    ExpectServed(0, 0, HEAD + I32(1) + Present(REMIND_INFO), {}, {});
}

TEST_F(PrivacyEventListenerStubTest, SkipsRecordsThatItCannotRead)
{
    ExpectServed(0, 0, HEAD + I32(3) + Present(REMIND_INFO) + I32(0) + Present(REMIND_INFO),
        {"audio", REMIND_INFO.text, REMIND_INFO.text}, {skipped});
    for (size_t size = 0; size < Present(REMIND_INFO).size(); ++size) {
        ExpectServed(0, 0, HEAD + I32(1) + Present(REMIND_INFO).substr(0, size), {"audio"}, {skipped});
    }
    ExpectServed(0, 0, HEAD + I32(102400), {"audio"}, Lines(102400, skipped));
    const Failing failing;
    Failing::nthNew = 1;
    ExpectServed(0, 0, HEAD + I32(1) + Present(REMIND_INFO), {"audio"},
        {Tagged('E', "privacyIndicator]Unmarshalling: new PrivacyEventRemindInfo failed."), skipped});
}

TEST_F(PrivacyEventListenerStubTest, RefusesCountsTokensAndCodes)
{
    const Lines badSize = {Tagged('E', "PrivacyIndicator]OnRemoteRequest: error privacyEventRemindInfo size!")};
    for (const int32_t count : {0, -5, INT_MIN, 102401, INT_MAX}) {
        ExpectServed(22, 0, HEAD + I32(count) + Present(REMIND_INFO), {}, badSize);
    }
    const Bytes rest = Str("audio") + I32(1) + Present(REMIND_INFO);
    for (const auto& foreign : {DESCRIPTOR + u"x", DESCRIPTOR.substr(1), u"O" + DESCRIPTOR.substr(1)}) {
        ExpectServed(1, 0, Token(foreign) + rest, {}, {});
        ExpectServed(1, 5, Token(foreign) + rest, {}, {});
    }
    ExpectServed(305, 1, Token(DESCRIPTOR) + rest, {}, {});
}

} // namespace
} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test
