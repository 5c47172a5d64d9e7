// SPDX-License-Identifier: Apache-2.0
#include "indicator_size.h"

#include <tuple>

#include "format_utils.h"
#include "new_record.h"
#include "parcel_fields.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator {

namespace {

const auto TAG = Util::FileTag("PrivacyIndicator");

template <typename Self>
auto Fields(Self& record)
{
    return std::tie(record.width, record.height);
}

} // namespace

bool IndicatorSize::Marshalling(Parcel& parcel) const { return WriteFields(parcel, Fields(*this)); }

IndicatorSize* IndicatorSize::Unmarshalling(Parcel& parcel) noexcept
{
    return ReadRecord(parcel, NewRecord<IndicatorSize>(TAG, "new IndicatorSize failed."), Fields<IndicatorSize>);
}

std::string IndicatorSize::ToString() const noexcept
{
    return Util::Concat("IndicatorSize{width=", width, ", height=", height, "}");
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Indicator
