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

class Object : public IPCObjectStub {
    int OnRemoteRequest(uint32_t /* code */, MessageParcel&, MessageParcel& /* reply */, MessageOption&) override
    {
        static Singleton singleton;
        for (int i = 0; i < 2; ++i) { // When it comes, and when it has taken its time.
            if (!singleton.isAlive) {
                std::abort();
            }
            usleep(5000);
        }
        return ERR_NONE;
    }
};

} // namespace

extern "C" void Begin()
{
    SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager()->AddSystemAbility(200, new Object());
}
