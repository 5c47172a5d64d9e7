// SPDX-License-Identifier: Apache-2.0
#include "end_signals.h"

#include <pthread.h>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

sigset_t BlockEndSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
