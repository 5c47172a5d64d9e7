// SPDX-License-Identifier: Apache-2.0
#include "inbound.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>

#include "introduction.h"
#include "never_destroyed.h"
#include "process.h"

namespace OHOS::Transport {

namespace {

constexpr std::chrono::seconds PATIENCE{2};

// Where there is no descriptor for a connection, or not even a place to wait.
constexpr std::chrono::milliseconds PAUSE{100};

} // namespace

Inbound& Inbound::Get()
{
    static NeverDestroyed<Inbound> inbound;
    return *inbound;
}

bool Inbound::Listen(Descriptor socket, const ServedConnection::Introduce& introduce)
{
    const auto listener = std::shared_ptr<Listener>(new Listener{std::move(socket), introduce});
    const MutexLock lock(mutex_);
    listener_ = listener;
    return listener->socket && Process::StartThread([this, listener] { Run(*listener); });
}

void Inbound::StopListening()
{
    const std::shared_ptr<Listener> listener = GetListener();
    if (listener != nullptr) {
        listener->isClosed = true;
        shutdown(listener->socket.Get(), SHUT_RDWR);
    }
}

std::shared_ptr<Inbound::Listener> Inbound::GetListener()
{
    const MutexLock lock(mutex_);
    return listener_;
}

void Inbound::Run(Listener& listener)
{
    while (!listener.isClosed) {
        pollfd wait{listener.socket.Get(), POLLIN, 0};
        const bool isAwaited = poll(&wait, 1, -1) >= 0 || errno == EINTR;
        if (!Accept(listener) || !isAwaited) {
            std::this_thread::sleep_for(PAUSE);
        }
    }
}

// Takes in every connection that was made before. False if there is no descriptor for one.
bool Inbound::Accept(Listener& listener)
{
    const MutexLock lock(listener.mutex);
    while (!listener.isClosed) {
        Descriptor accepted = Introduction::Accept(listener.socket);
        if (accepted) {
            Serve(std::make_shared<ServedConnection>(std::move(accepted)), listener.introduce);
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return errno == EAGAIN;
        }
    }
    return true;
}

void Inbound::Serve(const std::shared_ptr<ServedConnection>& connection, const ServedConnection::Introduce& introduce)
{
    Rest former{{}, Clock::now() + PATIENCE};
    const bool isAdded = Add(connection, former);
    const bool isServed = isAdded && Process::StartThread([this, connection, introduce, former] {
        connection->Run(introduce, [this, &former] { Await(former); });
        if (!Process::IsForked()) {
            Remove(connection);
            connection->connection.HangUp(); // The peer may connect anew.
        }
    });
    if (!isServed) {
        connection->Refuse();
    }
    if (isAdded && !isServed) {
        Remove(connection);
    }
}

bool Inbound::Add(const std::shared_ptr<ServedConnection>& connection, Rest& former)
{
    const MutexLock lock(mutex_);
    size_t ofUser = 0;
    size_t ofProcess = 0;
    for (const auto& other : connections_) {
        const bool isOfProcess = other->maker.pid == connection->maker.pid;
        ofUser += other->maker.uid == connection->maker.uid ? 1 : 0;
        ofProcess += isOfProcess && other->maker.uid == connection->maker.uid ? 1 : 0;
        if (isOfProcess && other->isHungUp) {
            former.connections.push_back(other);
        }
    }
    if (ofProcess >= MAX_OF_PROCESS || ofUser >= MAX_OF_USER || connections_.size() >= MAX) {
        return false;
    }
    connections_.push_back(connection);
    return true;
}

void Inbound::Remove(const std::shared_ptr<ServedConnection>& connection)
{
    const MutexLock lock(mutex_);
    connections_.erase(std::find(connections_.begin(), connections_.end(), connection));
    removed_.NotifyAll();
}

Inbound::Rest Inbound::HangUpReading(pid_t pid)
{
    const std::shared_ptr<Listener> listener = GetListener();
    if (listener != nullptr) {
        Accept(*listener); // What is in the queue was sent before, too.
    }
    Rest rest{{}, Clock::now() + PATIENCE};
    const MutexLock lock(mutex_);
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
        while (IsServed(connection)) {
            if (!removed_.WaitUntil(lock, rest.deadline)) {
                connection->isStopped = true;
                break;
            }
        }
    }
}

bool Inbound::IsServed(const std::shared_ptr<ServedConnection>& connection)
{
    return std::find(connections_.begin(), connections_.end(), connection) != connections_.end();
}

} // namespace OHOS::Transport
