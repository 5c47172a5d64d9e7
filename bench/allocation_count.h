// SPDX-License-Identifier: Apache-2.0
#ifndef ALLOCATION_COUNT_H
#define ALLOCATION_COUNT_H

#include <atomic>
#include <cstdint>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** Where the allocations of this thread are counted, such as in memory that processes share; null for nowhere. */
extern thread_local std::atomic<uint64_t>* allocationCount;

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // ALLOCATION_COUNT_H
