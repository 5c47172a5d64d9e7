// SPDX-License-Identifier: Apache-2.0
#ifndef SUPPORT_H
#define SUPPORT_H

#include <cstdio>
#include <sstream>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "failing.h"
#include "hilog/log.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

using Lines = std::vector<std::string>;

/** A line of the service's interface, as the journal has it. */
inline Lines Labelled(const std::string& message) { return {"E 3 0xd005610 PrivacyIndicatorService: " + message}; }

/** A line under a source file's tag; its end is "function: message". */
inline Lines Line(char level, const std::string& end, const std::string& tag = "PrivacyIndicator")
{
    return {std::string(1, level) + " 3 0xd005610 KRV: [QNL][" + tag + "]" + end};
}

inline Lines operator+(Lines lines, const Lines& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/**
 * What happens on this thread, in its order: the calls that the fakes and listeners add, and, while one of these lives,
 * what the library logs: level, type, domain, tag and text of each line. One at a time.
 */
class Journal {
public:
    Journal()
    {
        Take();
        LOG_SetCallback([](LogType type, LogLevel level, unsigned int domain, const char* tag, const char* message) {
            std::ostringstream line;
            line << "???DIWEF"[level] << ' ' << type << " 0x" << std::hex << domain << ' ' << tag << ": " << message;
            if (domain == 0xD005610) { // The library's, not the platform's.
                Add(line.str());
            }
        });
    }

    ~Journal() { LOG_SetCallback(nullptr); }

    static void Add(const std::string& line) { lines.push_back(line); }

    static Lines Take() { return std::exchange(lines, {}); }

private:
    static inline thread_local Lines lines;
};

/**
 * Runs the test up to here, and then `body`, in a new process: the client and what it keeps exist once in each. Its
 * standard error must match `errors`.
 */
template <typename Body>
void InNewProcess(Body body, const std::string& errors = "")
{
    const auto run = [&body] {
        body();
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0); // Nothing of the test's is to be ended here.
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), errors);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // SUPPORT_H
