// SPDX-License-Identifier: Apache-2.0
#include "service_request.h"

#include "string_ex.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

int32_t ServiceRequest::ReadInt32() { return IsGood() ? data_.ReadInt32() : 0; }

std::string ServiceRequest::ReadString() { return IsGood() ? Str16ToStr8(data_.ReadString16()) : std::string(); }

int32_t ServiceRequest::WriteResult(int32_t result)
{
    if (!reply_.WriteInt32(result)) {
        Fail(PrivacyIndicatorServiceIntf::INVALID_VALUE, "Write Int32 failed!");
    }
    return Error();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
