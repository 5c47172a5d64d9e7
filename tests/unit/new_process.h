// SPDX-License-Identifier: Apache-2.0
#ifndef NEW_PROCESS_H
#define NEW_PROCESS_H

#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

constexpr int CANNOT = 77;

/**
 * Runs the test up to here, and then `body`, in a new process: the client and what it keeps exist once in each. False
 * if `body` returned false, which says that this machine does not let it be run.
 */
template <typename Body>
bool InNewProcess(Body body)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    bool could = true;
    const auto succeeded = [&could](int status) {
        could = !WIFEXITED(status) || WEXITSTATUS(status) != CANNOT;
        return !could || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
    };
    EXPECT_EXIT(
        {
            const bool did = body();
            std::fflush(nullptr);
            _exit(testing::Test::HasFailure() ? 1 : did ? 0 : CANNOT); // Nothing of the test's is to be ended here.
        },
        succeeded, "");
    return could;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // NEW_PROCESS_H
