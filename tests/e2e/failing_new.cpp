// SPDX-License-Identifier: Apache-2.0
#include "failing_new.h"

#include <cstdlib>
#include <new>

// A program's own definitions come before those of its libraries, for calls between these too. A sanitizer has its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

void* operator new(size_t size)
{
    void* const memory = g_failingNew > 0 && --g_failingNew == 0 ? nullptr : std::malloc(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t /* size */) noexcept
{
    std::free(memory);
}

#endif
