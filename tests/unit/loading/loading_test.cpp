// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <cstdint>
#include <cstring>
#include <future>

#include <gtest/gtest.h>

#include "hilog/log.h"
#include "ipc_object_stub.h"
#include "iservice_registry.h"

namespace {

std::promise<void> g_serviceIsKnown;

// This program is not linked with the library, and lets the platform call into it after the last dlclose.
TEST(LoadingTest, TheClientHearsOfTheServiceAfterDlclose)
{
    LOG_SetCallback([](LogType, LogLevel, unsigned int, const char*, const char* message) {
        if (std::strstr(message, "ReRegisterPrivacyEventListener: begin.") != nullptr) { // The last line about it.
            g_serviceIsKnown.set_value();
        }
    });
    void* library = dlopen("libqnl_privacy_indicator_service_intf.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto notifyPowerEvent = reinterpret_cast<int32_t (*)(int32_t)>(dlsym(library, "NotifyPowerEvent"));
    ASSERT_NE(notifyPowerEvent, nullptr);
    EXPECT_EQ(notifyPowerEvent(1), 0);
    EXPECT_EQ(dlclose(library), 0);

    const auto manager = OHOS::SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    EXPECT_EQ(manager->AddSystemAbility(66090, new OHOS::IPCObjectStub()), 0);
    EXPECT_EQ(g_serviceIsKnown.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    LOG_SetCallback(nullptr);
}

} // namespace
