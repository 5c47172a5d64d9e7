// SPDX-License-Identifier: Apache-2.0
#include "bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <thread>
#include <utility>

#include "notices.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

constexpr const char* ADDRESS_VARIABLE = "OHOS_BUS_ADDRESS";
constexpr const char* DAEMON = "org.freedesktop.DBus";
constexpr const char* DAEMON_PATH = "/org/freedesktop/DBus";
constexpr std::chrono::seconds PATIENCE{8};
constexpr uint64_t TIMEOUT = std::chrono::microseconds(PATIENCE).count(); // The same, for sd-bus.
constexpr std::chrono::milliseconds NEXT_TRY{500};
constexpr std::chrono::milliseconds PAUSE{100};

// Read once: a program may change its environment later, and must not while another thread reads it.
const std::string& GetAddressText()
{
    static const char* const value = secure_getenv(ADDRESS_VARIABLE);
    static const auto& text = *new std::string(value != nullptr ? value : "");
    return text;
}

// Other kinds of addresses start programs or go over the network.
Bus::Address ReadAddress()
{
    const std::string& address = GetAddressText();
    for (const std::string key : {"unix:path=", "unix:abstract="}) {
        if (address.compare(0, key.size(), key) == 0 && address.size() > key.size() && address[key.size()] != ',' &&
            address.find(';') == std::string::npos) {
            return Bus::Address::GIVEN;
        }
    }
    return address.empty() ? Bus::Address::NONE : Bus::Address::MALFORMED;
}

} // namespace

Bus& Bus::Get()
{
    static Bus& bus = *new Bus();
    return bus;
}

Bus::Address Bus::GetAddress()
{
    static const Address address = ReadAddress();
    return address;
}

bool Bus::Start()
{
    const MutexLock lock(mutex_);
    if (!isStarted_ && GetAddress() == Address::GIVEN) {
        isStarted_ = Notices::Start() && Process::StartThread([this] { Run(); });
        isTurnTaken_ = isStarted_; // For that thread, so that whoever asks now waits for it to join the bus.
    }
    return isStarted_;
}

bool Bus::TakeTurn()
{
    const auto deadline = Clock::now() + PATIENCE;
    if (!Process::IsUsable()) {
        return false;
    }
    MutexLock lock(mutex_);
    while (isTurnTaken_) {
        if (!turnEnded_.WaitUntil(lock, deadline)) {
            return false;
        }
    }
    return isTurnTaken_ = isStarted_; // Before that there is nobody to ask.
}

void Bus::EndTurn()
{
    AnnounceChanges();
    if (mustRejoin_.exchange(false)) {
        shutdown(fd_.Get(), SHUT_RDWR); // Which the bus's thread finds out.
    }
    const MutexLock lock(mutex_);
    isTurnTaken_ = false;
    turnEnded_.NotifyAll();
}

void Bus::Run()
{
    for (bool hasTurn = true; Process::IsUsable(); hasTurn = TakeTurn()) {
        pollfd wait{-1, POLLIN, 0};
        if (hasTurn) {
            if (bus_ != nullptr ? !ReadNews() : !Connect()) {
                Leave();
            }
            wait.fd = fd_.Get();
            EndTurn();
        }
        if (poll(&wait, 1, wait.fd >= 0 ? -1 : static_cast<int>(NEXT_TRY.count())) < 0) {
            std::this_thread::sleep_for(PAUSE); // The limit of descriptors is 0.
        }
    }
}

bool Bus::Connect()
{
    const auto deadline = Clock::now() + PATIENCE;
    if (sd_bus_new(&bus_) < 0 || sd_bus_set_address(bus_, GetAddressText().c_str()) < 0 ||
        sd_bus_set_bus_client(bus_, 1) < 0 || sd_bus_set_method_call_timeout(bus_, TIMEOUT) < 0) {
        return false;
    }
    fd_ = Descriptor::Open([this] { return sd_bus_start(bus_) >= 0 ? sd_bus_get_fd(bus_) : -1; });
    while (fd_ && ReadNews() && sd_bus_is_ready(bus_) == 0 && Clock::now() < deadline) {
        sd_bus_wait(bus_, std::chrono::microseconds(PAUSE).count());
    }
    const char* name = nullptr;
    sd_id128_t id{};
    if (!fd_ || sd_bus_is_ready(bus_) <= 0 || sd_bus_get_unique_name(bus_, &name) < 0 ||
        sd_bus_get_bus_id(bus_, &id) < 0) {
        return false;
    }
    std::array<char, SD_ID128_STRING_MAX> text{};
    ownName_ = name;
    id_ = sd_id128_to_string(id, text.data());
    isUp_ = true;
    return std::all_of(observers_.begin(), observers_.end(), [](Observer* observer) { return observer->OnJoined(); });
}

// False if the connection has ended.
bool Bus::ReadNews()
{
    while (sd_bus_is_open(bus_) > 0 && sd_bus_process(bus_, nullptr) > 0) {
    }
    return sd_bus_is_open(bus_) > 0; // Where it is not, sd-bus would close the descriptor, which is Leave's.
}

void Bus::Leave()
{
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

// What the daemon said before its last answer waits in sd-bus after that.
void Bus::ReadQueued()
{
    uint64_t queued = 0;
    while (isUp_ && sd_bus_is_open(bus_) > 0 && sd_bus_get_n_queued_read(bus_, &queued) >= 0 && queued > 0 &&
           sd_bus_process(bus_, nullptr) > 0) {
    }
}

void Bus::AnnounceChanges()
{
    for (ReadQueued(); !changes_.empty(); ReadQueued()) { // Observers ask, and so make more wait.
        const Change change = std::move(changes_.front());
        changes_.pop_front();
        for (Observer* observer : observers_) {
            observer->OnOwnerChange(change.name, change.from, change.to);
        }
        if (change.name[0] == ':') {
            Unwatch(change.name); // It never comes again.
        }
    }
}

std::string Bus::Watch(const std::string& name)
{
    std::optional<std::string> owner;
    const bool isWatched = Watch(name, [&] { return (owner = OwnerOf(name)).has_value(); });
    return isWatched ? owner.value_or("") : "";
}

bool Bus::WatchProcess(const std::string& name, pid_t& pid, uid_t& uid)
{
    std::optional<bool> isFound;
    const bool isWatched = Watch(name, [&] { return (isFound = GetCredentials(name, pid, uid)).has_value(); });
    if (isWatched && isFound.value_or(false)) {
        return true;
    }
    Unwatch(name);
    return false;
}

// The daemon answers in order, so by the answer to what `ask` asks, it watches. False if it does not want to.
bool Bus::Watch(const std::string& name, const std::function<bool()>& ask)
{
    const std::string rule = std::string("type='signal',sender='") + DAEMON + "',path='" + DAEMON_PATH +
                             "',interface='" + DAEMON + "',member='NameOwnerChanged',arg0='" + name + "'";
    const auto receive = [](sd_bus_message* signal, void* self, sd_bus_error* /* error */) {
        static_cast<Bus*>(self)->OnNameOwnerChanged(signal);
        return 0;
    };
    const auto receiveAnswer = [](sd_bus_message* answer, void* self, sd_bus_error* /* error */) {
        static_cast<Bus*>(self)->isMatched_ = sd_bus_message_is_method_error(answer, nullptr) == 0;
        return 0;
    };
    sd_bus_slot* slot = nullptr;
    isMatched_ = watched_.count(name) != 0;
    if (!isMatched_) {
        // The deadline of `ask` is that of both: a process that was stopped meanwhile may find both answers after it.
        sd_bus_set_method_call_timeout(bus_, UINT64_MAX);
        const int error = sd_bus_add_match_async(bus_, &slot, rule.c_str(), receive, receiveAnswer, this);
        sd_bus_set_method_call_timeout(bus_, TIMEOUT);
        if (error < 0) {
            return false;
        }
    }
    const std::shared_ptr<sd_bus_slot> match(slot, sd_bus_slot_unref);
    const bool isAnswered = ask();
    ReadQueued(); // The changes until then are in the answer.
    if (match != nullptr && isMatched_) {
        watched_.emplace(name, match);
    }
    if (!isAnswered) {
        shutdown(fd_.Get(), SHUT_RDWR);
    }
    return isMatched_;
}

void Bus::OnNameOwnerChanged(sd_bus_message* signal)
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

std::optional<std::string> Bus::OwnerOf(const std::string& name)
{
    sd_bus_message* reply = nullptr;
    const char* owner = "";
    const int result =
        sd_bus_call_method(bus_, DAEMON, DAEMON_PATH, DAEMON, "GetNameOwner", nullptr, &reply, "s", name.c_str());
    const bool hasNone = result == -ENXIO; // What sd-bus makes of the daemon's NameHasNoOwner.
    const bool isAnswered = hasNone || (result >= 0 && sd_bus_message_read(reply, "s", &owner) > 0);
    auto answer = isAnswered ? std::optional<std::string>(owner) : std::nullopt;
    sd_bus_message_unref(reply);
    return answer;
}

std::optional<bool> Bus::GetCredentials(const std::string& name, pid_t& pid, uid_t& uid)
{
    sd_bus_creds* found = nullptr;
    const int result = sd_bus_get_name_creds(bus_, name.c_str(), SD_BUS_CREDS_PID | SD_BUS_CREDS_EUID, &found);
    const bool isFound =
        result >= 0 && sd_bus_creds_get_pid(found, &pid) >= 0 && sd_bus_creds_get_euid(found, &uid) >= 0;
    sd_bus_creds_unref(found);
    return result != -ETIMEDOUT ? std::optional(isFound) : std::nullopt;
}

std::optional<bool> Bus::RequestName(const std::string& name)
{
    const int result = sd_bus_request_name(bus_, name.c_str(), 0);
    const bool isAnswered = result != -ETIMEDOUT && sd_bus_is_open(bus_) > 0;
    return isAnswered ? std::optional(result >= 0 || result == -EALREADY) : std::nullopt;
}

bool Bus::ReleaseName(const std::string& name) { return sd_bus_release_name(bus_, name.c_str()) >= 0; }

} // namespace OHOS::Transport
