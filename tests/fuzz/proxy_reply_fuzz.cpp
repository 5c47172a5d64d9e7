// SPDX-License-Identifier: Apache-2.0
// The service's reply to a query of the proxy's: any bytes.
// Covers: ipc/service_call.h
#include "fake_service.h"
#include "layout.h"
#include "privacy_indicator_service_intf_proxy.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

constexpr int32_t MAX_RECORDS = 102400;

// A reply as the service would write it, but for what the input breaks.
Bytes MakeReply(Input& input, const std::string& layout)
{
    const uint8_t count = input.Byte() % 4;
    Bytes layouts;
    for (int i = 0; i < count; ++i) {
        layouts += "?" + layout;
    }
    const Bytes head =
        I32(input.OneIn(8) ? input.Number<int32_t>() : 0) + I32(input.OneIn(8) ? input.Number<int32_t>() : count);
    return head + Layout::MakeCut(input, layouts);
}

template <typename T, typename Ask>
void Check(const Bytes& answer, const std::string& layout, const Ask& ask)
{
    std::vector<T> records;
    const int32_t result = ask(records);
    RawParcel parcel(answer);
    const int32_t told = parcel.ReadInt32();
    const int32_t count = parcel.ReadInt32();
    Layout::Reader reader(answer.substr(std::min<size_t>(answer.size(), 8)));
    int32_t expected = told;
    size_t read = 0;
    if (told == 0) {
        expected = count > MAX_RECORDS ? 5 : 0;
        for (int32_t i = 0; expected == 0 && i < count; ++i) {
            expected = reader.Read("?" + layout) ? 0 : 5;
            if (expected == 0) {
                Require(read < records.size() && Layout::Marshalled(records[read]) == reader.Take(),
                    "a record is what the reply says");
                ++read;
            }
        }
    }
    Require(result == expected, "the result is the service's, or says that the reply is no good");
    Require(read == records.size(), "the records up to the first bad one are there");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const uint8_t what = input.Byte();
    const bool isMade = input.Byte() < 0xC0;
    const char* const layouts[] = {Layout::DETAIL, Layout::DETAIL, Layout::DATA, Layout::DURATION};
    const std::string layout = layouts[what % 4];
    const sptr<FakeRemote> remote = new FakeRemote();
    remote->answer = Padded(isMade ? MakeReply(input, layout) : input.Rest());
    PrivacyIndicatorServiceIntfProxy proxy(remote);
    switch (what % 4) {
    case 0:
        Check<PrivacyEventDetail>(
            remote->answer, layout, [&](auto& out) { return proxy.GetPrivacyEventDetails(1, out); });
        break;
    case 1:
        Check<PrivacyEventDetail>(remote->answer, layout,
            [&](auto& out) { return proxy.GetPrivacyEventDetailsByPrivacySensorType(1, 2, out); });
        break;
    case 2:
        Check<IndicatorData>(remote->answer, layout, [&](auto& out) { return proxy.GetActiveIndicators(out); });
        break;
    default:
        Check<PermissionUsageDuration>(remote->answer, layout,
            [&](auto& out) { return proxy.GetPermissionUsageDurationSummary(PermissionUsageDurationQuery(), out); });
        break;
    }
    return 0;
}
