// SPDX-License-Identifier: Apache-2.0
#ifndef INTRODUCTION_H
#define INTRODUCTION_H

#include <sys/types.h>

#include <string>

#include "descriptor.h"

namespace OHOS::Transport {

/** A process on the bus, as others find it. */
struct Identity {
    std::string busId;
    std::string name; // Unique on the bus.
    pid_t pid;
};

/**
 * How two processes meet: each listens on a packet socket whose abstract address follows from its identity, and who
 * connects says its own unique name first. The kernel gives each the other's pid. Nothing waits for anybody.
 */
class Introduction {
public:
    /** The longest unique name there is. */
    static constexpr size_t MAX_NAME = 255;

    /** Whether `name` has the form of a unique name, and so can be asked for. */
    static bool IsName(const std::string& name);

    /** A socket that listens for `self`; none on failure. */
    static Descriptor Listen(const Identity& self);

    /** The next connection made there; none if there is none, or (errno is not EAGAIN) on failure. */
    static Descriptor Accept(const Descriptor& listening);

    /** A connection to `peer`, on which `self` has said its name. None, and an Error, if there is none. */
    static Descriptor Connect(const Identity& peer, const std::string& self, int& error);
};

} // namespace OHOS::Transport

#endif // INTRODUCTION_H
