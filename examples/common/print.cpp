// SPDX-License-Identifier: Apache-2.0
#include "print.h"

#include <cerrno>
#include <cstdio>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

void PrintLine(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void Complain(const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, message.c_str());
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
