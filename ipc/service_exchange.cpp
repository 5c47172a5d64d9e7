// SPDX-License-Identifier: Apache-2.0
#include "service_exchange.h"

#include "hilog/log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

int32_t ServiceExchange::Fail(int32_t error, const char* failure)
{
    if (IsGood()) {
        constexpr HiviewDFX::HiLogLabel LABEL = PrivacyIndicatorServiceIntf::LABEL;
        // Member by member: g++ cannot pass a device's HiLogLabel to HiLog::Error.
        HiLogPrint(LABEL.type, LOG_ERROR, LABEL.domain, LABEL.tag, failure);
        error_ = error;
    }
    return error_;
}

bool ServiceExchange::CheckCount(int64_t count)
{
    if (count > vectorSizeLimit_) {
        Fail(PrivacyIndicatorServiceIntf::INVALID_DATA, "The vector/array size exceeds the security limit!");
    }
    return IsGood();
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator
