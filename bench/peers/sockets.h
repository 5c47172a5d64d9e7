// SPDX-License-Identifier: Apache-2.0
#ifndef SOCKETS_H
#define SOCKETS_H

#include <functional>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/** A socket of the type that listens at an abstract address. */
int Listen(int type, const std::string& address);

/** A socket that is connected to it. */
int Connect(int type, const std::string& address);

/** Calls `serve` with each connection, on a thread of its own. */
[[noreturn]] void ServeEach(int listener, const std::function<void(int)>& serve);

/** Sends or receives exactly so many bytes. False if the peer is gone. */
bool SendAll(int fd, const void* data, size_t size);
bool ReceiveAll(int fd, void* data, size_t size);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // SOCKETS_H
