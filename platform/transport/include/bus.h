// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_H
#define BUS_H

#include <sys/types.h>

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
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
 * to. A thread of its own joins the bus, joins it anew when it has ended, and receives the daemon's signals. Any other
 * thread may ask in its turn.
 */
class Bus {
public:
    /** Is notified of changes, on whichever thread has its turn. It may ask, but runs no code of the users'. */
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

    /** To be called before Start. */
    void Observe(Observer& observer) { observers_.push_back(&observer); }

    /** Starts the thread if need be. False if there is no address or no thread to be had; the next call tries again. */
    bool Start();

    bool IsUp() const { return isUp_; }

    /**
     * What `question` answers, in its turn, which comes within 8 s; everything that the daemon said before is known
     * then. An empty answer where there is no bus or no turn.
     */
    template <typename Question>
    auto Ask(const Question& question) noexcept
    {
        decltype(question()) answer{};
        if (TakeTurn()) {
            if (isUp_) {
                answer = question();
            }
            EndTurn();
        }
        return answer;
    }

    /** The same for what must not be lost: where it does not get its turn, the bus is left and joined anew. */
    template <typename Question>
    auto AskOrRejoin(const Question& question) noexcept
    {
        bool isAsked = false;
        const auto answer = Ask([&] {
            isAsked = true;
            return question();
        });
        if (!isAsked && isUp_) {
            mustRejoin_ = true;
        }
        return answer;
    }

    // Within a question or an observer. Each waits for the daemon, for 8 s at most.

    /** This process's unique name, and the bus's own id. */
    const std::string& OwnName() const { return ownName_; }
    const std::string& Id() const { return id_; }

    /**
     * Has a name's changes of owner observed from now on, a unique name's to its end. The present owner; empty for
     * none. A daemon that does not say counts as gone, so that the next one is asked.
     */
    std::string Watch(const std::string& name);
    void Unwatch(const std::string& name) { watched_.erase(name); }
    bool IsWatched(const std::string& name) const { return watched_.count(name) > 0; }

    /**
     * Has a process's unique name watched, and asks for the process and the user that the daemon vouches for. False,
     * and nothing is watched, if nobody has that name.
     */
    bool WatchProcess(const std::string& name, pid_t& pid, uid_t& uid);

    /** Empty if the daemon says that nobody has that name; none if it says nothing. */
    std::optional<std::string> OwnerOf(const std::string& name);

    /** False if the name is another's or not for this user; none if the daemon does not say. */
    std::optional<bool> RequestName(const std::string& name);

    /** False if it was not this process's, or the daemon does not say. */
    bool ReleaseName(const std::string& name);

private:
    struct Change {
        std::string name;
        std::string from;
        std::string to;
    };

    bool TakeTurn();
    void EndTurn();
    void Run();
    bool Connect();
    bool ReadNews();
    void Leave();
    bool Watch(const std::string& name, const std::function<bool()>& ask);
    std::optional<bool> GetCredentials(const std::string& name, pid_t& pid, uid_t& uid);
    void ReadQueued();
    void AnnounceChanges();
    void OnNameOwnerChanged(sd_bus_message* signal);

    std::vector<Observer*> observers_;
    std::atomic<bool> isUp_{false};
    std::atomic<bool> mustRejoin_{false};

    Mutex mutex_;
    Condition turnEnded_;
    bool isStarted_ GUARDED_BY(mutex_) = false;
    bool isTurnTaken_ GUARDED_BY(mutex_) = false;

    // For whoever has the turn.
    sd_bus* bus_ = nullptr; // Null while there is none.
    Descriptor fd_;         // The connection's.
    std::string ownName_;
    std::string id_;
    std::map<std::string, std::shared_ptr<sd_bus_slot>> watched_;
    bool isMatched_ = false;     // Whether the daemon has taken the match that Watch has sent.
    std::deque<Change> changes_; // Received, and yet to be announced.
};

} // namespace OHOS::Transport

#endif // BUS_H
