// SPDX-License-Identifier: Apache-2.0
// A privacy event listener's stub: any request.
// Covers: ipc/privacy_event_listener_stub.cpp ipc/privacy_event_listener_stub_impl.cpp
#include "privacy_event_listener_stub_impl.h"
#include "stub_request.h"

using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ListenerTrial trial(
        Input(data, size), Token(u"ohos.korvane.quenlar.PrivacyIndicator.Privacy.IPrivacyEventListener"));
    Reader& reader = trial.request.reader;
    reader.Take();
    const Bytes dataType = reader.Read("s") ? reader.Take() : Str("");
    const int32_t count = reader.Read("i") ? Reader::Value(reader.Take()) : 0;
    if (count > 999 && count < 102400) {
        return 0; // As 999, but slow.
    }
    const bool isCountGood = trial.isForStub && count >= 1 && count <= 102400;
    Bytes records;
    int failingNew = trial.failingNew;
    for (int32_t i = 0; isCountGood && i < count; ++i) {
        const size_t before = reader.cursor;
        const bool isRead = reader.Read("?") && --failingNew != 0 && reader.Read(Layout::REMIND_INFO);
        const Bytes record = reader.Take();
        records += isRead ? record : "";
        i = reader.cursor == before ? count : i; // Where nothing was read, nothing will be.
    }

    Bytes heardType;
    Bytes heard;
    const int32_t result = !trial.request.isForStub ? 1 : trial.code != 0 ? 305 : isCountGood ? 0 : 22;
    trial.Expect<Privacy::PrivacyEventListenerStubImpl>(
        result, [&](const std::string& type, const std::vector<Privacy::PrivacyEventRemindInfo>& infos) {
            heardType = Str(type);
            for (const auto& info : infos) {
                heard += Marshalled(info);
            }
        });
    const bool isHeard = isCountGood && trial.hasFunction;
    Require(heardType == (isHeard ? dataType : ""), "the function hears the data type");
    Require(heard == (isHeard ? records : ""), "the function hears every record that is whole");
    return 0;
}
