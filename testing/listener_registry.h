// SPDX-License-Identifier: Apache-2.0
#ifndef LISTENER_REGISTRY_H
#define LISTENER_REGISTRY_H

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "ipc_skeleton.h"
#include "iremote_object.h"
#include "privacy_indicator_service_intf.h"
#include "push_queue.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing {

/**
 * The listeners of one interface, each with the topics whose events it is to get. Every listener has a queue and a
 * thread that empties it, so that one that does not answer delays no other. A listener is its remote object: added
 * again, it is still one listener. It is removed when its process dies. Any thread may call anything.
 */
template <typename Listener>
class ListenerRegistry : public IRemoteObject::DeathRecipient {
public:
    static constexpr size_t MAX_LISTENERS = 256;
    static constexpr size_t MAX_OF_PROCESS = 32;
    static constexpr size_t MAX_TOPICS = 16; // Of one listener.

    static constexpr int32_t SUCCESS = PrivacyIndicatorServiceIntf::SUCCESS;
    static constexpr int32_t INVALID_VALUE = PrivacyIndicatorServiceIntf::INVALID_VALUE;
    static constexpr int32_t NO_ROOM = 28;

    using Event = std::function<void(Listener&)>;

    explicit ListenerRegistry(PushQueue::Report report) : report_(std::move(report)) {}

    /**
     * Adds a topic to those of `listener`, which is not called. INVALID_VALUE if the listener's process has died;
     * NO_ROOM beyond the limits, after Close, or if no thread can be started.
     */
    int32_t Add(const sptr<Listener>& listener, const std::string& topic)
    {
        const sptr<IRemoteObject> object = listener->AsObject();
        std::lock_guard<std::mutex> lock(mutex_);
        RemoveEndedThreads();
        const auto known = entries_.find(object);
        if (known != entries_.end()) {
            auto& topics = known->second.topics;
            if (topics.size() == MAX_TOPICS && topics.count(topic) == 0) {
                return NO_ROOM;
            }
            ++topics[topic];
            return SUCCESS;
        }
        const pid_t process = IPCSkeleton::GetCallingPid();
        const auto ofProcess = std::count_if(
            entries_.begin(), entries_.end(), [&](const auto& entry) { return entry.second.process == process; });
        if (closed_ || entries_.size() + endedThreads_.size() >= MAX_LISTENERS ||
            static_cast<size_t>(ofProcess) >= MAX_OF_PROCESS) {
            return NO_ROOM;
        }
        const auto queue = std::make_shared<PushQueue>(
            "listener " + std::to_string(++lastNumber_) + " of process " + std::to_string(process), report_);
        Entry entry{listener, process, {{topic, 1}}, queue, {}};
        try {
            entry.thread = std::async(std::launch::async, [queue] { queue->Run(); });
        } catch (const std::system_error&) {
            return NO_ROOM;
        }
        // A listener of this process dies only with the registry.
        if (object->IsProxyObject() && !object->AddDeathRecipient(this)) {
            queue->Close();
            return INVALID_VALUE;
        }
        entries_.emplace(object, std::move(entry));
        return SUCCESS;
    }

    /** Does not wait for a call that the listener is in. INVALID_VALUE if it is not registered. */
    int32_t Remove(const sptr<IRemoteObject>& object)
    {
        Entry removed; // Destroyed after the lock is released.
        std::lock_guard<std::mutex> lock(mutex_);
        const auto known = entries_.find(object);
        if (known == entries_.end()) {
            return INVALID_VALUE;
        }
        removed = std::move(known->second);
        entries_.erase(known);
        object->RemoveDeathRecipient(this);
        removed.queue->Close();
        endedThreads_.push_back(std::move(removed.thread));
        return SUCCESS;
    }

    /** Has `event` called with every listener of that topic, on the listeners' threads. Does not wait. */
    void Push(const std::string& topic, Event event)
    {
        const auto shared = std::make_shared<const Event>(std::move(event));
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& [object, entry] : entries_) {
            if (entry.topics.count(topic) > 0) {
                entry.queue->Push([shared, listener = entry.listener] { (*shared)(*listener); });
            }
        }
    }

    /** Returns when all that was pushed until now has been called or dropped. */
    void AwaitCalls()
    {
        std::vector<std::shared_ptr<PushQueue>> queues;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            for (const auto& [object, entry] : entries_) {
                queues.push_back(entry.queue);
            }
        }
        for (const auto& queue : queues) {
            queue->AwaitCalls();
        }
    }

    /** The listeners, each with its topics and how often it was added for each. */
    std::map<sptr<IRemoteObject>, std::map<std::string, int>> GetTopics()
    {
        std::map<sptr<IRemoteObject>, std::map<std::string, int>> topics;
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& [object, entry] : entries_) {
            topics[object] = entry.topics;
        }
        return topics;
    }

    /**
     * Removes all listeners, and takes no more. What is returned waits, when it is destroyed, for the calls under way.
     */
    std::list<std::future<void>> Close()
    {
        std::map<sptr<IRemoteObject>, Entry> entries;
        std::list<std::future<void>> threads;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            closed_ = true;
            entries.swap(entries_);
            threads.swap(endedThreads_);
        }
        for (auto& [object, entry] : entries) {
            object->RemoveDeathRecipient(this);
            entry.queue->Close();
            threads.push_back(std::move(entry.thread));
        }
        return threads;
    }

    void OnRemoteDied(const wptr<IRemoteObject>& object) override
    {
        if (const sptr<IRemoteObject> died = object.promote()) {
            Remove(died);
        }
    }

private:
    struct Entry {
        sptr<Listener> listener;
        pid_t process;                     // The one that has registered it.
        std::map<std::string, int> topics; // How often each was added.
        std::shared_ptr<PushQueue> queue;
        std::future<void> thread; // Runs the queue. Its destructor waits for the thread.
    };

    void RemoveEndedThreads()
    {
        endedThreads_.remove_if([](const std::future<void>& thread) {
            return thread.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        });
    }

    const PushQueue::Report report_;
    std::mutex mutex_;
    std::map<sptr<IRemoteObject>, Entry> entries_;
    std::list<std::future<void>> endedThreads_; // Their queues are closed.
    uint64_t lastNumber_ = 0;
    bool closed_ = false;
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Testing

#endif // LISTENER_REGISTRY_H
