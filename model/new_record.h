// SPDX-License-Identifier: Apache-2.0
#ifndef NEW_RECORD_H
#define NEW_RECORD_H

#include <cstddef>
#include <memory>
#include <new>

#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** A new record for Unmarshalling to fill; null, with `failure` logged, if there is no memory for it. */
template <typename T, size_t SIZE>
std::unique_ptr<T> NewRecord(const Util::OstLog::Tag& tag, const char (&failure)[SIZE])
{
    std::unique_ptr<T> record(new (std::nothrow) T());
    if (record == nullptr) {
        Util::LogError(tag, "Unmarshalling", failure);
    }
    return record;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // NEW_RECORD_H
