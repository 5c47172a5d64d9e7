// SPDX-License-Identifier: Apache-2.0
#ifndef TAGGED_LOG_H
#define TAGGED_LOG_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "hilog/log.h"
#include "ost_log.h"

namespace OHOS::Korvane::Quenlar::Util {

/** A source file's tag: every line that is logged under it shows `module`. */
inline OstLog::Tag FileTag(const std::string& module)
{
    return OstLog::Tag::Create(module, OstLog::Tag::DEFAULT_COMPONENT_TAG, OstLog::Tag::DEFAULT_SUB_SYSTEM_TAG);
}

/** Whether a line of `level` reaches the log. If not, the texts of its placeholders need not be made. */
inline bool IsLoggable(LogLevel level, const OstLog::Tag& tag)
{
    return HiLogIsLoggable(tag.GetDomain(), tag.GetSubSystemTag().c_str(), level);
}

/**
 * Prints "[component][module]function: message". `function` is the name that the line shows, which is not always the
 * name of the function that runs. `args` belong to the message's own placeholders. Allocates nothing, since a line may
 * report that memory has run out.
 */
template <size_t SIZE, typename... Args>
void LogLine(LogLevel level, const OstLog::Tag& tag, const char* function, const char (&message)[SIZE], Args... args)
{
    if (!IsLoggable(level, tag)) {
        return;
    }
    constexpr char PREFIX[] = "[%{public}s][%{public}s]%{public}s: ";
    constexpr size_t PREFIX_LENGTH = sizeof(PREFIX) - 1;
    char format[PREFIX_LENGTH + SIZE];
    std::memcpy(format, PREFIX, PREFIX_LENGTH);
    std::memcpy(format + PREFIX_LENGTH, message, SIZE);
    HiLogPrint(static_cast<LogType>(static_cast<uint8_t>(tag.GetLogType())), level, tag.GetDomain(),
        tag.GetSubSystemTag().c_str(), format, tag.GetComponentTag().c_str(), tag.GetModuleTag().c_str(), function,
        args...);
}

template <size_t SIZE, typename... Args>
void LogDebug(const OstLog::Tag& tag, const char* function, const char (&message)[SIZE], Args... args)
{
    LogLine(LOG_DEBUG, tag, function, message, args...);
}

template <size_t SIZE, typename... Args>
void LogInfo(const OstLog::Tag& tag, const char* function, const char (&message)[SIZE], Args... args)
{
    LogLine(LOG_INFO, tag, function, message, args...);
}

template <size_t SIZE, typename... Args>
void LogWarn(const OstLog::Tag& tag, const char* function, const char (&message)[SIZE], Args... args)
{
    LogLine(LOG_WARN, tag, function, message, args...);
}

template <size_t SIZE, typename... Args>
void LogError(const OstLog::Tag& tag, const char* function, const char (&message)[SIZE], Args... args)
{
    LogLine(LOG_ERROR, tag, function, message, args...);
}

} // namespace OHOS::Korvane::Quenlar::Util

#endif // TAGGED_LOG_H
