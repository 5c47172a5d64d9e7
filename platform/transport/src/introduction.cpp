// SPDX-License-Identifier: Apache-2.0
#include "introduction.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "transport_error.h"

namespace OHOS::Transport {

namespace {

constexpr int BACKLOG = 1024;

// A packet must fit into the socket's buffer whole. The kernel gives what it allows to this process.
constexpr int BUFFER_SIZE = (1 << 20) + 4096;

Descriptor OpenSocket(const std::function<int()>& open)
{
    Descriptor opened = Descriptor::Open(open);
    if (opened) { // Else errno says why.
        setsockopt(opened.Get(), SOL_SOCKET, SO_SNDBUF, &BUFFER_SIZE, sizeof(BUFFER_SIZE));
    }
    return opened;
}

Descriptor NewSocket()
{
    return OpenSocket([] { return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); });
}

// Binds or connects a socket to the address of `identity`, which is abstract and so begins with a NUL. With the pid in
// it nobody takes it in advance by guessing the next names.
int WithAddress(int (*function)(int, const sockaddr*, socklen_t), const Descriptor& socket, const Identity& identity)
{
    const std::string path =
        '\0' + ("ohos.ipc/" + identity.busId + "/" + identity.name + "/" + std::to_string(identity.pid));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const size_t size = path.copy(address.sun_path, sizeof(address.sun_path));
    return function(socket.Get(), reinterpret_cast<const sockaddr*>(&address),
        static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + size));
}

} // namespace

bool Introduction::IsName(const std::string& name)
{
    return name.size() > 1 && name.size() <= MAX_NAME && name[0] == ':' &&
           name.find_first_not_of("0123456789.", 1) == std::string::npos;
}

Descriptor Introduction::Listen(const Identity& self)
{
    Descriptor made = NewSocket();
    const int on = 1; // Accepted sockets take it over: the first packet comes with who has sent it.
    setsockopt(made.Get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof(on));
    return WithAddress(bind, made, self) == 0 && listen(made.Get(), BACKLOG) == 0 ? std::move(made) : Descriptor();
}

Descriptor Introduction::Accept(const Descriptor& listening)
{
    return OpenSocket([&] { return accept4(listening.Get(), nullptr, nullptr, SOCK_CLOEXEC); });
}

Descriptor Introduction::Connect(const Identity& peer, const std::string& self, int& error)
{
    Descriptor made = NewSocket();
    ucred listener{};
    socklen_t size = sizeof(listener);
    error = 0;
    if (!made || WithAddress(connect, made, peer) != 0) {
        error = ErrorOf(errno); // BUFFER_FULL where the listener's queue is full, and DEAD where nobody listens.
    } else if (getsockopt(made.Get(), SOL_SOCKET, SO_PEERCRED, &listener, &size) != 0 || listener.pid != peer.pid) {
        error = REFUSED; // Somebody else has taken the address.
    }
    if (error != 0) {
        return {};
    }
    fcntl(made.Get(), F_SETFL, 0); // Only connecting must not wait.
    // Where that fails the peer has hung up, which the caller finds out soon enough.
    send(made.Get(), self.data(), self.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    return made;
}

} // namespace OHOS::Transport
