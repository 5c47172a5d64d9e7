// SPDX-License-Identifier: Apache-2.0
#include "peer.h"

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <future>
#include <map>
#include <mutex>
#include <unistd.h>
#include <utility>
#include <vector>

#include "helper.h"
#include "ipc_skeleton.h"
#include "system_ability_status_change_stub.h"

using namespace OHOS;

namespace Peer {

namespace {

// Never destroyed: some threads run on while the process exits.
struct State {
    std::mutex mutex; // Guards the objects.
    std::map<std::string, sptr<IRemoteObject>> objects;
    std::atomic<int> wait{8};
    std::atomic<int> alive{0};
    std::map<std::string, sptr<IRemoteObject::DeathRecipient>> mourners;
    std::map<std::string, sptr<ISystemAbilityStatusChange>> watchers;
    std::mutex holdMutex;
    std::condition_variable released;
    bool isHeld = false;
};
State& g_state = *new State();

sptr<IRemoteObject> Named(const std::string& name);

// Returns the former object of that name.
sptr<IRemoteObject> Name(const std::string& name, sptr<IRemoteObject> object)
{
    const std::lock_guard<std::mutex> lock(g_state.mutex);
    return std::exchange(g_state.objects[name], std::move(object));
}

struct Answer {
    int code;
    std::string text;
    sptr<IRemoteObject> object;
};

Answer Request(const sptr<IRemoteObject>& target, uint32_t code, const std::string& text,
    const sptr<IRemoteObject>& object = nullptr, int flags = MessageOption::TF_SYNC)
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option(flags, g_state.wait);
    data.SetMaxCapacity(size_t{4} << 20);
    data.WriteString(text);
    data.WriteRemoteObject(object);
    const int error = target->SendRequest(code, data, reply, option);
    const std::string answer = reply.ReadString();
    return {error, answer, reply.ReadRemoteObject()};
}

class Object : public IPCObjectStub {
public:
    explicit Object(std::string name) : name_(std::move(name))
    {
        ++g_state.alive;
    }

    ~Object() override
    {
        --g_state.alive;
    }

    int OnRemoteRequest(uint32_t code, MessageParcel& data, MessageParcel& reply, MessageOption& option) override
    {
        const std::string text = data.ReadString();
        const sptr<IRemoteObject> object = data.ReadRemoteObject();
        switch (code) {
        case EVENT:
            WaitWhileHeld();
            Tell(name_ + " " + text);
            return ERR_NONE;
        case TAKE:
            reply.WriteString(Name(text, object) == object ? "same" : object->IsProxyObject() ? "remote" : "local");
            return ERR_NONE;
        case GIVE: {
            const sptr<IRemoteObject> given = Named(text);
            return given != nullptr && reply.WriteString(text) && reply.WriteRemoteObject(given) ? ERR_NONE
                                                                                                 : ERR_INVALID_VALUE;
        }
        case DROP:
            Name(text, nullptr);
            return ERR_NONE;
        case CALL_BACK: {
            const std::string before = Who();
            const Answer inner = Request(object, WHO, "");
            reply.WriteString(before + " " + std::to_string(inner.code) + " " + inner.text + " " + Who());
            return inner.code;
        }
        case WAIT:
            WaitWhileHeld("waiting");
            break;
        case FAIL_WITH_REPLY:
            reply.WriteString(text);
            return std::stoi(text);
        case FAIL:
            return std::stoi(text);
        case UNKNOWN:
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        case CRASH:
            raise(SIGSEGV);
            break;
        default:
            break;
        }
        reply.WriteString(code == WHO ? Who() : text);
        reply.WriteRemoteObject(object); // Goes home while its last proxy here goes.
        return ERR_NONE;
    }

private:
    const std::string name_;
};

sptr<IRemoteObject> Named(const std::string& name)
{
    const std::lock_guard<std::mutex> lock(g_state.mutex);
    sptr<IRemoteObject>& object = g_state.objects[name];
    if (object == nullptr && name == "me") {
        object = new Object(name);
    }
    return object;
}

class Mourner : public IRemoteObject::DeathRecipient {
public:
    explicit Mourner(std::string name) : name_(std::move(name)) {}

    void OnRemoteDied(const wptr<IRemoteObject>& object) override
    {
        Tell((object.promote() == Named(name_) ? "dead " : "not ") + name_);
    }

private:
    const std::string name_;
};

class Watcher : public SystemAbilityStatusChangeStub {
public:
    explicit Watcher(std::string tag) : tag_(std::move(tag)) {}

    void OnAddSystemAbility(int32_t id, const std::string& deviceId) override
    {
        Say("up ", id, deviceId);
    }

    void OnRemoveSystemAbility(int32_t id, const std::string& deviceId) override
    {
        Say("down ", id, deviceId);
    }

private:
    void Say(const char* change, int32_t id, const std::string& deviceId)
    {
        const bool isOnMain = getpid() == gettid();
        WaitWhileHeld(change + std::to_string(id) + deviceId + tag_ + (isOnMain ? " on the main thread" : ""));
        if (tag_ == "once") {
            Manager()->UnSubscribeSystemAbility(id, sptr<ISystemAbilityStatusChange>(this));
        }
    }

    const std::string tag_;
};

sptr<IRemoteObject::DeathRecipient> MournerOf(const char* name)
{
    auto& mourner = g_state.mourners[name];
    mourner = mourner != nullptr ? mourner : sptr<IRemoteObject::DeathRecipient>(new Mourner(name));
    return mourner;
}

sptr<ISystemAbilityStatusChange> WatcherOf(int32_t id, const char* tag)
{
    auto& watcher = g_state.watchers[std::to_string(id) + tag];
    watcher = watcher != nullptr ? watcher : sptr<ISystemAbilityStatusChange>(new Watcher(tag));
    return watcher;
}

} // namespace

sptr<ISystemAbilityManager> Manager()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

std::string Find(const char* name, int32_t id)
{
    if (Manager() == nullptr) {
        return "no manager";
    }
    Name(name, Manager()->GetSystemAbility(id));
    return Named(name) != nullptr ? "0" : "null";
}

int Serve(int32_t id)
{
    return Manager()->AddSystemAbility(id, Named("me"));
}

int Unserve(int32_t id)
{
    return Manager()->RemoveSystemAbility(id);
}

void Make(const char* name)
{
    Name(name, new Object(name));
}

void Drop(const char* name)
{
    Name(name, nullptr);
}

int Alive()
{
    return g_state.alive;
}

int IsDead(const char* name)
{
    return Named(name)->IsObjectDead() ? 1 : 0;
}

void SetWait(int seconds)
{
    g_state.wait = seconds;
}

std::string Call(const char* name, Code code, const char* text)
{
    const bool carriesObject = code == TAKE || code == CALL_BACK;
    const Answer answer = Request(Named(name), code, text, carriesObject ? Named(text) : nullptr);
    if (code == GIVE && answer.code == 0) {
        return Name(text, answer.object) == answer.object ? "0 same" : "0 other";
    }
    return std::to_string(answer.code) + (answer.text.empty() ? "" : " " + answer.text);
}

int CallWithSize(const char* name, size_t size)
{
    const std::string text(size - sizeof(int32_t) - 1, 'x'); // Its length and a NUL come to it.
    const Answer answer = Request(Named(name), ECHO, text);
    return answer.code == 0 && answer.text != text ? -1 : answer.code;
}

std::string Send(const char* name, int count)
{
    int taken = 0;
    int lastError = 0;
    for (int i = 0; i < count; ++i) {
        const int error = Request(Named(name), EVENT, std::to_string(taken), nullptr, MessageOption::TF_ASYNC).code;
        taken += error == 0 ? 1 : 0;
        lastError = error != 0 ? error : lastError;
    }
    return std::to_string(taken) + " then " + std::to_string(lastError);
}

std::string Hammer(const char* name, size_t threads, int count)
{
    const sptr<IRemoteObject> target = Named(name);
    const std::string who = Who();
    std::atomic<size_t> begun{0};
    std::atomic<int> wrong{0};
    std::atomic<int> failed{0};
    std::atomic<int> next{0};
    const auto hammer = [&] {
        for (int i = 0; i < count; ++i) {
            const std::string text = std::to_string(next++);
            const int oneWay = Request(target, ECHO, "", new Object(""), MessageOption::TF_ASYNC).code;
            const sptr<IRemoteObject> object = new Object("");
            const Answer echo = Request(target, ECHO, text, object);
            const Answer back = Request(target, CALL_BACK, "", Named("me"));
            if ((oneWay != 0 && oneWay != 105) || echo.code != 0 || back.code != 0) {
                ++failed;
                return;
            }
            wrong += echo.text != text || echo.object != object || back.text.rfind(who + " 0 ", 0) != 0 ? 1 : 0;
            if (i == 0 && ++begun == threads) {
                Tell("begun");
            }
        }
    };
    std::vector<std::future<void>> running(threads);
    for (auto& thread : running) {
        thread = std::async(std::launch::async, hammer);
    }
    running.clear(); // Waits for them.
    return std::to_string(wrong) + " wrong, " + std::to_string(failed) + " failed";
}

std::string Who()
{
    return std::to_string(IPCSkeleton::GetCallingPid()) + "/" + std::to_string(IPCSkeleton::GetCallingUid());
}

int Mourn(const char* name)
{
    return Named(name)->AddDeathRecipient(MournerOf(name)) ? 1 : 0;
}

int Unmourn(const char* name)
{
    return Named(name)->RemoveDeathRecipient(MournerOf(name)) ? 1 : 0;
}

int Watch(int32_t id, const char* tag)
{
    return Manager()->SubscribeSystemAbility(id, WatcherOf(id, tag));
}

int Unwatch(int32_t id, const char* tag)
{
    return Manager()->UnSubscribeSystemAbility(id, WatcherOf(id, tag));
}

void Hold()
{
    const std::lock_guard<std::mutex> lock(g_state.holdMutex);
    g_state.isHeld = true;
}

void Release()
{
    const std::lock_guard<std::mutex> lock(g_state.holdMutex);
    g_state.isHeld = false;
    g_state.released.notify_all();
}

void WaitWhileHeld(const std::string& event)
{
    std::unique_lock<std::mutex> lock(g_state.holdMutex);
    if (!event.empty()) {
        Tell(event);
    }
    g_state.released.wait(lock, [] { return !g_state.isHeld; });
}

} // namespace Peer
