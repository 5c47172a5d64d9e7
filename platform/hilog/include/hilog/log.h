// SPDX-License-Identifier: Apache-2.0
#ifndef HILOG_LOG_H
#define HILOG_LOG_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

/** Who logs: an application, the start-up, or a core service. Printed as A, I and C. */
typedef enum {
    LOG_APP = 0,
    LOG_INIT = 1,
    LOG_CORE = 3,
} LogType;

/** How much a message matters. Printed as D, I, W, E and F; LOG_FATAL ends nothing. */
typedef enum {
    LOG_DEBUG = 3,
    LOG_INFO,
    LOG_WARN,
    LOG_ERROR,
    LOG_FATAL,
} LogLevel;

/**
 * Logs one message, cut at 4095 bytes, under a tag, cut at 31. `fmt` knows two conversions, s and d, each with a
 * privacy: "%{public}s" prints its argument, "%{private}s" and a bare "%s" print "<private>". Where another one is met,
 * the rest of `fmt` is printed as it stands.
 *
 * A message whose level reaches the environment's HILOG_LEVEL (D, I, W, E, F or OFF, read once; else I) goes to
 * standard error as one line and one write, with "?" for control characters. A line that standard error does not take
 * at once is lost: no logging thread waits or gets SIGPIPE, and the next line that is taken comes after their number.
 * Any thread may log. Allocates nothing and keeps errno. Returns 0, or -1 for a null `fmt`.
 */
int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, ...);

/** True if messages of `level` are printed, or if there is a callback; domain and tag make no difference. */
bool HiLogIsLoggable(unsigned int domain, const char* tag, LogLevel level);

/** Receives a message without the line's head. `tag` and `msg` are valid during the call only. */
typedef void (*LogCallback)(
    const LogType type, const LogLevel level, const unsigned int domain, const char* tag, const char* msg);

/**
 * Hands every message of every level, printed or not, to `callback` from now on, on the thread that logs; null ends
 * it. A call that has already begun on another thread may still be running when this returns.
 */
void LOG_SetCallback(LogCallback callback);

#ifdef __cplusplus
} // extern "C"

namespace OHOS::HiviewDFX {

/** What the messages of one source have in common. `tag` must outlive every use of the label. */
struct HiLogLabel {
    LogType type;
    unsigned int domain;
    const char* tag;
};

} // namespace OHOS::HiviewDFX
#endif

#endif // HILOG_LOG_H
