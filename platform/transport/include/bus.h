// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_H
#define BUS_H

#include <sys/types.h>

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "descriptor.h"
#include "mutex.h"

struct sd_bus;
struct sd_bus_message;
struct sd_bus_slot;

namespace OHOS::Transport {

/**
 * The bus daemon, which knows who owns a name and who has gone: nothing else is asked of it, and nobody else is spoken
 * to. One thread alone touches the connection. It joins the bus, joins anew when that has ended, and runs no code of
 * the users'.
 */
class Bus {
public:
    /** Hears of the bus, on its thread, which holds no lock meanwhile. */
    class Observer {
    public:
        virtual ~Observer() = default;

        /** This process is on the bus, where nobody knows its name yet. False if it had better leave and try anew. */
        virtual bool OnJoined() = 0;

        /** It is not any more: nothing is watched, and nothing owned. */
        virtual void OnLost() = 0;

        /** A watched name has another owner. They are unique names; empty for none. */
        virtual void OnOwnerChange(const std::string& name, const std::string& from, const std::string& to) = 0;
    };

    enum class Address { NONE, MALFORMED, GIVEN };

    static Bus& Get();

    /** What OHOS_BUS_ADDRESS is, once and for all. */
    static Address GetAddress();

    // Any thread but the bus thread.

    /** To be called before Start. */
    void Observe(Observer& observer);

    /** Starts the thread if need be. False if there is no address or no thread to be had; the next call tries again. */
    bool Start();

    bool IsUp() const
    {
        return isUp_;
    }

    /**
     * The answer to a question that the bus thread asks, within 8 s, and once everything that the daemon said before is
     * known; T() if there is none, at once where there is no bus. The question must own all that it touches.
     */
    template <typename T>
    T Ask(std::function<T()> question)
    {
        const auto answer = std::make_shared<std::promise<T>>();
        std::future<T> future = answer->get_future();
        const bool isAsked = Post([this, question = std::move(question), weak = std::weak_ptr(answer)] {
            const auto awaited = weak.lock();
            if (awaited != nullptr) {
                T value = isUp_ ? question() : T();
                ReadQueued();
                AnnounceChanges();
                awaited->set_value(std::move(value));
            }
        });
        return isAsked && future.wait_for(PATIENCE) == std::future_status::ready ? future.get() : T();
    }

    /** Runs `task` on the bus thread, whether or not there is a bus. False if there is no such thread. */
    bool Post(std::function<void()> task);

    // On the bus thread, within a question, a task or an observer. Each waits for the daemon, for 8 s at most.

    /** This process's unique name, and the bus's own id. */
    const std::string& OwnName() const
    {
        return ownName_;
    }

    const std::string& Id() const
    {
        return id_;
    }

    /** Has the changes of a name's owner observed from now on. Returns the present one; empty for none. */
    std::string Watch(const std::string& name);
    void Unwatch(const std::string& name);

    std::string OwnerOf(const std::string& name);

    /** Whether the daemon says that nobody has that name. */
    bool IsGone(const std::string& name);

    /** The process and the user that the daemon vouches for. False if nobody has that unique name. */
    bool GetCredentials(const std::string& name, pid_t& pid, uid_t& uid);

    /** False if the name is another's or not for this user. */
    bool RequestName(const std::string& name);
    void ReleaseName(const std::string& name);

private:
    struct Change {
        std::string name;
        std::string from;
        std::string to;
    };

    static constexpr std::chrono::seconds PATIENCE{8};

    void Run();
    void Connect();
    void ReadNews();
    void Join();
    void Leave();
    void RunTasks();
    void ReadQueued();
    void AnnounceChanges();
    void Wait();
    void Hear(sd_bus_message* signal);

    std::vector<Observer*> observers_;
    Descriptor wake_;
    std::atomic<bool> isUp_{false};

    Mutex mutex_;
    bool isStarted_ GUARDED_BY(mutex_) = false; // Which sets what is above for good.
    std::deque<std::function<void()>> tasks_ GUARDED_BY(mutex_);

    // The bus thread's own.
    sd_bus* bus_ = nullptr;      // Null while there is none.
    Descriptor fd_;              // The connection's.
    bool isFirstTry_ = true;     // Whose end is awaited; later ones are not.
    Clock::time_point nextStep_; // When to try again, or to give up trying.
    std::string ownName_;
    std::string id_;
    std::map<std::string, sd_bus_slot*> watched_;
    std::deque<Change> changes_; // Heard, and yet to be announced.
};

} // namespace OHOS::Transport

#endif // BUS_H
