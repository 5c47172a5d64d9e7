// SPDX-License-Identifier: Apache-2.0
#ifndef END_SIGNALS_H
#define END_SIGNALS_H

#include <csignal>
#include <vector>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/**
 * Blocks SIGINT, SIGTERM and `others`, and returns them all, to be waited for: so no code has to run in a signal
 * handler. To be called before the program starts threads of its own, which inherit the block; the platform's threads
 * block all signals anyway.
 */
sigset_t BlockEndSignals(const std::vector<int>& others = {});

/** The same, but returns a descriptor that the signals are read from. Throws std::system_error if none is left. */
int OpenEndSignals(const std::vector<int>& others = {});

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // END_SIGNALS_H
