// SPDX-License-Identifier: Apache-2.0
#include "end_signals.h"

#include <sys/signalfd.h>

#include <cerrno>
#include <system_error>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

sigset_t BlockEndSignals(const std::vector<int>& others)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    for (const int other : others) {
        sigaddset(&signals, other);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int OpenEndSignals(const std::vector<int>& others)
{
    const sigset_t signals = BlockEndSignals(others);
    const int fd = signalfd(-1, &signals, SFD_CLOEXEC);
    if (fd < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return fd;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
