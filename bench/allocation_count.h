// SPDX-License-Identifier: Apache-2.0
#ifndef ALLOCATION_COUNT_H
#define ALLOCATION_COUNT_H

#include <atomic>
#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** Where the allocations of this process's threads are counted: its own number, or one in memory that it shares. */
extern std::atomic<std::atomic<uint64_t>*> allocationCount;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // ALLOCATION_COUNT_H
