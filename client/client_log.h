// SPDX-License-Identifier: Apache-2.0
#ifndef CLIENT_LOG_H
#define CLIENT_LOG_H

#include "tagged_log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** The one tag that all source files of the client log under. */
inline const Util::OstLog::Tag CLIENT_TAG = Util::FileTag("PrivacyIndicator");

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // CLIENT_LOG_H
