// SPDX-License-Identifier: Apache-2.0
// Every record: what is read of arbitrary bytes, and what is written of that.
// Covers: model/*.cpp model/*.h
#include <iterator>
#include <memory>

#include "failing.h"
#include "indicator_data.h"
#include "indicator_position.h"
#include "indicator_size.h"
#include "input.h"
#include "permission_usage_duration.h"
#include "permission_usage_duration_query.h"
#include "privacy_event_detail.h"
#include "privacy_event_remind_info.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

constexpr size_t MAX_CUT = 256; // Longer ones are cut by the input alone, since every cut takes its time.

// A write that does not fit fails, and leaves a parcel that has its first parts at most.
template <typename T>
void WriteIntoLittle(const T& record, const Bytes& whole, size_t room)
{
    MessageParcel parcel;
    const size_t filled = parcel.GetMaxCapacity() - room;
    parcel.WriteBuffer(Bytes(filled, 'x').data(), filled);
    Require(record.Marshalling(parcel) == (whole.size() <= room), "a record is written where it fits");
    const Bytes written = BytesOf(parcel).substr(filled);
    Require(whole.compare(0, written.size(), written) == 0, "a write that fails stops between two fields");
}

template <typename T>
void Check(Input& input, const char* layout)
{
    const int failingNew = input.OneIn(16) ? 1 : 0;
    const bool hasLittleRoom = input.OneIn(32);
    const size_t room = size_t{input.Byte()} / 4 * 4;
    RawParcel parcel(input.Rest());
    Reader reader(BytesOf(parcel));
    const bool isReadable = reader.Read(layout);

    Failing::nthNew = failingNew;
    const std::unique_ptr<T> record(T::Unmarshalling(parcel));
    Failing::nthNew = 0;
    Require((record != nullptr) == (isReadable && failingNew == 0), "a record is read if it is whole and well-formed");
    Require(parcel.GetReadPosition() == (failingNew != 0 ? 0 : reader.cursor), "the cursor is where the reading ended");
    if (record == nullptr) {
        return;
    }
    const Bytes written = Marshalled(*record);
    Require(written == reader.Take(), "what was read is written as it was");
    RawParcel again(written);
    const std::unique_ptr<T> copy(T::Unmarshalling(again));
    Require(copy != nullptr && again.GetReadableBytes() == 0, "what was written can be read");
    Require(copy->ToString() == record->ToString(), "what was written means the same");
    if (hasLittleRoom) {
        WriteIntoLittle(*record, written, room);
    }
    for (size_t size = 0; size < written.size() && written.size() < MAX_CUT; size += 4) {
        RawParcel cut(written.substr(0, size));
        Require(std::unique_ptr<T>(T::Unmarshalling(cut)) == nullptr, "a record that lacks its end is refused");
        WriteIntoLittle(*record, written, size);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const struct {
        void (*check)(Input&, const char*);
        const char* layout;
    } RECORDS[] = {
        {Check<Indicator::IndicatorData>, Layout::DATA},
        {Check<Indicator::IndicatorPosition>, Layout::POSITION},
        {Check<Indicator::IndicatorSize>, Layout::SIZE},
        {Check<Privacy::PrivacyEventDetail>, Layout::DETAIL},
        {Check<Privacy::PrivacyEventRemindInfo>, Layout::REMIND_INFO},
        {Check<Record::PermissionUsageDuration>, Layout::DURATION},
        {Check<Record::PermissionUsageDurationQuery>, Layout::QUERY},
    };
    Input input(data, size);
    const auto& record = RECORDS[input.Byte() % std::size(RECORDS)];
    record.check(input, record.layout);
    return 0;
}
