// SPDX-License-Identifier: Apache-2.0
#ifndef SERVICE_LOG_H
#define SERVICE_LOG_H

#include "hilog/log.h"
#include "privacy_indicator_service_intf.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator {

/** Logs a failure of the service's proxy or stub. The message is the format, and has no arguments. */
inline void LogServiceError(const char* message)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security" // Every message is a literal of this library's.
    HiviewDFX::HiLog::Error(PrivacyIndicatorServiceIntf::LABEL, message);
#pragma GCC diagnostic pop
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator

#endif // SERVICE_LOG_H
