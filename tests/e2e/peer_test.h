// SPDX-License-Identifier: Apache-2.0
#ifndef PEER_TEST_H
#define PEER_TEST_H

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>

#include "bus_test.h"
#include "ipc_object_stub.h"
#include "ipc_skeleton.h"
#include "iservice_registry.h"
#include "system_ability_status_change_stub.h"

/** What a helper has of its own. Never destroyed: some threads run on while the process exits. */
struct PeerState {
    std::mutex mutex; // Guards the objects, and isHeld.
    std::map<std::string, OHOS::sptr<OHOS::IRemoteObject>> objects;
    std::atomic<int> wait{8};
    std::atomic<int> alive{0};
    std::condition_variable released;
    bool isHeld = false;
};

/**
 * A test whose helpers do these things with objects, each of which has a name: short functions, whose result is a text.
 * Objects and services tell what happens to them as events.
 */
class PeerTest : public BusTest {
public:
    /** What the objects serve. Every request carries a text, and some an object after it; so do the replies. */
    enum Code : uint32_t { REPEAT = 1, WHO, EVENT, TAKE, GIVE, CALL_BACK, FAIL, CRASH };

    static auto Manager() { return OHOS::SystemAbilityManagerClient::GetInstance().GetSystemAbilityManager(); }

    /** The service under that name: "0", "null" or "no manager". */
    static std::string Find(const char* name, int32_t id)
    {
        Name(name, Manager() != nullptr ? Manager()->GetSystemAbility(id) : nullptr);
        return Manager() == nullptr ? "no manager" : Named(name) != nullptr ? "0" : "null";
    }

    /** This process's object "me" becomes, or is no more, that service. The manager's code. */
    static int Serve(int32_t id) { return Manager()->AddSystemAbility(id, Named("me")); }

    static int Unserve(int32_t id) { return Manager()->RemoveSystemAbility(id); }

    /** A new object of this process, under its own name, which then reports its events. */
    static void Make(const char* name) { Name(name, new Object(name)); }

    static void Drop(const char* name) { Name(name, nullptr); }

    /** How many objects of this process there are; "me" is one. */
    static int Alive() { return state.alive; }

    static bool IsDead(const char* name) { return Named(name)->IsObjectDead(); }

    /** Seconds that the calls to come may take. */
    static void SetWait(int seconds) { state.wait = seconds; }

    /**
     * Calls an object: the result, and the reply's text. What is taken or called back is the object named by `text`;
     * what is given is then named so, and is the "same" as before or an "other".
     */
    static std::string Call(const char* name, uint32_t code, const std::string& text = "")
    {
        const bool carriesObject = code == TAKE || code == CALL_BACK;
        const Answer answer = Request(Named(name), code, text, carriesObject ? Named(text) : nullptr);
        if (code == GIVE && answer.code == 0) {
            return Name(text, answer.object) == answer.object ? "0 same" : "0 other";
        }
        return std::to_string(answer.code) + (answer.text.empty() ? "" : " " + answer.text);
    }

    /** One-way events; those that are taken are numbered from 0. How many they are, and the last error. */
    static std::string Send(const char* name, int count)
    {
        int taken = 0;
        int lastError = 0;
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(taken);
            const int error = Request(Named(name), EVENT, number, nullptr, OHOS::MessageOption::TF_ASYNC).code;
            taken += error == 0 ? 1 : 0;
            lastError = error != 0 ? error : lastError;
        }
        return std::to_string(taken) + " then " + std::to_string(lastError);
    }

    /**
     * All kinds of calls on so many threads, which hand objects over that both sides drop at once and one that lasts,
     * on each until one is not answered well. On how many threads that was so. Reports "begun" when all have begun.
     */
    static int Hammer(const char* name, size_t threads, int count)
    {
        std::atomic<size_t> begun{0};
        std::atomic<int> failed{0};
        const auto hammer = [&, target = Named(name), who = Who() + " 0 "](const std::string& thread) {
            for (int i = 0; i < count; ++i) {
                const std::string text = thread + "/" + std::to_string(i);
                const int oneWay = Request(target, REPEAT, "", new Object(""), OHOS::MessageOption::TF_ASYNC).code;
                const Remote object = new Object("");
                const Answer echo = Request(target, REPEAT, text, object);
                const Answer back = Request(target, CALL_BACK, "", Named("me"));
                if ((oneWay != 0 && oneWay != 105) || echo.code != 0 || echo.text != text || echo.object != object ||
                    back.code != 0 || back.text.rfind(who, 0) != 0) {
                    ++failed;
                    return;
                }
                if (i == 0 && ++begun == threads) {
                    Helper::Report("begun");
                }
            }
        };
        std::vector<std::future<void>> running;
        for (size_t i = 0; i < threads; ++i) {
            running.push_back(std::async(std::launch::async, hammer, std::to_string(i)));
        }
        running.clear(); // Waits for them.
        return failed;
    }

    /** Who calls: "PID/UID". */
    static std::string Who()
    {
        using OHOS::IPCSkeleton;
        return std::to_string(IPCSkeleton::GetCallingPid()) + "/" + std::to_string(IPCSkeleton::GetCallingUid());
    }

    /** Reports "dead NAME" at the object's death. False if it is refused. */
    static bool Mourn(const char* name) { return Named(name)->AddDeathRecipient(Only<Mourner>(name)); }

    static bool Unmourn(const char* name) { return Named(name)->RemoveDeathRecipient(Only<Mourner>(name)); }

    /** Reports "up ID" and "down ID", with `tag` at the end; one with the tag "once" unsubscribes then. */
    static void Watch(int32_t id, const char* tag = "") { Manager()->SubscribeSystemAbility(id, Only<Watcher>(tag)); }

    static int Unwatch(int32_t id, const char* tag = "")
    {
        return Manager()->UnSubscribeSystemAbility(id, Only<Watcher>(tag));
    }

    /** Its next events are those of that object which are numbered from 0. */
    static void ExpectEvents(Helper& helper, const std::string& object, int count)
    {
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(helper.Event(), object + " " + std::to_string(i));
        }
    }

    /** Until Release, an event or a notice that is reported waits where it is. */
    static void Hold() { SetHeld(true); }

    static void Release() { SetHeld(false); }

    /** Reports `event` if it is not empty, and waits while that is so; a later Hold does not count. */
    static void WaitWhileHeld(const std::string& event)
    {
        std::unique_lock<std::mutex> lock(state.mutex);
        if (!event.empty()) {
            Helper::Report(event);
        }
        state.released.wait(lock, [] { return !state.isHeld; });
    }

private:
    using Remote = OHOS::sptr<OHOS::IRemoteObject>;

    static inline PeerState& state = *new PeerState();

    struct Answer {
        int code;
        std::string text;
        Remote object;
    };

    class Object : public OHOS::IPCObjectStub {
    public:
        explicit Object(std::string name) : name_(std::move(name)) { ++state.alive; }

        ~Object() override { --state.alive; }

        int OnRemoteRequest(
            uint32_t code, OHOS::MessageParcel& data, OHOS::MessageParcel& reply, OHOS::MessageOption& option) override
        {
            const std::string text = data.ReadString();
            const Remote object = data.ReadRemoteObject();
            switch (code) {
            case REPEAT: // The object goes home while its last proxy here goes.
                return Reply(reply, text, object);
            case WHO:
                return Reply(reply, Who());
            case EVENT:
                WaitWhileHeld(name_ + " " + text);
                return 0;
            case TAKE:
                return Reply(reply, Name(text, object) == object ? "same"
                                    : object->IsProxyObject()    ? "remote"
                                                                 : "local");
            case GIVE:
                return Reply(reply, text, Named(text));
            case CALL_BACK: {
                const std::string before = Who();
                const Answer inner = Request(object, WHO, "");
                return Reply(reply, before + " " + std::to_string(inner.code) + " " + inner.text + " " + Who());
            }
            case FAIL:
                reply.WriteString(text);
                return std::stoi(text);
            case CRASH:
                return raise(std::stoi(text));
            default:
                return IPCObjectStub::OnRemoteRequest(code, data, reply, option);
            }
        }

    private:
        static int Reply(OHOS::MessageParcel& reply, const std::string& text, const Remote& object = nullptr)
        {
            reply.WriteString(text);
            reply.WriteRemoteObject(object);
            return 0;
        }

        const std::string name_;
    };

    class Mourner : public OHOS::IRemoteObject::DeathRecipient {
    public:
        explicit Mourner(std::string name) : name_(std::move(name)) {}

        void OnRemoteDied(const OHOS::wptr<OHOS::IRemoteObject>& object) override
        {
            Helper::Report((object.promote() == Named(name_) ? "dead " : "not ") + name_);
        }

    private:
        const std::string name_;
    };

    class Watcher : public OHOS::SystemAbilityStatusChangeStub {
    public:
        explicit Watcher(std::string tag) : tag_(std::move(tag)) {}

        void OnAddSystemAbility(int32_t id, const std::string& deviceId) override { Say("up ", id, deviceId); }

        void OnRemoveSystemAbility(int32_t id, const std::string& deviceId) override { Say("down ", id, deviceId); }

    private:
        void Say(const char* change, int32_t id, const std::string& deviceId)
        {
            const bool isOnMain = getpid() == gettid();
            WaitWhileHeld(change + std::to_string(id) + deviceId + tag_ + (isOnMain ? " on the main thread" : ""));
            if (tag_ == "once") {
                Unwatch(id, "once");
            }
        }

        const std::string tag_;
    };

    // The only one of that name.
    template <typename Observer>
    static OHOS::sptr<Observer> Only(const std::string& name)
    {
        static auto& all = *new std::map<std::string, OHOS::sptr<Observer>>();
        return all.try_emplace(name, OHOS::sptr<Observer>(new Observer(name))).first->second;
    }

    static Remote Named(const std::string& name)
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        Remote& object = state.objects[name];
        object = object == nullptr && name == "me" ? Remote(new Object(name)) : object;
        return object;
    }

    // Returns the former object of that name.
    static Remote Name(const std::string& name, Remote object)
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        return std::exchange(state.objects[name], std::move(object));
    }

    static Answer Request(const Remote& target, uint32_t code, const std::string& text, const Remote& object = nullptr,
        int flags = OHOS::MessageOption::TF_SYNC)
    {
        OHOS::MessageParcel data;
        OHOS::MessageParcel reply;
        OHOS::MessageOption option(flags, state.wait);
        data.SetMaxCapacity(size_t{4} << 20);
        data.WriteString(text);
        data.WriteRemoteObject(object);
        const int error = target->SendRequest(code, data, reply, option);
        const std::string answer = reply.ReadString();
        return {error, answer, reply.ReadRemoteObject()};
    }

    static void SetHeld(bool isHeld)
    {
        const std::lock_guard<std::mutex> lock(state.mutex);
        state.isHeld = isHeld;
        state.released.notify_all();
    }
};

/** A service, and a caller that has found it as "s". */
class PairTest : public PeerTest {
protected:
    Helper& service_ = Start([] { Serve(100); });
    Helper& caller_ = Start([] { Find("s", 100); });
};

#endif // PEER_TEST_H
