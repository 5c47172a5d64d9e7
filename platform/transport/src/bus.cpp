// SPDX-License-Identifier: Apache-2.0
#include "bus.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <thread>
#include <utility>

#include "never_destroyed.h"
#include "notices.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

constexpr const char* ADDRESS_VARIABLE = "OHOS_BUS_ADDRESS";
constexpr const char* DAEMON = "org.freedesktop.DBus";
constexpr const char* DAEMON_PATH = "/org/freedesktop/DBus";
constexpr std::chrono::milliseconds NEXT_TRY{500};
constexpr std::chrono::milliseconds PAUSE{100};

// Other kinds of addresses start programs or go over the network.
Bus::Address ReadAddress()
{
    const char* const value = secure_getenv(ADDRESS_VARIABLE);
    const std::string address = value != nullptr ? value : "";
    for (const std::string key : {"unix:path=", "unix:abstract="}) {
        const bool hasKey = address.compare(0, key.size(), key) == 0;
        if (hasKey && address.find_first_of(",;", key.size()) != key.size() && address.size() > key.size() &&
            address.find(';') == std::string::npos) {
            return Bus::Address::GIVEN;
        }
    }
    return address.empty() ? Bus::Address::NONE : Bus::Address::MALFORMED;
}

// The daemon's answer to a question about `name`: null, and an error, if it has none.
sd_bus_message* CallDaemon(sd_bus* bus, const char* member, const std::string& name, sd_bus_error* error)
{
    sd_bus_message* reply = nullptr;
    sd_bus_call_method(bus, DAEMON, DAEMON_PATH, DAEMON, member, error, &reply, "s", name.c_str());
    return reply;
}

} // namespace

Bus& Bus::Get()
{
    static NeverDestroyed<Bus> bus;
    return *bus;
}

Bus::Address Bus::GetAddress()
{
    static const Address address = ReadAddress();
    return address;
}

void Bus::Observe(Observer& observer)
{
    observers_.push_back(&observer);
}

bool Bus::Start()
{
    const MutexLock lock(mutex_);
    if (!isStarted_ && GetAddress() == Address::GIVEN) {
        wake_ = Descriptor::Open([] { return eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); });
        isStarted_ = wake_ && Notices::Start() && Process::StartThread([this] { Run(); });
    }
    return isStarted_;
}

bool Bus::Post(std::function<void()> task)
{
    const MutexLock lock(mutex_);
    if (isStarted_ && Process::IsUsable()) {
        tasks_.push_back(std::move(task));
        eventfd_write(wake_.Get(), 1);
    }
    return isStarted_ && Process::IsUsable();
}

void Bus::Run()
{
    for (;;) {
        if (bus_ == nullptr && Clock::now() >= nextStep_) {
            Connect();
        }
        if (bus_ != nullptr) {
            ReadNews();
        }
        if (!isFirstTry_) {
            RunTasks();
        }
        AnnounceChanges(); // Heard while the observers joined.
        Wait();
    }
}

void Bus::Connect()
{
    nextStep_ = Clock::now() + PATIENCE;
    if (sd_bus_new(&bus_) < 0 || sd_bus_set_address(bus_, secure_getenv(ADDRESS_VARIABLE)) < 0 ||
        sd_bus_set_bus_client(bus_, 1) < 0 ||
        sd_bus_set_method_call_timeout(bus_, std::chrono::microseconds(PATIENCE).count()) < 0) {
        Leave();
        return;
    }
    fd_ = Descriptor::Open([this] { return sd_bus_start(bus_) >= 0 ? sd_bus_get_fd(bus_) : -1; });
    if (!fd_) {
        Leave();
    }
}

void Bus::ReadNews()
{
    int done = 0;
    do {
        done = sd_bus_process(bus_, nullptr);
    } while (done > 0 || done == -EINTR);
    AnnounceChanges();
    if ((done < 0 && done != -EAGAIN) || (!isUp_ && Clock::now() >= nextStep_)) {
        Leave();
    } else if (!isUp_ && sd_bus_is_ready(bus_) > 0) {
        Join();
    }
}

void Bus::Join()
{
    const char* name = nullptr;
    sd_id128_t id{};
    if (sd_bus_get_unique_name(bus_, &name) < 0 || sd_bus_get_bus_id(bus_, &id) < 0) {
        Leave();
        return;
    }
    std::array<char, SD_ID128_STRING_MAX> text{};
    ownName_ = name;
    id_ = sd_id128_to_string(id, text.data());
    isFirstTry_ = false;
    isUp_ = true;
    const auto join = [](Observer* observer) { return observer->OnJoined(); };
    if (!std::all_of(observers_.begin(), observers_.end(), join)) {
        Leave();
    }
}

void Bus::Leave()
{
    isFirstTry_ = false;
    nextStep_ = Clock::now() + NEXT_TRY;
    for (const auto& [name, slot] : watched_) {
        sd_bus_slot_unref(slot);
    }
    watched_.clear();
    changes_.clear();
    fd_.CloseBy([this] { sd_bus_close(bus_); });
    bus_ = sd_bus_unref(bus_);
    if (isUp_.exchange(false)) {
        for (Observer* observer : observers_) {
            observer->OnLost();
        }
    }
}

void Bus::RunTasks()
{
    std::deque<std::function<void()>> tasks;
    {
        const MutexLock lock(mutex_);
        tasks.swap(tasks_);
    }
    for (const auto& task : tasks) {
        task();
        ReadQueued();
        AnnounceChanges();
    }
}

// What the daemon said before its last answer. It waits behind that in sd-bus.
void Bus::ReadQueued()
{
    uint64_t queued = 0;
    while (bus_ != nullptr && sd_bus_get_n_queued_read(bus_, &queued) >= 0 && queued > 0 &&
           sd_bus_process(bus_, nullptr) > 0) {
    }
}

void Bus::AnnounceChanges()
{
    while (!changes_.empty()) {
        const Change change = std::move(changes_.front());
        changes_.pop_front();
        for (Observer* observer : observers_) {
            observer->OnOwnerChange(change.name, change.from, change.to);
        }
    }
}

void Bus::Wait()
{
    std::array<pollfd, 2> waits{{{wake_.Get(), POLLIN, 0}, {-1, 0, 0}}};
    auto until = isUp_ ? Clock::now() + std::chrono::hours(1) : nextStep_;
    if (bus_ != nullptr) {
        const int events = sd_bus_get_events(bus_);
        uint64_t due = UINT64_MAX;
        if (events < 0 || sd_bus_get_timeout(bus_, &due) < 0) {
            return;
        }
        waits[1] = {fd_.Get(), static_cast<short>(events), 0};
        if (due != UINT64_MAX) {
            until = std::min(until, Clock::time_point(std::chrono::microseconds(due)));
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    if (poll(waits.data(), waits.size(), static_cast<int>(std::max<int64_t>(left, 0))) < 0 && errno != EINTR) {
        std::this_thread::sleep_for(PAUSE); // The limit of descriptors is below two.
    }
    eventfd_t woken = 0;
    eventfd_read(wake_.Get(), &woken);
}

std::string Bus::Watch(const std::string& name)
{
    const std::string rule = std::string("type='signal',sender='") + DAEMON + "',path='" + DAEMON_PATH +
                             "',interface='" + DAEMON + "',member='NameOwnerChanged',arg0='" + name + "'";
    const auto hear = [](sd_bus_message* signal, void* self, sd_bus_error* /* error */) {
        static_cast<Bus*>(self)->Hear(signal);
        return 0;
    };
    sd_bus_slot* slot = nullptr;
    if (watched_.count(name) != 0 || sd_bus_add_match(bus_, &slot, rule.c_str(), hear, this) < 0) {
        return "";
    }
    std::string owner = OwnerOf(name);
    ReadQueued(); // The changes until then are in the answer.
    watched_.emplace(name, slot);
    return owner;
}

void Bus::Unwatch(const std::string& name)
{
    const auto found = watched_.find(name);
    if (found != watched_.end()) {
        sd_bus_slot_unref(found->second);
        watched_.erase(found);
    }
}

void Bus::Hear(sd_bus_message* signal)
{
    const char* name = nullptr;
    const char* from = nullptr;
    const char* to = nullptr;
    const char* const sender = sd_bus_message_get_sender(signal);
    if (sender != nullptr && std::string(sender) == DAEMON &&
        sd_bus_message_read(signal, "sss", &name, &from, &to) > 0 && watched_.count(name) != 0) {
        changes_.push_back({name, from, to});
    }
}

std::string Bus::OwnerOf(const std::string& name)
{
    sd_bus_message* const reply = CallDaemon(bus_, "GetNameOwner", name, nullptr);
    const char* owner = nullptr;
    std::string found = reply != nullptr && sd_bus_message_read(reply, "s", &owner) > 0 ? owner : "";
    sd_bus_message_unref(reply);
    return found;
}

bool Bus::IsGone(const std::string& name)
{
    sd_bus_error error{};
    sd_bus_message_unref(CallDaemon(bus_, "GetNameOwner", name, &error));
    const bool isGone = sd_bus_error_has_name(&error, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0;
    sd_bus_error_free(&error);
    return isGone;
}

bool Bus::GetCredentials(const std::string& name, pid_t& pid, uid_t& uid)
{
    sd_bus_creds* found = nullptr;
    const bool isFound = sd_bus_get_name_creds(bus_, name.c_str(), SD_BUS_CREDS_PID | SD_BUS_CREDS_EUID, &found) >= 0 &&
                         sd_bus_creds_get_pid(found, &pid) >= 0 && sd_bus_creds_get_euid(found, &uid) >= 0;
    sd_bus_creds_unref(found);
    return isFound;
}

bool Bus::RequestName(const std::string& name)
{
    const int result = sd_bus_request_name(bus_, name.c_str(), 0);
    return result >= 0 || result == -EALREADY;
}

void Bus::ReleaseName(const std::string& name)
{
    sd_bus_release_name(bus_, name.c_str());
}

} // namespace OHOS::Transport
