// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <cstdint>

#include <gtest/gtest.h>

namespace {

// This program is not linked with the library. The platform calls into it as long as the process lives.
TEST(LoadingTest, TheLibraryStaysAfterDlclose)
{
    constexpr const char* NAME = "libqnl_privacy_indicator_service_intf.so";
    void* library = dlopen(NAME, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto notifyPowerEvent = reinterpret_cast<int32_t (*)(int32_t)>(dlsym(library, "NotifyPowerEvent"));
    ASSERT_NE(notifyPowerEvent, nullptr);
    EXPECT_EQ(notifyPowerEvent(1), 0);
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(dlopen(NAME, RTLD_NOW | RTLD_NOLOAD), library);
}

} // namespace
