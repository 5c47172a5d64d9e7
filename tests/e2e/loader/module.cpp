// SPDX-License-Identifier: Apache-2.0
#include <unistd.h>

#include <cstdlib>

#include "ipc_object_stub.h"
#include "iservice_registry.h"

using namespace OHOS;

namespace {

// What goes with the other statics at exit, and must not be called after that.
struct Singleton {
    ~Singleton()
    {
        isAlive = false;
        usleep(100'000); // So that whoever calls it now will.
    }

    bool isAlive = true;
};

Singleton& GetSingleton()
{
    static Singleton singleton;
    return singleton;
}

class Object : public IPCObjectStub {
    int OnRemoteRequest(uint32_t /* code */, MessageParcel& /* data */, MessageParcel& reply, MessageOption&) override
    {
        for (int i = 0; i < 2; ++i) { // When it comes, and when it has taken its time.
            if (!GetSingleton().isAlive) {
                std::abort();
            }
            usleep(5000);
        }
        reply.WriteInt32(0);
        return ERR_NONE;
    }
};

} // namespace

extern "C" void Begin()
{
    const auto manager = SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
    if (manager == nullptr || manager->AddSystemAbility(100, new Object()) != 0) {
        _exit(3);
    }
}
