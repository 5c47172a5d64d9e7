// SPDX-License-Identifier: Apache-2.0
#include "failing.h"

#include <dlfcn.h>

#include <cstdlib>
#include <new>

#include "parcel.h"

// A program's own definitions come before those of its libraries, for calls between these too.

using OHOS::Korvane::Quenlar::PrivacyIndicator::Test::Failing;

void* operator new(size_t size)
{
    void* memory = Failing::everyNew ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, size_t /*size*/) noexcept { std::free(memory); }

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    if (Failing::nthNew > 0 && --Failing::nthNew == 0) {
        return nullptr;
    }
    return std::malloc(size);
}

bool OHOS::Parcel::WriteInt32(int32_t value)
{
    // The library's own: the C++ ABI hands the object over as the first argument.
    using Function = bool (*)(Parcel*, int32_t);
    static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN4OHOS6Parcel10WriteInt32Ei"));
    return Failing::write != value && original(this, value);
}
