// SPDX-License-Identifier: Apache-2.0
#include "bus.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/random.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "exports.h"
#include "notices.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

constexpr const char* ADDRESS_VARIABLE = "OHOS_BUS_ADDRESS";
constexpr const char* DAEMON = "org.freedesktop.DBus";
constexpr const char* DAEMON_PATH = "/org/freedesktop/DBus";
constexpr const char* PEER_PATH = "/ohos/ipc";
constexpr const char* PEER_INTERFACE = "ohos.ipc.Peer";

constexpr std::chrono::seconds DAEMON_PATIENCE{8};
constexpr std::chrono::seconds MORE_PATIENCE{1};
constexpr std::chrono::seconds LAST_WORDS_PATIENCE{2};
constexpr std::chrono::milliseconds BLOCKED_RETRY{500};

constexpr uint32_t DO_NOT_QUEUE = 4;
constexpr uint32_t NAME_IS_OURS = 1;
constexpr uint32_t NAME_WAS_OURS = 4;
constexpr uint32_t NAME_IS_RELEASED = 1;

// The daemon counts what lies unread at a process against its sender, and in the end reads no more from that one: so
// nobody is sent more than this, in bytes, before it has shown that it reads. A process that keeps to the rules never
// has more than half of it coming in answers.
constexpr size_t MAX_UNREAD = 32768;
constexpr size_t MAX_UNREAD_RELEASES = MAX_UNREAD / 2;
constexpr size_t MAX_UNREAD_PONGS = MAX_UNREAD + 1024; // Lest two wait for each other.
constexpr size_t ASK_FROM = MAX_UNREAD / 4;

// About what messages take.
constexpr size_t MESSAGE_SIZE = 256;
constexpr size_t RELEASE_SIZE = 16;
constexpr size_t MAX_RELEASES = 250; // In one message.

// Other kinds of addresses start programs or go over the network.
bool IsSocket(const std::string& address)
{
    return address.rfind("unix:", 0) == 0 && address.find(';') == std::string::npos;
}

bool IsAnswer(sd_bus_message* reply)
{
    return reply != nullptr && sd_bus_message_is_method_error(reply, nullptr) == 0;
}

std::string ReadName(sd_bus_message* reply)
{
    const char* name = nullptr;
    return IsAnswer(reply) && sd_bus_message_read(reply, "s", &name) > 0 ? name : "";
}

// Of a call that is given longer than anyone waits for it: if nobody answers before that, there is nobody.
int ErrorOf(sd_bus_message* reply)
{
    bool isGone = reply == nullptr;
    for (const char* error : {SD_BUS_ERROR_NO_REPLY, SD_BUS_ERROR_SERVICE_UNKNOWN, SD_BUS_ERROR_NAME_HAS_NO_OWNER}) {
        isGone = isGone || sd_bus_message_is_method_error(reply, error) > 0;
    }
    return isGone ? ERR_DEAD_OBJECT : ERR_REFUSED;
}

bool ReadCredentials(sd_bus_message* reply, Peer::Credentials& credentials)
{
    if (!IsAnswer(reply) || sd_bus_message_enter_container(reply, 'a', "{sv}") <= 0) {
        return false;
    }
    int found = 0;
    while (sd_bus_message_enter_container(reply, 'e', "sv") > 0) {
        const char* key = nullptr;
        uint32_t value = 0;
        if (sd_bus_message_read(reply, "s", &key) <= 0) {
            return false;
        }
        const std::string name(key);
        if (name == "UnixUserID" || name == "ProcessID") {
            if (sd_bus_message_read(reply, "v", "u", &value) <= 0) {
                return false;
            }
            ++found;
            if (name == "UnixUserID") {
                credentials.uid = value;
            } else {
                credentials.pid = static_cast<pid_t>(value);
            }
        } else if (sd_bus_message_skip(reply, "v") < 0) {
            return false;
        }
        sd_bus_message_exit_container(reply);
    }
    return found == 2;
}

// The descriptor in a Connect's reply, if it is the socket that was asked for; it belongs to the reply. Else -1.
int SocketIn(sd_bus_message* reply)
{
    int fd = -1;
    int domain = 0;
    int type = 0;
    socklen_t length = sizeof(int);
    const bool isSocket = IsAnswer(reply) && sd_bus_message_read_basic(reply, 'h', &fd) > 0 &&
                          getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &length) == 0 && domain == AF_UNIX &&
                          getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_SEQPACKET;
    return isSocket ? fd : -1;
}

} // namespace

Bus& Bus::Get()
{
    static auto& bus = *new Bus();
    return bus;
}

bool Bus::IsConfigured()
{
    static const bool isConfigured = secure_getenv(ADDRESS_VARIABLE) != nullptr;
    return isConfigured;
}

void Bus::SetObservers(OwnerChange ownerChange, Loss loss)
{
    ownerChange_ = std::move(ownerChange);
    loss_ = std::move(loss);
}

bool Bus::Connect()
{
    if (!Process::IsUsable()) {
        return false;
    }
    if (state_ == State::UNTRIED) {
        std::lock_guard<std::mutex> lock(connectMutex_);
        if (state_ == State::UNTRIED && Open()) {
            if (Process::StartThread([this] { Run(); })) {
                State untried = State::UNTRIED;
                state_.compare_exchange_strong(untried, State::UP); // It may have been lost again already.
            } else {
                Close();
            }
        }
    }
    return state_ == State::UP;
}

bool Bus::Open()
{
    const char* address = secure_getenv(ADDRESS_VARIABLE);
    wake_ = Descriptor::Event();
    if (address == nullptr || !IsSocket(address) || !wake_ || sd_bus_new(&bus_) < 0) {
        return false;
    }
    const auto deadline = Clock::now() + DAEMON_PATIENCE;
    bool isOpen = sd_bus_set_address(bus_, address) >= 0 && sd_bus_set_bus_client(bus_, 1) >= 0 &&
                  sd_bus_negotiate_fds(bus_, 1) >= 0 &&
                  sd_bus_set_method_call_timeout(bus_, std::chrono::microseconds(AS_LONG_AS_IT_LIVES).count()) >= 0;
    if (isOpen) {
        std::lock_guard<std::mutex> gate(Descriptor::ForkGate());
        isOpen = sd_bus_start(bus_) >= 0;
        if (isOpen) {
            busFd_ = sd_bus_get_fd(bus_);
            Descriptor::CloseAtFork(busFd_);
        }
    }
    while (isOpen && sd_bus_is_ready(bus_) == 0) {
        const auto left = std::chrono::duration_cast<std::chrono::microseconds>(deadline - Clock::now()).count();
        int done = left > 0 ? sd_bus_process(bus_, nullptr) : -ETIMEDOUT;
        if (done == 0) {
            done = sd_bus_wait(bus_, static_cast<uint64_t>(left));
        }
        isOpen = done >= 0 || done == -EINTR;
    }
    const char* name = nullptr;
    if (!isOpen || sd_bus_is_ready(bus_) <= 0 || sd_bus_get_unique_name(bus_, &name) < 0 ||
        // Asked for before anything else is, and so in force before anything else is answered.
        sd_bus_match_signal_async(
            bus_, nullptr, DAEMON, DAEMON_PATH, DAEMON, "NameOwnerChanged", &Bus::OnOwnerChange, nullptr, this) < 0 ||
        sd_bus_add_filter(bus_, nullptr, &Bus::OnMessage, this) < 0) {
        Close();
        return false;
    }
    ownName_ = name;
    spare_ = Descriptor::Copy(wake_.Get());
    return true;
}

void Bus::Close()
{
    Descriptor::Disown(std::exchange(busFd_, -1));
    bus_ = sd_bus_close_unref(bus_);
}

void Bus::Post(std::function<void()> task)
{
    std::lock_guard<std::mutex> lock(mutex_);
    tasks_.push_back(std::move(task));
    eventfd_write(wake_.Get(), 1);
}

void Bus::Run()
{
    for (;;) {
        RunTasks();
        const bool isBusy = bus_ != nullptr && ProcessOne();
        const auto now = Clock::now();
        while (!dying_.empty() && dying_.front().deadline <= now) {
            Forget(dying_.front().peer);
        }
        if (!isBusy || !blocked_.empty()) {
            Wait(isBusy);
        }
    }
}

void Bus::RunTasks()
{
    std::deque<std::function<void()>> tasks;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        tasks.swap(tasks_);
    }
    for (const auto& task : tasks) {
        task();
    }
}

bool Bus::ProcessOne()
{
    int done = 0;
    {
        std::lock_guard<std::mutex> gate(Descriptor::ForkGate());
        // At most one message is read, with at most one descriptor: for which there must be room even when nobody waits
        // for it, or the stream would break.
        spare_ = {};
        done = sd_bus_process(bus_, nullptr);
        if (!spare_) {
            spare_ = Descriptor::Copy(wake_.Get());
        }
    }
    if (done < 0 && done != -EINTR && done != -EAGAIN) {
        Lose();
    }
    return done != 0;
}

void Bus::Wait(bool isBusy)
{
    std::vector<pollfd> waits{{wake_.Get(), POLLIN, 0}};
    int64_t timeout = isBusy ? 0 : -1; // In microseconds; negative for ever.
    const auto limit = [&timeout](int64_t left) {
        const int64_t least = std::max<int64_t>(left, 0);
        timeout = timeout < 0 ? least : std::min(timeout, least);
    };
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch());
    if (bus_ != nullptr) {
        const int events = sd_bus_get_events(bus_);
        uint64_t due = UINT64_MAX;
        if (events < 0 || sd_bus_get_timeout(bus_, &due) < 0) {
            limit(0);
        } else {
            waits.push_back({busFd_, static_cast<short>(events), 0});
        }
        if (due != UINT64_MAX) {
            limit(static_cast<int64_t>(due) - now.count());
        }
    }
    if (!dying_.empty()) {
        limit(
            std::chrono::duration_cast<std::chrono::microseconds>(dying_.front().deadline.time_since_epoch()).count() -
            now.count());
    }
    for (const auto& peer : blocked_) {
        waits.push_back({peer->OneWayConnection(), POLLOUT, 0});
        limit(std::chrono::microseconds(BLOCKED_RETRY).count());
    }
    const timespec relative{timeout / 1'000'000, timeout % 1'000'000 * 1000};
    ppoll(waits.data(), waits.size(), timeout < 0 ? nullptr : &relative, nullptr);
    eventfd_t count = 0;
    eventfd_read(wake_.Get(), &count);
    for (const auto& peer : std::exchange(blocked_, {})) {
        FlushReleases(peer);
    }
}

void Bus::Lose()
{
    state_ = State::LOST;
    Close();
    while (!peers_.empty()) {
        MarkDead(peers_.begin()->first);
    }
    while (!dying_.empty()) {
        Forget(dying_.front().peer);
    }
    while (!pending_.empty()) {
        const Reply done = std::move(pending_.front().done);
        pending_.pop_front();
        done(nullptr);
    }
    loss_();
}

void Bus::Call(sd_bus_message* call, std::chrono::microseconds patience, Reply done)
{
    pending_.push_front({this, {}, std::move(done)});
    pending_.front().self = pending_.begin();
    const auto timeout = static_cast<uint64_t>(std::max<int64_t>(patience.count(), 1000)); // 0 is sd-bus's default.
    if (call == nullptr || bus_ == nullptr ||
        sd_bus_call_async(bus_, nullptr, call, &Bus::OnReply, &pending_.front(), timeout) < 0) {
        const Reply failed = std::move(pending_.front().done);
        pending_.pop_front();
        failed(nullptr);
    }
    sd_bus_message_unref(call);
}

int Bus::OnReply(sd_bus_message* reply, void* pending, sd_bus_error* /* error */)
{
    auto* found = static_cast<Pending*>(pending);
    const Reply done = std::move(found->done);
    found->bus->pending_.erase(found->self);
    done(reply);
    return 0;
}

void Bus::CallDaemon(const char* member, const std::string& name, const uint32_t* flags, Reply done)
{
    sd_bus_message* call = nullptr;
    if (bus_ != nullptr && sd_bus_message_new_method_call(bus_, &call, DAEMON, DAEMON_PATH, DAEMON, member) >= 0) {
        sd_bus_message_append(call, "s", name.c_str());
        if (flags != nullptr) {
            sd_bus_message_append(call, "u", *flags);
        }
    }
    // However long it takes: nobody asks again for what goes on without an answer, and who waits has a deadline.
    Call(call, AS_LONG_AS_IT_LIVES, std::move(done));
}

int Bus::AskForName(const char* member, const std::string& name, const uint32_t* flags)
{
    const auto answer = std::make_shared<Answer<int>>();
    Post([this, member, name, hasFlags = flags != nullptr, flag = flags != nullptr ? *flags : 0, answer] {
        CallDaemon(member, name, hasFlags ? &flag : nullptr, [this, answer, hasFlags](sd_bus_message* reply) {
            uint32_t result = 0;
            int error = ErrorOf(reply);
            if (IsAnswer(reply) && sd_bus_message_read(reply, "u", &result) > 0) {
                const bool isDone =
                    hasFlags ? result == NAME_IS_OURS || result == NAME_WAS_OURS : result == NAME_IS_RELEASED;
                error = isDone ? ERR_NONE : ERR_REFUSED;
            }
            Post([answer, error] { answer->Set(error); });
        });
    });
    return answer->AwaitUntil(Clock::now() + DAEMON_PATIENCE, ERR_TIMED_OUT);
}

int Bus::RequestName(const std::string& name)
{
    const int error = AskForName("RequestName", name, &DO_NOT_QUEUE);
    if (error == ERR_TIMED_OUT) {
        // Should the daemon give it after all: it takes one question after the other.
        Post([this, name] { CallDaemon("ReleaseName", name, nullptr, [](sd_bus_message* /* reply */) {}); });
    }
    return error;
}

int Bus::ReleaseName(const std::string& name)
{
    return AskForName("ReleaseName", name, nullptr);
}

std::shared_ptr<Peer> Bus::OwnerOf(const std::string& name)
{
    const auto answer = std::make_shared<Answer<std::shared_ptr<Peer>>>();
    Post([this, name, answer] {
        AskOwner(name, [this, answer](const std::string& owner) {
            const auto peer = owner.empty() || owner == ownName_ ? nullptr : PeerNamed(owner);
            Post([answer, peer] { answer->Set(peer); });
        });
    });
    return answer->AwaitUntil(Clock::now() + DAEMON_PATIENCE, nullptr);
}

void Bus::AskOwner(const std::string& name, const std::function<void(const std::string& owner)>& done)
{
    CallDaemon("GetNameOwner", name, nullptr, [done](sd_bus_message* reply) { done(ReadName(reply)); });
}

void Bus::AfterLastWords(const std::string& peer, const std::function<void()>& task)
{
    // The daemon's answer comes after the news of a death, so that a dead peer is known to be one by then.
    CallDaemon("NameHasOwner", peer, nullptr, [this, peer, task](sd_bus_message* /* reply */) {
        const auto dying = std::find_if(
            dying_.begin(), dying_.end(), [&peer](const Dying& candidate) { return candidate.peer->Name() == peer; });
        if (dying != dying_.end()) {
            dying->tasks.push_back(task);
        } else {
            task();
        }
    });
}

std::shared_ptr<Answer<Introduction>> Bus::AskForConnection(const std::string& peer, std::chrono::microseconds patience)
{
    auto answer = std::make_shared<Answer<Introduction>>();
    // The connection's place in the descriptor table is taken before anyone is asked.
    const auto place = std::make_shared<Descriptor>(Descriptor::Copy(wake_.Get()));
    if (!*place) {
        answer->Set({{}, ERR_NO_DESCRIPTOR});
        return answer;
    }
    Post([this, peer, patience, place, answer] {
        if (!spare_) {
            spare_ = Descriptor::Copy(wake_.Get());
        }
        if (!spare_) {
            answer->Set({{}, ERR_NO_DESCRIPTOR});
            return;
        }
        sd_bus_message* call = nullptr;
        if (bus_ != nullptr) {
            sd_bus_message_new_method_call(bus_, &call, peer.c_str(), PEER_PATH, PEER_INTERFACE, "Connect");
        }
        Call(call, patience, [this, place, answer](sd_bus_message* reply) {
            const int fd = SocketIn(reply);
            if (fd >= 0 && place->Become(fd)) {
                Post([answer, place] { answer->Set({std::move(*place), ERR_NONE}); });
            } else {
                Post([answer, error = ErrorOf(reply)] { answer->Set({{}, error}); });
            }
        });
    });
    return answer;
}

Descriptor Bus::OpenConnection(const std::string& peer, Clock::time_point deadline, int& error)
{
    const auto left = std::chrono::ceil<std::chrono::microseconds>(deadline - Clock::now());
    Introduction made = AskForConnection(peer, left + MORE_PATIENCE)->AwaitUntil(deadline, {{}, ERR_TIMED_OUT});
    error = made.error;
    return std::move(made.connection);
}

std::shared_ptr<Peer> Bus::PeerNamed(const std::string& name)
{
    std::shared_ptr<Peer>& peer = peers_[name];
    if (peer == nullptr) {
        peer = std::make_shared<Peer>(name);
    }
    return peer;
}

void Bus::MarkDead(const std::string& name)
{
    const auto found = peers_.find(name);
    if (found == peers_.end()) {
        return;
    }
    const std::shared_ptr<Peer> peer = found->second;
    peers_.erase(found);
    peer->Die();
    dying_.push_back({peer, Clock::now() + LAST_WORDS_PATIENCE, {}});
    ForgetIfRead(peer);
}

void Bus::ForgetIfRead(const std::shared_ptr<Peer>& peer)
{
    if (!peer->IsBeingServed()) {
        Forget(peer);
    }
}

// By value: what is given may be an entry of dying_. NOLINTNEXTLINE(performance-unnecessary-value-param)
void Bus::Forget(std::shared_ptr<Peer> peer)
{
    std::vector<std::function<void()>> tasks;
    const auto dying =
        std::find_if(dying_.begin(), dying_.end(), [&peer](const Dying& candidate) { return candidate.peer == peer; });
    if (dying == dying_.end()) {
        return;
    }
    tasks = std::move(dying->tasks);
    dying_.erase(dying);
    peer->StopServing();
    Notices::Post([peer, objects = Exports::Get().Forget(*peer)] { peer->SendObituaries(); });
    for (const auto& task : tasks) {
        task();
    }
}

void Bus::FlushReleases(const std::shared_ptr<Peer>& peer)
{
    const bool isFlushed = peer->FlushReleases([this, &peer](Peer::Releases& releases) {
        while (bus_ != nullptr && !releases.empty()) {
            const size_t count = std::min(releases.size(), MAX_RELEASES);
            sd_bus_message* message = nullptr;
            if (!MaySend(peer, MESSAGE_SIZE + count * RELEASE_SIZE, MAX_UNREAD_RELEASES) ||
                sd_bus_message_new_method_call(
                    bus_, &message, peer->Name().c_str(), PEER_PATH, PEER_INTERFACE, "Release") < 0) {
                return;
            }
            sd_bus_message_open_container(message, 'a', "(tu)");
            for (size_t i = 0; i < count; ++i) {
                sd_bus_message_append(message, "(tu)", releases.begin()->first, releases.begin()->second);
                releases.erase(releases.begin());
            }
            sd_bus_message_close_container(message);
            sd_bus_message_set_expect_reply(message, 0);
            sd_bus_send(bus_, message, nullptr);
            sd_bus_message_unref(message);
        }
    });
    if (!isFlushed && std::find(blocked_.begin(), blocked_.end(), peer) == blocked_.end()) {
        blocked_.push_back(peer);
    }
}

bool Bus::MaySend(const std::shared_ptr<Peer>& peer, size_t size, size_t limit)
{
    Peer::Mail& mail = peer->GetMail();
    if (mail.sent - mail.read + size > ASK_FROM && !mail.isAsked && bus_ != nullptr) {
        mail.isAsked = true;
        // A number that only who reads it knows: an answer can be sent unread.
        uint64_t secret = 0;
        sd_bus_message* call = nullptr;
        if (getrandom(&secret, sizeof(secret), 0) == sizeof(secret) &&
            sd_bus_message_new_method_call(bus_, &call, peer->Name().c_str(), PEER_PATH, PEER_INTERFACE, "Ping") >= 0) {
            sd_bus_message_append(call, "t", secret);
        }
        Call(call, AS_LONG_AS_IT_LIVES, [this, peer, secret, upTo = mail.sent](sd_bus_message* reply) {
            uint64_t echo = 0;
            // Who answers wrongly is not asked again.
            if (IsAnswer(reply) && sd_bus_message_read(reply, "t", &echo) > 0 && echo == secret) {
                peer->GetMail().isAsked = false;
                peer->GetMail().read = upTo;
                FlushReleases(peer);
            }
        });
    }
    const bool isAllowed = mail.sent - mail.read + size <= limit;
    mail.sent += isAllowed ? size : 0;
    return isAllowed;
}

int Bus::OnMessage(sd_bus_message* message, void* bus, sd_bus_error* /* error */)
{
    uint8_t type = 0;
    const char* const sender = sd_bus_message_get_sender(message);
    if (sd_bus_message_get_type(message, &type) < 0 || type != SD_BUS_MESSAGE_METHOD_CALL) {
        return 0;
    }
    Bus& self = *static_cast<Bus*>(bus);
    if (sender != nullptr && sd_bus_message_is_method_call(message, PEER_INTERFACE, "Connect") > 0) {
        self.OnConnect(message);
    } else if (sender != nullptr && sd_bus_message_is_method_call(message, PEER_INTERFACE, "Release") > 0) {
        self.OnRelease(message);
    } else if (sender != nullptr && sd_bus_message_is_method_call(message, PEER_INTERFACE, "Ping") > 0) {
        uint64_t secret = 0;
        if (sd_bus_message_read(message, "t", &secret) > 0 &&
            self.MaySend(self.PeerNamed(sender), MESSAGE_SIZE, MAX_UNREAD_PONGS)) {
            sd_bus_reply_method_return(message, "t", secret);
        }
    }
    return 1; // Nobody else answers: not sd-bus either, and whatever else is asked.
}

void Bus::OnConnect(sd_bus_message* call)
{
    const std::shared_ptr<Peer> peer = PeerNamed(sd_bus_message_get_sender(call));
    if (!MaySend(peer, MESSAGE_SIZE, MAX_UNREAD)) {
        return; // It does not read its answers.
    }
    if (!Process::IsUsable() || !Exports::Get().Welcomes(*peer)) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Nothing here is yours to call");
        return;
    }
    if (peer->HasCredentials()) {
        Grant(call, peer);
        return;
    }
    sd_bus_message_ref(call);
    CallDaemon("GetConnectionCredentials", peer->Name(), nullptr, [this, call, peer](sd_bus_message* reply) {
        Peer::Credentials credentials{};
        if (ReadCredentials(reply, credentials)) {
            if (!peer->HasCredentials()) {
                peer->SetCredentials(credentials);
            }
            Grant(call, peer);
        } else {
            sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "Who are you?");
        }
        sd_bus_message_unref(call);
    });
}

void Bus::Grant(sd_bus_message* call, const std::shared_ptr<Peer>& peer)
{
    if (!peer->ReserveConnection()) {
        sd_bus_reply_method_errorf(call, SD_BUS_ERROR_LIMITS_EXCEEDED, "Too many connections");
        return;
    }
    Descriptor ours;
    Descriptor theirs;
    if (!Descriptor::MakePair(ours, theirs)) {
        peer->CancelConnection();
    } else if (peer->Serve(std::move(ours)) && sd_bus_reply_method_return(call, "h", theirs.Get()) >= 0) {
        return;
    }
    sd_bus_reply_method_errorf(call, SD_BUS_ERROR_NO_MEMORY, "No socket or no thread to be had");
}

void Bus::OnRelease(sd_bus_message* call)
{
    // Even a stranger's message does no harm: a peer takes off its own pins only.
    const std::shared_ptr<Peer> peer = PeerNamed(sd_bus_message_get_sender(call));
    std::vector<sptr<IRemoteObject>> objects;
    uint64_t id = 0;
    uint32_t count = 0;
    if (sd_bus_message_enter_container(call, 'a', "(tu)") > 0) {
        while (sd_bus_message_read(call, "(tu)", &id, &count) > 0) {
            sptr<IRemoteObject> object = Exports::Get().Unpin(*peer, id, count);
            if (object != nullptr) {
                objects.push_back(std::move(object));
            }
        }
    }
    // A flood of releases of nothing must not become one of notices.
    if (!objects.empty()) {
        Notices::Post([released = std::move(objects)] {});
    }
}

int Bus::OnOwnerChange(sd_bus_message* signal, void* bus, sd_bus_error* /* error */)
{
    const char* name = nullptr;
    const char* from = nullptr;
    const char* to = nullptr;
    // Anyone can send us such a signal, and sd-bus takes a unique name for any well-known one.
    const char* const sender = sd_bus_message_get_sender(signal);
    if (sender != nullptr && std::strcmp(sender, DAEMON) == 0 &&
        sd_bus_message_read(signal, "sss", &name, &from, &to) > 0) {
        if (name[0] != ':') {
            static_cast<Bus*>(bus)->ownerChange_(name, from, to);
        } else if (to[0] == '\0') {
            static_cast<Bus*>(bus)->MarkDead(name);
        }
    }
    return 0;
}

} // namespace OHOS::Transport
