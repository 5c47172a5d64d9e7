// SPDX-License-Identifier: Apache-2.0
#include "inbound.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>

#include "introduction.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

// Where there is no descriptor for a connection, or not even a place to wait.
constexpr std::chrono::milliseconds PAUSE{100};

} // namespace

Inbound& Inbound::Get()
{
    static Inbound& inbound = *new Inbound();
    return inbound;
}

bool Inbound::Listen(Descriptor socket, const ServedConnection::Introduce& introduce)
{
    const MutexLock lock(mutex_);
    listener_ = std::shared_ptr<const Listener>(new Listener{std::move(socket), introduce});
    return listener_->socket && Process::StartThread([this, listener = listener_] { Run(*listener); });
}

void Inbound::StopListening()
{
    const MutexLock lock(mutex_);
    if (const auto stopped = std::exchange(listener_, nullptr)) {
        shutdown(stopped->socket.Get(), SHUT_RDWR);
    }
}

void Inbound::Run(const Listener& listener)
{
    for (;;) {
        pollfd wait{listener.socket.Get(), POLLIN, 0};
        bool isWell = poll(&wait, 1, -1) >= 0;
        {
            const MutexLock lock(mutex_);
            if (listener_.get() != &listener) {
                return;
            }
            isWell = AcceptAll(listener) && isWell;
        }
        if (!isWell) {
            std::this_thread::sleep_for(PAUSE);
        }
    }
}

// Takes in every connection that was made before. False if there is no descriptor for one.
bool Inbound::AcceptAll(const Listener& listener)
{
    for (;;) {
        Descriptor accepted = Introduction::Accept(listener.socket);
        if (accepted) {
            const auto connection = std::make_shared<ServedConnection>(std::move(accepted));
            if (!Serve(connection, listener)) {
                connection->Refuse();
            }
        } else if (errno != ECONNABORTED) {
            return errno == EAGAIN;
        }
    }
}

bool Inbound::Serve(const std::shared_ptr<ServedConnection>& connection, const Listener& listener)
{
    Rest former{{}, Clock::now() + ServedConnection::PATIENCE};
    size_t ofUser = 0;
    size_t ofProcess = 0;
    for (const auto& other : connections_) {
        const bool isOfUser = other->maker.uid == connection->maker.uid;
        const bool isOfProcess = other->maker.pid == connection->maker.pid;
        ofUser += isOfUser ? 1 : 0;
        if (isOfProcess && other->isHungUp) {
            former.connections.push_back(other); // And not counted: the process has none of these any more.
        } else if (isOfUser && isOfProcess) {
            ++ofProcess;
        }
    }
    const auto serve = [this, connection, introduce = listener.introduce, former]() mutable {
        connection->Run(introduce, [this, &former] { Await(std::exchange(former, {})); });
        if (!Process::IsForked()) {
            Remove(connection);
            connection->connection.HangUp(); // The peer may connect anew.
        }
    };
    connections_.push_back(connection);
    if (ofProcess < MAX_OF_PROCESS && ofUser < MAX_OF_USER && connections_.size() <= MAX &&
        Process::StartThread(serve)) {
        return true;
    }
    connections_.pop_back();
    return false;
}

void Inbound::Remove(const std::shared_ptr<ServedConnection>& connection)
{
    const MutexLock lock(mutex_);
    connections_.erase(std::find(connections_.begin(), connections_.end(), connection));
    removed_.NotifyAll();
}

Inbound::Rest Inbound::HangUpReading(pid_t pid)
{
    Rest rest{{}, Clock::now() + ServedConnection::PATIENCE};
    const MutexLock lock(mutex_);
    if (listener_ != nullptr) {
        AcceptAll(*listener_); // What is in the queue was sent before, too.
    }
    for (const auto& connection : connections_) {
        if (connection->maker.pid == pid) {
            connection->isHungUp = true;
            connection->connection.HangUpReading();
            rest.connections.push_back(connection);
        }
    }
    return rest;
}

void Inbound::Await(const Rest& rest)
{
    MutexLock lock(mutex_);
    for (const auto& connection : rest.connections) {
        while (std::find(connections_.begin(), connections_.end(), connection) != connections_.end()) {
            if (!removed_.WaitUntil(lock, rest.deadline)) {
                connection->isStopped = true;
                break;
            }
        }
    }
}

} // namespace OHOS::Transport
