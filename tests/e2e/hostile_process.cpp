// SPDX-License-Identifier: Apache-2.0
// A peer that keeps to no rule: it speaks to the bus, and on sockets to service 66090, by hand.
#include <fcntl.h>
#include <sys/socket.h>
#include <systemd/sd-bus.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <random>
#include <utility>

#include "command_loop.h"

namespace {

constexpr const char* VICTIM = "ohos.sa.SA66090";
constexpr const char* PATH = "/ohos/ipc";
constexpr const char* INTERFACE = "ohos.ipc.Peer";
constexpr uint32_t MAX_SIZE = 1 << 20;

using Packet = std::vector<uint32_t>;
enum Kind : uint32_t { CALL = 1, REPLY, RELEASE };
// What peer_process serves, but for what it does not check itself.
const std::map<std::string, uint32_t> CODES{{"echo", 1}, {"wait", 7}};
constexpr std::array<uint32_t, 3> GARBAGE_CODES{1, 2, 5};
const Packet TEXT{1, 'x'};

sd_bus* g_bus = nullptr;
std::vector<int> g_connections;
bool g_isBait = false;
std::minstd_rand g_random; // The same every time.

uint32_t Below(size_t end)
{
    return static_cast<uint32_t>(g_random() % end);
}

// Shows, where it must, that it reads.
int AnswerPing(sd_bus_message* call, void* /* data */, sd_bus_error* /* error */)
{
    uint64_t secret = 0;
    if (sd_bus_message_is_method_call(call, INTERFACE, "Ping") <= 0 || sd_bus_message_read(call, "t", &secret) <= 0) {
        return 0;
    }
    return g_isBait ? sd_bus_reply_method_return(call, "h", STDIN_FILENO)
                    : sd_bus_reply_method_return(call, "t", secret);
}

// A new peer, which need not read what comes for it.
sd_bus* NewPeer()
{
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, getenv("OHOS_BUS_ADDRESS"));
    sd_bus_set_bus_client(bus, 1);
    sd_bus_negotiate_fds(bus, 1);
    const char* name = nullptr;
    if (sd_bus_start(bus) < 0 || sd_bus_get_unique_name(bus, &name) < 0) {
        std::abort();
    }
    return bus;
}

// join: becomes a new peer; what comes for the former one is never read.
std::string Join(const Words& /* words */)
{
    g_bus = NewPeer();
    sd_bus_add_filter(g_bus, nullptr, AnswerPing, nullptr);
    return "0";
}

// connect COUNT: how many connections are granted, of so many asked for one after the other.
std::string Connect(const Words& words)
{
    int granted = 0;
    for (int i = 0; i < std::stoi(words[1]); ++i) {
        sd_bus_message* reply = nullptr;
        int fd = -1;
        if (sd_bus_call_method(g_bus, VICTIM, PATH, INTERFACE, "Connect", nullptr, &reply, "") >= 0 &&
            sd_bus_message_read_basic(reply, 'h', &fd) > 0) {
            g_connections.push_back(fcntl(fd, F_DUPFD_CLOEXEC, 0));
            ++granted;
        }
        sd_bus_message_unref(reply);
        while (sd_bus_process(g_bus, nullptr) > 0) { // Shows that it reads.
        }
    }
    return std::to_string(granted);
}

// bait COUNT: as connect, but shows that it reads by an answer with a descriptor.
std::string Bait(const Words& words)
{
    g_isBait = true;
    return Connect(words);
}

Packet Message(uint32_t kind, uint32_t code, const Packet& handles, const Packet& data, uint32_t flags = 0)
{
    Packet packet{kind, code, flags, static_cast<uint32_t>(handles.size() / 4), kind == REPLY ? 0U : 66090U, 0,
        static_cast<uint32_t>(data.size() * 4), 0};
    packet.insert(packet.end(), handles.begin(), handles.end());
    packet.insert(packet.end(), data.begin(), data.end());
    return packet;
}

// Of this process's own objects, or (owner 1) of the receiver's, of which there are none.
Packet InventHandles(uint32_t count, uint32_t owner, Packet& data)
{
    Packet handles;
    for (uint32_t i = 0; i < count; ++i) {
        handles.insert(handles.end(), {owner, static_cast<uint32_t>(data.size() * 4), Below(UINT32_MAX), 1});
        data.resize(data.size() + 6);
    }
    return handles;
}

bool Send(int fd, const Packet& packet, size_t size, bool withDescriptor = false)
{
    iovec part{const_cast<uint32_t*>(packet.data()), size};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{nullptr, 0, &part, 1, control.data(), withDescriptor ? control.size() : 0, 0};
    const cmsghdr rights{CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // Of descriptor 0.
    std::memcpy(control.data(), &rights, sizeof(rights));
    return sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

// garbage COUNT: messages of all kinds and sizes, some good, most spoilt. Replies are not read.
std::string Garbage(const Words& words)
{
    for (int i = 0; i < std::stoi(words[1]); ++i) {
        Packet data = TEXT;
        const Packet handles = InventHandles(Below(8) == 0 ? Below(1030) : Below(2), Below(2), data);
        data.resize(data.size() + (Below(16) == 0 ? Below(MAX_SIZE / 4) : 0));
        Packet packet = Message(1 + Below(3), GARBAGE_CODES.at(Below(3)), handles, data, Below(2));
        for (uint32_t changes = Below(3); changes > 0; --changes) {
            const size_t at = Below(std::min<size_t>(packet.size(), 16));
            packet[at == 1 ? 0 : at] = Below(2) == 0 ? Below(256) : ~Below(16);
        }
        const size_t size = packet.size() * 4;
        while (g_connections.empty() ||
               !Send(g_connections.back(), packet, Below(8) == 0 ? Below(size) : size, Below(16) == 0)) {
            for (const int fd : std::exchange(g_connections, {})) {
                close(fd);
            }
            if (size > MAX_SIZE || Connect({"", "1"}) != "1") {
                break;
            }
        }
    }
    return "0";
}

// call CODE COUNT HANDLES: calls on each connection, with so many invented objects or else as large as can be. How many
// replies came.
std::string CallAll(const Words& words)
{
    size_t answered = 0;
    for (int i = 0; i < std::stoi(words[2]); ++i) {
        Packet data = TEXT;
        const Packet handles = InventHandles(static_cast<uint32_t>(std::stoul(words[3])), 0, data);
        if (handles.empty()) {
            data.assign(MAX_SIZE / 4 - 8, 0);
            data[0] = MAX_SIZE - 40;
        }
        const Packet packet = Message(CALL, CODES.at(words[1]), handles, data);
        for (const int fd : g_connections) {
            Send(fd, packet, packet.size() * 4);
        }
        for (const int fd : g_connections) {
            std::array<char, 64> reply{};
            answered += words[1] != "wait" && recv(fd, reply.data(), reply.size(), 0) > 0 ? 1 : 0;
        }
    }
    return std::to_string(answered);
}

sd_bus_message* NewCall(sd_bus* bus, const std::string& member)
{
    sd_bus_message* call = nullptr;
    sd_bus_message_new_method_call(bus, &call, VICTIM, PATH, INTERFACE, member.c_str());
    return call;
}

int SendUnread(sd_bus* bus, sd_bus_message* message)
{
    uint64_t cookie = 0; // Else a call would want no answer.
    const int error = sd_bus_send(bus, message, &cookie);
    sd_bus_message_unref(message);
    return std::min(error, sd_bus_flush(bus));
}

// flood MEMBER COUNT PEERS: so many calls of each of so many new peers, which never read an answer and whose sockets
// hold no more. Releases are as large as can be.
std::string Flood(const Words& words)
{
    int error = 0;
    for (int i = 0; i < std::stoi(words[3]); ++i) {
        sd_bus* const peer = NewPeer();
        for (int j = 0; j < 4; ++j) {
            const char* self = nullptr;
            sd_bus_get_unique_name(peer, &self);
            sd_bus_message* filler = nullptr;
            sd_bus_message_new_method_call(peer, &filler, self, PATH, INTERFACE, "Fill");
            sd_bus_message_append(filler, "s", std::string(60000, 'x').c_str());
            sd_bus_message_set_expect_reply(filler, 0);
            error = std::min(error, SendUnread(peer, filler));
        }
        for (int j = 0; j < std::stoi(words[2]); ++j) {
            sd_bus_message* const call = NewCall(peer, words[1]);
            if (words[1] == "Ping") {
                sd_bus_message_append(call, "t", uint64_t{0});
            } else if (words[1] == "Release") {
                sd_bus_message_open_container(call, 'a', "(tu)");
                for (int k = 0; k < 3500; ++k) {
                    sd_bus_message_append(call, "(tu)", uint64_t{Below(UINT32_MAX)}, 1);
                }
                sd_bus_message_close_container(call);
            }
            error = std::min(error, SendUnread(peer, call));
        }
    }
    return std::to_string(error);
}

// The victim's answer to a Ping of this process's, or null.
sd_bus_message* Ping()
{
    sd_bus_message* call = NewCall(g_bus, "Ping");
    sd_bus_message* answer = nullptr;
    sd_bus_message_append(call, "t", uint64_t{0});
    sd_bus_call(g_bus, call, 0, nullptr, &answer);
    sd_bus_message_unref(call);
    while (sd_bus_process(g_bus, nullptr) > 0) { // Shows that it reads.
    }
    return answer;
}

// guess MEMBER COUNT: a new peer asks again and again, and answers, unread, with guesses, the question whether it
// reads. How much was sent to it all the same.
std::string Guess(const Words& words)
{
    sd_bus* const peer = NewPeer();
    for (int i = 0; i < std::stoi(words[2]); ++i) {
        sd_bus_message* const answer = Ping();
        uint64_t cookie = 0;
        sd_bus_message_get_cookie(answer, &cookie); // Its question, if it has asked, had one shortly before.
        for (int j = 0; j < 16; ++j) {
            sd_bus_message* const call = NewCall(peer, words[1]);
            if (words[1] == "Ping") {
                sd_bus_message_append(call, "t", uint64_t{0});
            }
            SendUnread(peer, call);
        }
        for (int j = 0; j < 64; ++j) {
            sd_bus_message* const asked = NewCall(peer, "Ping");
            sd_bus_message_set_sender(asked, sd_bus_message_get_sender(answer));
            sd_bus_message_seal(asked, cookie > 64U ? cookie - static_cast<uint64_t>(j) : 1, 0);
            sd_bus_message* guess = nullptr;
            sd_bus_message_new_method_return(asked, &guess);
            sd_bus_message_append(guess, "t", g_random());
            SendUnread(peer, guess);
            sd_bus_message_unref(asked);
        }
        sd_bus_message_unref(answer);
    }
    const auto await = [peer] { // The daemon is through with all that this peer has sent, or is to get.
        sd_bus_call_method(peer, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr, nullptr, "");
    };
    await();
    sd_bus_message_unref(Ping()); // And now the victim is.
    await();
    int count = 0;
    for (sd_bus_message* message = nullptr; sd_bus_process(peer, &message) > 0;
         message = sd_bus_message_unref(message)) {
        const char* sender = message != nullptr ? sd_bus_message_get_sender(message) : nullptr;
        count += sender != nullptr && sender[0] == ':' ? 1 : 0; // Not the daemon.
    }
    return std::to_string(count);
}

// claim NAME: the daemon's error.
std::string Claim(const Words& words)
{
    return std::to_string(-sd_bus_request_name(g_bus, words[1].c_str(), SD_BUS_NAME_REPLACE_EXISTING));
}

// forge NAME: tells the victim that nobody owns NAME any more.
std::string Forge(const Words& words)
{
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(g_bus, &signal, "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged");
    sd_bus_message_append(signal, "sss", words[1].c_str(), words[1].c_str(), "");
    const int sent = sd_bus_send_to(g_bus, signal, VICTIM, nullptr);
    sd_bus_message_unref(signal);
    return std::to_string(std::min(sent, sd_bus_flush(g_bus)));
}

// raw HEX...: sends these bytes, with a descriptor if the last word is `fd`, on a new connection. What comes back.
std::string Raw(const Words& words)
{
    std::string digits;
    for (size_t i = 1; i < words.size(); ++i) {
        digits += words[i] == "fd" ? "" : words[i];
    }
    Packet packet(digits.size() / 8 + 1);
    auto* const bytes = reinterpret_cast<unsigned char*>(packet.data());
    for (size_t i = 0; i < digits.size() / 2; ++i) {
        bytes[i] = static_cast<unsigned char>(std::stoul(digits.substr(i * 2, 2), nullptr, 16));
    }
    std::array<unsigned char, 1024> answer{};
    if (Connect({"", "1"}) != "1") {
        return "no connection";
    }
    Send(g_connections.back(), packet, digits.size() / 2, std::find(words.begin(), words.end(), "fd") != words.end());
    const ssize_t size = recv(g_connections.back(), answer.data(), answer.size(), 0);
    close(g_connections.back());
    g_connections.pop_back();
    std::ostringstream text;
    for (ssize_t i = 0; i < size; ++i) {
        text << (i > 0 && i % 4 == 0 ? " " : "") << std::hex << std::setw(2) << std::setfill('0')
             << +answer.at(static_cast<size_t>(i));
    }
    return size > 0 ? text.str() : "closed";
}

// Answers the next Connect, with a descriptor if there is one.
void AnswerConnect(int fd)
{
    sd_bus_message* call = nullptr;
    while (sd_bus_message_is_method_call(call, INTERFACE, "Connect") <= 0) {
        sd_bus_message_unref(call);
        call = nullptr;
        if (sd_bus_process(g_bus, &call) == 0) {
            sd_bus_wait(g_bus, UINT64_MAX);
        }
    }
    sd_bus_reply_method_return(call, fd >= 0 ? "h" : "", fd);
    sd_bus_message_unref(call);
    sd_bus_flush(g_bus);
}

// answer HOW: is called. Where that is `shared` or `alone`, twice.
std::string Answer(const Words& words)
{
    const std::string& how = words[1];
    int ends[2] = {-1, -1};
    if (how == "alone") {
        ends[1] = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    } else if (how != "none") {
        socketpair(AF_UNIX, (how == "stream" ? SOCK_STREAM : SOCK_SEQPACKET) | SOCK_CLOEXEC, 0, ends);
    }
    const bool isCalled = how != "none" && how != "stream" && how != "alone";
    for (int i = 0; i < (how == "shared" || how == "alone" ? 2 : 1); ++i) {
        AnswerConnect(ends[1]);
    }
    close(ends[1]);
    Packet call(MAX_SIZE / 4);
    Packet data = TEXT;
    const Packet handles = InventHandles(how == "forged" ? 1 : 0, 1, data);
    const Packet reply = Message(how == "kind" ? CALL : REPLY, 0, handles, data);
    for (int i = 0; isCalled && i < (how == "shared" ? 2 : 1); ++i) {
        recv(ends[0], call.data(), MAX_SIZE, 0);
    }
    for (int i = 0; isCalled && how != "end" && i < (how == "twice" ? 2 : 1); ++i) {
        Send(ends[0], reply, how == "half" ? 16 : reply.size() * 4, how == "descriptor");
    }
    if (!isCalled || how == "end" || how == "twice") { // Else the victim has to end it.
        close(ends[0]);
    }
    return "0";
}

} // namespace

int main()
{
    Join({});
    ServeCommands({{"join", Join}, {"connect", Connect}, {"bait", Bait}, {"garbage", Garbage}, {"call", CallAll},
        {"flood", Flood}, {"claim", Claim}, {"forge", Forge}, {"answer", Answer}, {"guess", Guess}, {"raw", Raw}});
    return 0;
}
