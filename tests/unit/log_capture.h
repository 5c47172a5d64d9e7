// SPDX-License-Identifier: Apache-2.0
#ifndef LOG_CAPTURE_H
#define LOG_CAPTURE_H

#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "hilog/log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

using Lines = std::vector<std::string>;

/** A line of the service's interface, as LogCapture shows it. */
inline Lines Labelled(const std::string& message)
{
    return {"E 3 0xd005610 PrivacyIndicatorService: " + message};
}

/** A line under a source file's tag, whose end is "module]function: message". */
inline std::string Tagged(char level, const std::string& end)
{
    return std::string(1, level) + " 3 0xd005610 KRV: [QNL][" + end;
}

/** A line of the client's. */
inline std::string Line(char level, const std::string& end)
{
    return Tagged(level, "PrivacyIndicator]" + end);
}

inline Lines operator+(Lines lines, const Lines& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/** Collects what the library logs while it lives: level, type, domain, tag and text of each line. One at a time. */
class LogCapture {
public:
    LogCapture()
    {
        Take();
        LOG_SetCallback([](LogType type, LogLevel level, unsigned int domain, const char* tag, const char* message) {
            const std::string name = tag;
            if (name == "KRV" || name == "PrivacyIndicatorService") {
                std::ostringstream line;
                line << "???DIWEF"[level] << ' ' << type << " 0x" << std::hex << domain << ' ' << tag << ": "
                     << message;
                const std::lock_guard<std::mutex> lock(mutex);
                lines.push_back(line.str());
            }
        });
    }

    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    ~LogCapture()
    {
        LOG_SetCallback(nullptr);
    }

    /** The lines since the last time. */
    Lines Take()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(lines, {});
    }

private:
    static inline std::mutex mutex;
    static inline Lines lines;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // LOG_CAPTURE_H
