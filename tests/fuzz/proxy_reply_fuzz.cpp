// SPDX-License-Identifier: Apache-2.0
// The service's reply to a query of the proxy's: any bytes.
// Covers: ipc/service_call.h
#include "fake_service.h"
#include "input.h"
#include "privacy_indicator_service_intf_proxy.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

constexpr int32_t MAX_RECORDS = 102400;

template <typename T, typename Ask>
void Check(const Bytes& answer, const std::string& layout, const Ask& ask)
{
    std::vector<T> records;
    const int32_t result = ask(records);
    RawParcel parcel(answer);
    const int32_t told = parcel.ReadInt32();
    const int32_t count = parcel.ReadInt32();
    Reader reader(answer.substr(std::min<size_t>(answer.size(), 8)));
    int32_t expected = told;
    size_t read = 0;
    if (told == 0) {
        expected = count > MAX_RECORDS ? 5 : 0;
        for (int32_t i = 0; expected == 0 && i < count; ++i) {
            expected = reader.Read("?" + layout) ? 0 : 5;
            if (expected == 0) {
                Require(read < records.size() && Marshalled(records[read]) == reader.Take(),
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
    const char* const layouts[] = {Layout::DETAIL, Layout::DETAIL, Layout::DATA, Layout::DURATION};
    const std::string layout = layouts[what % 4];
    const sptr<FakeRemote> remote = new FakeRemote();
    remote->answer = Padded(input.Rest());
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
