// SPDX-License-Identifier: Apache-2.0
// A switch listener's stub: any request.
// Covers: ipc/indicator_switch_listener_stub.cpp ipc/indicator_switch_listener_stub_impl.cpp
#include "indicator_switch_listener_stub_impl.h"
#include "stub_request.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ListenerTrial trial(Input(data, size), Token(u"ohos.korvane.quenlar.IndicatorSwitchListenerIntf"));
    Reader& reader = trial.request.reader;
    const bool isReadable = trial.isForStub && reader.Read("?") && reader.Read(Layout::DATA) && trial.failingNew != 1;
    const int32_t result = !trial.request.isForStub ? 10 : trial.code != 0 ? 305 : isReadable ? 0 : -1;
    Bytes heard;
    trial.Expect<Indicator::IndicatorSwitchListenerStubImpl>(
        result, [&heard](const Indicator::IndicatorData& event) { heard = Marshalled(event); });
    Require(heard == (isReadable && trial.hasFunction ? reader.Take() : ""), "the function hears what was sent");
    return 0;
}
