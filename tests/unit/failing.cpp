// SPDX-License-Identifier: Apache-2.0
#include "failing.h"

#include <cstddef>
#include <cstring>
#include <dlfcn.h>
#include <new>

#include "parcel.h"

// A program's own definitions come before those of its libraries, for calls between these too.

using OHOS::Korvane::Quenlar::PrivacyIndicator::Test::Failing;

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    if (Failing::nthNew > 0 && --Failing::nthNew == 0) {
        return nullptr;
    }
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

bool OHOS::Parcel::WriteInt32(int32_t value)
{
    // The library's own, as the pointer to a member that the C++ ABI makes of it.
    static const auto behind = [] {
        void* const parts[] = {dlsym(RTLD_NEXT, "_ZN4OHOS6Parcel10WriteInt32Ei"), nullptr};
        bool (Parcel::*member)(int32_t) = nullptr;
        static_assert(sizeof(member) == sizeof(parts));
        std::memcpy(&member, parts, sizeof(member));
        return member;
    }();
    return Failing::write != value && (this->*behind)(value);
}
