// SPDX-License-Identifier: Apache-2.0
#ifndef CLIENT_LOG_H
#define CLIENT_LOG_H

#include <vector>

#include "format_utils.h"
#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The tag that all source files of the client log under. */
inline const Util::OstLog::Tag CLIENT_TAG = Util::FileTag("PrivacyIndicator");

/** Logs each record's text on a line of its own, between quotes. */
template <typename Record>
void LogRecords(LogLevel level, const char* function, const std::vector<Record>& records)
{
    if (!Util::IsLoggable(level, CLIENT_TAG)) {
        return;
    }
    for (const Record& record : records) {
        Util::LogLine(level, CLIENT_TAG, function, "%{public}s", Util::Quoted(record.ToString()).c_str());
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // CLIENT_LOG_H
