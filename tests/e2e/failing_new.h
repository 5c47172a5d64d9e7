// SPDX-License-Identifier: Apache-2.0
#ifndef FAILING_NEW_H
#define FAILING_NEW_H

#include <atomic>

/** The allocation from now on that fails, whichever thread asks for it; 0 for none. Not in a sanitizer's build. */
inline std::atomic<int> g_failingNew{0};

#endif // FAILING_NEW_H
