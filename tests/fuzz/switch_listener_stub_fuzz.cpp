// SPDX-License-Identifier: Apache-2.0
// A switch listener's stub: any request.
// Covers: ipc/indicator_switch_listener_stub.cpp ipc/indicator_switch_listener_stub_impl.cpp
#include "failing.h"
#include "indicator_switch_listener_stub_impl.h"
#include "layout.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const bool isStructured = input.Byte() % 2 == 0;
    const uint32_t code = input.OneIn(8) ? input.Number<uint32_t>() : 0;
    const int failingNew = input.OneIn(16) ? 1 : 0;
    const Bytes token = Token(u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf");
    RawParcel request(isStructured ? token + Layout::MakeCut(input, std::string("?") + Layout::DATA) : input.Rest());

    Layout::Reader reader(BytesOf(request));
    const bool isMeantForIt = reader.Read("iiu") && reader.Take().substr(8) == token.substr(8);
    const bool isReadable = isMeantForIt && code == 0 && reader.Read(std::string("?") + Layout::DATA);
    const int32_t expected = !isMeantForIt ? 10 : code != 0 ? 305 : isReadable && failingNew == 0 ? 0 : -1;

    Bytes heard;
    const bool hasFunction = input.Byte() < 0xF0;
    const auto hear = [&heard](const Indicator::IndicatorData& event) { heard = Layout::Marshalled(event); };
    Indicator::IndicatorSwitchListenerStubImpl stub(
        hasFunction ? Indicator::IndicatorSwitchListenerStubImpl::Callback(hear) : nullptr);
    MessageParcel reply;
    MessageOption option;
    Failing::nthNew = failingNew;
    const int32_t result = stub.OnRemoteRequest(code, request, reply, option);
    Failing::nthNew = 0;

    Require(result == expected, "the stub answers as its documentation says");
    Require(request.GetReadPosition() <= request.GetDataSize(), "the cursor stays within the request");
    Require(reply.GetDataSize() == 0, "the reply is left empty");
    Require(heard == (result == 0 && hasFunction ? reader.Take() : ""), "the function hears what was sent");
    return 0;
}
