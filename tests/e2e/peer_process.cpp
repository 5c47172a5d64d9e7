// SPDX-License-Identifier: Apache-2.0
// A process that has objects, calls others' objects, and tells what happens to it.
#include <poll.h>
#include <sys/resource.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

#include "command_loop.h"
#include "ipc_object_stub.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"
#include "system_ability_status_change_stub.h"

using namespace OHOS;

namespace {

// Every request carries a text, and some an object after it; so do the replies.
enum Code : uint32_t { ECHO = 1, WHO, EVENT, TAKE, GIVE, CALL_BACK, WAIT, FAIL, UNKNOWN };
const std::map<std::string, uint32_t> CODES{{"echo", ECHO}, {"who", WHO}, {"take", TAKE}, {"give", GIVE},
    {"callback", CALL_BACK}, {"wait", WAIT}, {"fail", FAIL}, {"unknown", UNKNOWN}};

// Never destroyed: some threads run on while the process exits.
struct State {
    std::mutex mutex;
    std::map<std::string, sptr<IRemoteObject>> objects;
    std::atomic<int> patience{8};
    std::atomic<int> alive{0}; // Objects of this process.
    std::map<std::string, sptr<IRemoteObject::DeathRecipient>> mourners;
    std::map<std::string, sptr<ISystemAbilityStatusChange>> watchers;
    std::vector<int> descriptors;
};
State& g_state = *new State();
const std::thread::id MAIN_THREAD = std::this_thread::get_id();

sptr<IRemoteObject> Named(const std::string& name)
{
    std::lock_guard<std::mutex> lock(g_state.mutex);
    return g_state.objects[name];
}

// Returns the former object of that name.
sptr<IRemoteObject> Name(const std::string& name, sptr<IRemoteObject> object)
{
    std::lock_guard<std::mutex> lock(g_state.mutex);
    return std::exchange(g_state.objects[name], std::move(object));
}

std::string Who()
{
    return std::to_string(IPCSkeleton::GetCallingPid()) + "/" + std::to_string(IPCSkeleton::GetCallingUid());
}

sptr<ISystemAbilityManager> Manager()
{
    return SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager();
}

struct Answer {
    int code;
    std::string text;
    sptr<IRemoteObject> object;
};

Answer Call(const sptr<IRemoteObject>& target, uint32_t code, const std::string& text,
    const sptr<IRemoteObject>& object = nullptr, int flags = MessageOption::TF_SYNC)
{
    MessageParcel data;
    MessageParcel reply;
    MessageOption option(flags, g_state.patience);
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
        if (code == WAIT || code == EVENT) {
            WaitWhileHeld(code == WAIT ? "waiting" : "");
        }
        if (code == EVENT) {
            Tell(name_ + " " + text);
        } else if (code == TAKE) {
            reply.WriteString(Name(text, object) == object ? "same" : object->IsProxyObject() ? "remote" : "local");
        } else if (code == GIVE) {
            reply.WriteString(text);
            return reply.WriteRemoteObject(Named(text)) ? ERR_NONE : ERR_INVALID_VALUE;
        } else if (code == CALL_BACK) {
            const std::string before = Who();
            const Answer inner = Call(object, WHO, "");
            reply.WriteString(before + " " + std::to_string(inner.code) + " " + inner.text + " " + Who());
            return inner.code;
        } else if (code == FAIL) {
            return std::stoi(text);
        } else if (code == UNKNOWN) {
            return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
        } else {
            reply.WriteString(code == WHO ? Who() : text);
            reply.WriteRemoteObject(object); // Goes home while its last proxy here goes.
        }
        return ERR_NONE;
    }

private:
    const std::string name_;
};

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
    explicit Watcher(std::string name) : name_(std::move(name)) {}

    void OnAddSystemAbility(int32_t id, const std::string& deviceId) override
    {
        TellOf("up ", id, deviceId);
    }

    void OnRemoveSystemAbility(int32_t id, const std::string& deviceId) override
    {
        TellOf("down ", id, deviceId);
    }

private:
    void TellOf(const char* change, int32_t id, const std::string& deviceId)
    {
        const bool isOnMain = std::this_thread::get_id() == MAIN_THREAD;
        WaitWhileHeld(change + std::to_string(id) + deviceId + name_ + (isOnMain ? " on the main thread" : ""));
        if (name_ == "once") {
            Manager()->UnSubscribeSystemAbility(id, sptr<ISystemAbilityStatusChange>(this));
        }
    }

    const std::string name_;
};

// call NAME REQUEST TEXT: the result and the reply's text; of an object, whether it is known by that name already.
std::string CallNamed(const Words& words)
{
    const uint32_t code = CODES.at(words[2]);
    const bool carriesObject = code == TAKE || code == CALL_BACK;
    const Answer answer = Call(Named(words[1]), code, words[3], carriesObject ? Named(words[3]) : nullptr);
    if (code == GIVE && answer.code == 0) {
        return Name(words[3], answer.object) == answer.object ? "0 same" : "0 other";
    }
    return std::to_string(answer.code) + (answer.text.empty() ? "" : " " + answer.text);
}

// size NAME SIZE: sends, and gets back, a parcel of that size.
std::string SendSize(const Words& words)
{
    const std::string text(std::stoul(words[2]) - sizeof(int32_t) - 1, 'x'); // Its length and a NUL come to it.
    const Answer answer = Call(Named(words[1]), ECHO, text);
    return std::to_string(answer.code) + (answer.code == 0 && answer.text != text ? " but changed" : "");
}

// send NAME COUNT: one-way events; those that are taken are numbered from 0. How many they are, and the last error.
std::string Send(const Words& words)
{
    int taken = 0;
    int lastError = 0;
    for (int i = 0; i < std::stoi(words[2]); ++i) {
        const int error = Call(Named(words[1]), EVENT, std::to_string(taken), nullptr, MessageOption::TF_ASYNC).code;
        taken += error == 0 ? 1 : 0;
        lastError = error != 0 ? error : lastError;
    }
    return std::to_string(taken) + " then " + std::to_string(lastError);
}

// hammer NAME THREADS COUNT: all kinds of calls, handing over objects that both sides let go of at once and one that
// lasts, on each thread until one fails. How many were answered wrongly, and how many threads failed.
std::string Hammer(const Words& words)
{
    const sptr<IRemoteObject> target = Named(words[1]);
    const std::string who = Who();
    const int count = std::stoi(words[3]);
    std::vector<std::future<void>> threads(std::stoul(words[2]));
    std::atomic<size_t> begun{0};
    std::atomic<int> wrong{0};
    std::atomic<int> failed{0};
    std::atomic<int> next{0};
    for (auto& thread : threads) {
        thread = std::async(std::launch::async, [&] {
            for (int i = 0; i < count; ++i) {
                const std::string text = std::to_string(next++);
                const int oneWay = Call(target, ECHO, "", new Object(""), MessageOption::TF_ASYNC).code;
                const sptr<IRemoteObject> object = new Object("");
                const Answer echo = Call(target, ECHO, text, object);
                const Answer back = Call(target, CALL_BACK, "", Named("me"));
                if ((oneWay != 0 && oneWay != ERR_BUFFER_FULL) || echo.code != 0 || back.code != 0) {
                    ++failed;
                    return;
                }
                wrong += echo.text != text || echo.object != object || back.text.rfind(who + " 0 ", 0) != 0 ? 1 : 0;
                if (i == 0 && ++begun == threads.size()) {
                    Tell("begun");
                }
            }
        });
    }
    threads.clear(); // Waits for them.
    return std::to_string(wrong) + " wrong, " + std::to_string(failed) + " failed";
}

// fork NAME: a child without exec tries everything, and stays until nobody is left who gives commands.
std::string Fork(const Words& words)
{
    if (fork() == 0) {
        const sptr<IRemoteObject> target = Named(words[1]);
        const int oneWay = Call(target, ECHO, "", nullptr, MessageOption::TF_ASYNC).code;
        Tell(std::string("child: ") + (Manager() == nullptr ? "no" : "a") + " manager, " +
             std::to_string(Call(target, ECHO, "").code) + ", " + std::to_string(oneWay));
        pollfd wait{STDIN_FILENO, 0, 0};
        poll(&wait, 1, -1);
        _exit(0);
    }
    return "0";
}

// exhaust: leaves no descriptor free, until `restore`.
std::string Exhaust(const Words& /* words */)
{
    const rlimit limit{64, 64};
    setrlimit(RLIMIT_NOFILE, &limit);
    for (int times = 0; times < 2; ++times) {
        // The platform's thread is through then with what it does with descriptors, most likely; and if it was not, it
        // gets another chance to have the one that it needs.
        Manager()->GetSystemAbility(0);
        for (int fd = 0; (fd = dup(STDIN_FILENO)) >= 0;) {
            g_state.descriptors.push_back(fd);
        }
        if (times == 0) {
            close(g_state.descriptors.back());
            g_state.descriptors.pop_back();
        }
    }
    return "0";
}

std::string Restore(const Words& /* words */)
{
    for (const int fd : std::exchange(g_state.descriptors, {})) {
        close(fd);
    }
    return "0";
}

std::string Find(const Words& words)
{
    if (Manager() == nullptr) {
        return "no manager";
    }
    Name(words[1], Manager()->GetSystemAbility(std::stoi(words[2])));
    return Named(words[1]) != nullptr ? "0" : "null";
}

std::string Mourn(const Words& words)
{
    auto& mourner = g_state.mourners[words[1]];
    mourner = mourner != nullptr ? mourner : sptr<IRemoteObject::DeathRecipient>(new Mourner(words[1]));
    const sptr<IRemoteObject> object = Named(words[1]);
    const bool isDone =
        words[0] == "mourn" ? object->AddDeathRecipient(mourner) : object->RemoveDeathRecipient(mourner);
    return isDone ? "0" : "refused";
}

std::string Watch(const Words& words)
{
    auto& watcher = g_state.watchers[words[1] + words[2]];
    watcher = watcher != nullptr ? watcher : sptr<ISystemAbilityStatusChange>(new Watcher(words[2]));
    const int id = std::stoi(words[1]);
    return std::to_string(words[0] == "watch" ? Manager()->SubscribeSystemAbility(id, watcher)
                                              : Manager()->UnSubscribeSystemAbility(id, watcher));
}

} // namespace

int main()
{
    Name("me", new Object("me"));
    ServeCommands(
        {{"serve", [](auto& w) { return std::to_string(Manager()->AddSystemAbility(std::stoi(w[1]), Named("me"))); }},
            {"unserve", [](auto& w) { return std::to_string(Manager()->RemoveSystemAbility(std::stoi(w[1]))); }},
            {"make", [](auto& w) { return Name(w[1], new Object(w[1])) == nullptr ? "0" : "0 anew"; }},
            {"drop", [](auto& w) { return Name(w[1], nullptr) != nullptr ? "0" : "there is none"; }},
            {"alive", [](auto&) { return std::to_string(g_state.alive); }}, {"who", [](auto&) { return Who(); }},
            {"dead", [](auto& w) { return Named(w[1])->IsObjectDead() ? "yes" : "no"; }},
            {"patience", [](auto& w) { return std::to_string((g_state.patience = std::stoi(w[1])) * 0); }},
            {"call", CallNamed}, {"find", Find}, {"size", SendSize}, {"send", Send}, {"hammer", Hammer},
            {"mourn", Mourn}, {"unmourn", Mourn}, {"watch", Watch}, {"unwatch", Watch}, {"fork", Fork},
            {"exhaust", Exhaust}, {"restore", Restore}});
    return 0;
}
