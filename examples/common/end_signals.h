// SPDX-License-Identifier: Apache-2.0
#ifndef END_SIGNALS_H
#define END_SIGNALS_H

#include <csignal>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Blocks SIGINT and SIGTERM and returns them, to be waited for with sigwait or a signalfd: so no code has to run in a
 * signal handler. To be called before the program starts threads of its own, which inherit the block; the platform's
 * threads block all signals anyway.
 */
sigset_t BlockEndSignals();

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // END_SIGNALS_H
