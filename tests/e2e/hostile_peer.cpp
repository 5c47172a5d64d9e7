// SPDX-License-Identifier: Apache-2.0
#include "hostile_peer.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <sstream>

namespace {

constexpr const char* VICTIM = "ohos.sa.SA66090";
constexpr const char* DAEMON = "org.freedesktop.DBus";
constexpr const char* DAEMON_PATH = "/org/freedesktop/DBus";

} // namespace

HostilePeer::HostilePeer(const std::string& busAddress, bool isListening)
{
    const char* name = nullptr;
    sd_id128_t id{};
    std::array<char, SD_ID128_STRING_MAX> text{};
    sd_bus_new(&bus_);
    sd_bus_set_address(bus_, busAddress.c_str());
    sd_bus_set_bus_client(bus_, 1);
    if (sd_bus_start(bus_) < 0 || sd_bus_get_unique_name(bus_, &name) < 0 || sd_bus_get_bus_id(bus_, &id) < 0) {
        std::abort();
    }
    name_ = name;
    id_ = sd_id128_to_string(id, text.data());
    listening_ = isListening ? Squat(name_, getpid()) : -1;
}

HostilePeer::~HostilePeer()
{
    StopListening();
    for (const int fd : connections_) {
        close(fd);
    }
    sd_bus_close_unref(bus_);
}

void HostilePeer::StopListening()
{
    close(listening_);
    listening_ = -1;
}

int HostilePeer::Socket(const std::string& name, pid_t pid, bool isListening) const
{
    const std::string path = '\0' + ("ohos.ipc/" + id_ + "/" + name + "/" + std::to_string(pid));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path));
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    const timeval patience{20, 0};
    const int buffer = 1 << 21;
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &buffer, sizeof(buffer));
    const int error = isListening ? bind(fd, generic, size) + listen(fd, 0) : connect(fd, generic, size);
    if (error != 0) {
        close(fd);
    }
    return error == 0 ? fd : -1;
}

int HostilePeer::Squat(const std::string& name, pid_t pid) const
{
    return Socket(name, pid, true);
}

std::string HostilePeer::Owner(pid_t& pid) const
{
    sd_bus_creds* owner = nullptr;
    const char* name = nullptr;
    sd_bus_get_name_creds(bus_, VICTIM, SD_BUS_CREDS_PID | SD_BUS_CREDS_UNIQUE_NAME, &owner);
    sd_bus_creds_get_pid(owner, &pid);
    sd_bus_creds_get_unique_name(owner, &name);
    const std::string found = name != nullptr ? name : "";
    sd_bus_creds_unref(owner);
    return found;
}

int HostilePeer::Connect(const std::string& name)
{
    pid_t pid = 0;
    const std::string owner = Owner(pid);
    const int fd = Socket(owner, pid, false);
    const std::string& said = name.empty() ? name_ : name;
    send(fd, said.data(), said.size(), MSG_NOSIGNAL);
    connections_.push_back(fd);
    return fd;
}

size_t HostilePeer::ConnectOften(int count)
{
    size_t kept = 0;
    for (int i = 0; i < count; ++i) {
        const int fd = Connect();
        Send(fd, Message(1, 1, 1, {}, {1, 'x'}));
        std::array<uint32_t, 16> reply{};
        if (recv(fd, reply.data(), sizeof(reply), 0) < 0) { // A reset comes before what was said last.
            recv(fd, reply.data(), sizeof(reply), 0);
        }
        kept += reply[1] == 0 ? 1 : 0;
        if (reply[1] != 0) {
            close(fd);
            connections_.pop_back();
        }
    }
    return kept;
}

std::string HostilePeer::Exchange(const std::string& hex)
{
    std::istringstream words(hex);
    Packet packet;
    bool hasDescriptor = false;
    size_t size = 0;
    for (std::string word; words >> word;) { // In the order of bytes, four at a time or fewer at the end.
        hasDescriptor = hasDescriptor || word == "fd";
        std::array<unsigned char, 4> bytes{};
        for (size_t i = 0; word != "fd" && i < word.size() / 2; ++i, ++size) {
            bytes.at(i) = static_cast<unsigned char>(std::stoul(word.substr(i * 2, 2), nullptr, 16));
        }
        uint32_t number = 0;
        std::memcpy(&number, bytes.data(), sizeof(number));
        packet.push_back(number);
    }
    const int fd = Connect();
    Send(fd, packet, size, hasDescriptor);
    std::array<unsigned char, 1024> answer{};
    const ssize_t received = recv(fd, answer.data(), answer.size(), 0);
    std::ostringstream text;
    for (ssize_t i = 0; i < received; ++i) {
        text << (i > 0 && i % 4 == 0 ? " " : "") << std::hex << std::setw(2) << std::setfill('0')
             << +answer.at(static_cast<size_t>(i));
    }
    close(fd);
    connections_.pop_back();
    return received > 0 ? text.str() : "closed";
}

int HostilePeer::Accept() const
{
    pollfd wait{listening_, POLLIN, 0};
    if (poll(&wait, 1, 20'000) <= 0) {
        return -1;
    }
    const int fd = accept4(listening_, nullptr, nullptr, SOCK_CLOEXEC);
    std::array<char, 256> name{};
    recv(fd, name.data(), name.size(), 0);
    return fd;
}

std::string HostilePeer::CallBus(
    const std::string& destination, const std::string& interface, const std::string& member) const
{
    sd_bus_error error{};
    sd_bus_call_method(bus_, destination.empty() ? DAEMON : destination.c_str(), DAEMON_PATH, interface.c_str(),
        member.c_str(), &error, nullptr, "");
    const std::string name = error.name != nullptr ? error.name : "";
    sd_bus_error_free(&error);
    return name;
}

int HostilePeer::Claim(const std::string& name) const
{
    return -sd_bus_request_name(bus_, name.c_str(), SD_BUS_NAME_REPLACE_EXISTING);
}

void HostilePeer::Forge(const std::string& name) const
{
    sd_bus_message* signal = nullptr;
    sd_bus_message_new_signal(bus_, &signal, DAEMON_PATH, DAEMON, "NameOwnerChanged");
    sd_bus_message_append(signal, "sss", name.c_str(), name.c_str(), "");
    sd_bus_send_to(bus_, signal, VICTIM, nullptr);
    sd_bus_message_unref(signal);
    CallBus("", DAEMON, "GetId"); // The daemon is through with it then.
}

bool HostilePeer::Send(int fd, const Packet& packet, size_t size, bool withDescriptor)
{
    iovec part{const_cast<uint32_t*>(packet.data()), size};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr message{nullptr, 0, &part, 1, control.data(), withDescriptor ? control.size() : 0, 0};
    const cmsghdr rights{CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS}; // Of descriptor 0.
    std::memcpy(control.data(), &rights, sizeof(rights));
    return sendmsg(fd, &message, MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
}

HostilePeer::Packet HostilePeer::Message(
    uint32_t kind, uint32_t code, uint32_t number, const Packet& handles, const Packet& data, uint32_t flags)
{
    Packet packet{kind, code, flags, static_cast<uint32_t>(handles.size() / 4), kind == 1 ? 66090U : 0U, 0,
        static_cast<uint32_t>(data.size() * 4), number};
    packet.insert(packet.end(), handles.begin(), handles.end());
    packet.insert(packet.end(), data.begin(), data.end());
    return packet;
}
