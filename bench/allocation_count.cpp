// SPDX-License-Identifier: Apache-2.0
// A program's own definitions come before those of the C library, for calls from its shared libraries too.
#include "allocation_count.h"

#include <cstddef>

using OHOS::Korvane::Quenlar::PrivacyIndicator::Bench::allocationCount;

thread_local std::atomic<uint64_t>* OHOS::Korvane::Quenlar::PrivacyIndicator::Bench::allocationCount = nullptr;

namespace {

void Count()
{
    if (allocationCount != nullptr) {
        ++*allocationCount;
    }
}

} // namespace

extern "C" {

void* LibcMalloc(size_t size) noexcept __asm__("__libc_malloc");
void* LibcCalloc(size_t count, size_t size) noexcept __asm__("__libc_calloc");
void* LibcRealloc(void* memory, size_t size) noexcept __asm__("__libc_realloc");

void* malloc(size_t size) noexcept
{
    Count();
    return LibcMalloc(size);
}

void* calloc(size_t count, size_t size) noexcept
{
    Count();
    return LibcCalloc(count, size);
}

void* realloc(void* memory, size_t size) noexcept
{
    Count();
    return LibcRealloc(memory, size);
}
}
