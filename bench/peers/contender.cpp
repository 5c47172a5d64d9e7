// SPDX-License-Identifier: Apache-2.0
#include "contender.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

void Fail(const std::string& reason)
{
    std::fprintf(stderr, "bench: process %d: %s\n", getpid(), reason.c_str());
    std::_Exit(1);
}

std::string Address(const std::string& name)
{
    static const std::string program = std::to_string(getpid()); // Asked first before any fork.
    return "qnl-bench-" + program + "-" + name;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench
