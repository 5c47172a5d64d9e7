// SPDX-License-Identifier: Apache-2.0
// A privacy event listener's stub: any request.
// Covers: ipc/privacy_event_listener_stub.cpp ipc/privacy_event_listener_stub_impl.cpp
#include "failing.h"
#include "layout.h"
#include "privacy_event_listener_stub_impl.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

// A data type, a count and some records, which need not be as many as the count says.
Bytes MakeEvents(Input& input)
{
    const uint8_t how = input.Byte();
    const int32_t records = how % 4;
    const Bytes dataType = Layout::Make(input, "s");
    const int32_t count = how >= 0xC0 ? input.Number<int32_t>() : records;
    return dataType + I32(count) + Layout::MakeCut(input, Times(records, std::string("?") + Layout::REMIND_INFO));
}

struct Events {
    bool isCountGood = false;
    Bytes dataType;
    Bytes records;
};

// What the stub should make of a request, behind its token.
Events Expect(Layout::Reader& reader, int failingNew)
{
    Events events;
    events.dataType = reader.Read("s") ? reader.Take() : Str("");
    int32_t count = 0;
    if (reader.Read("i")) {
        std::memcpy(&count, reader.Take().data(), sizeof(count));
    }
    events.isCountGood = count >= 1 && count <= 102400;
    for (int32_t i = 0; events.isCountGood && i < count; ++i) {
        const size_t before = reader.Position();
        const bool isWanted = reader.Read("?") && --failingNew != 0;
        if (isWanted && reader.Read(Layout::REMIND_INFO)) {
            events.records += reader.Take();
        } else {
            reader.Take();
            // Where nothing was read, nothing will be.
            i = reader.Position() == before ? count : i;
        }
    }
    return events;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const bool isStructured = input.Byte() % 2 == 0;
    const uint32_t code = input.OneIn(8) ? input.Number<uint32_t>() : 0;
    const int failingNew = input.OneIn(16) ? 1 + input.Byte() % 4 : 0;
    const Bytes token = Token(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener");
    RawParcel request(isStructured ? token + MakeEvents(input) : input.Rest());

    Layout::Reader reader(BytesOf(request));
    const bool isMeantForIt = reader.Read("iiu") && reader.Take().substr(8) == token.substr(8);
    const Events expected = isMeantForIt && code == 0 ? Expect(reader, failingNew) : Events();
    const int32_t expectedResult = !isMeantForIt ? 1 : code != 0 ? 305 : expected.isCountGood ? 0 : 22;

    Events heard;
    const bool hasFunction = input.Byte() < 0xF0;
    const auto hear = [&heard](const std::string& dataType, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) {
        heard.dataType = Str(dataType);
        for (const auto& info : infos) {
            heard.records += Layout::Marshalled(info);
        }
    };
    Privacy::PrivacyEventListenerStubImpl stub(
        hasFunction ? Privacy::PrivacyEventListenerStubImpl::Callback(hear) : nullptr);
    MessageParcel reply;
    MessageOption option;
    Failing::nthNew = failingNew;
    const int32_t result = stub.OnRemoteRequest(code, request, reply, option);
    Failing::nthNew = 0;

    Require(result == expectedResult, "the stub answers as its documentation says");
    Require(request.GetReadPosition() <= request.GetDataSize(), "the cursor stays within the request");
    Require(reply.GetDataSize() == 0, "the reply is left empty");
    const bool isHeard = result == 0 && hasFunction;
    Require(heard.dataType == (isHeard ? expected.dataType : ""), "the function hears the data type");
    Require(heard.records == (isHeard ? expected.records : ""), "the function hears every record that is whole");
    return 0;
}
