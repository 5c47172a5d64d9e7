// SPDX-License-Identifier: Apache-2.0
#ifndef CONTENDER_H
#define CONTENDER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench {

/**
 * A way to ask another process. The object is made before both processes are forked: one of them serves, and the others
 * connect and ask. A wrong answer ends the process.
 */
class Contender {
public:
    explicit Contender(std::string name) : name_(std::move(name)) {}
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;
    virtual ~Contender() = default;

    const std::string& Name() const { return name_; }

    /** Serves until the process is killed; `ready` is called once clients can connect. */
    virtual void Serve(const std::function<void()>& ready) = 0;

    /** False for one that asks the server of the contender before it. */
    virtual bool HasServer() const { return true; }

    /** False for one that takes one client with one thread. */
    virtual bool IsConcurrent() const { return true; }

    /** A process that passes the messages on; 0 if there is none. */
    virtual int Daemon() const { return 0; }

    /** Sends a small request, and waits for its small answer. Each thread may have a connection of its own. */
    virtual void Call() = 0;

    /** Asks for records, and waits until they are here as objects. */
    virtual void Query(int32_t records) = 0;

private:
    const std::string name_;
};

/** Bytes that a small request and its answer take, and an answer of `records` records, as the library sends them. */
constexpr size_t REQUEST_SIZE = 184;
constexpr size_t ANSWER_SIZE = 36;
constexpr size_t AnswerSize(int32_t records) { return 40 + static_cast<size_t>(records) * 84; }

/** Ends this process, with the reason on standard error. */
[[noreturn]] void Fail(const std::string& reason);

/** An address in the abstract name space, for this program and `name`; without the NUL at its start. */
std::string Address(const std::string& name);

/** @{ Each contender. */
std::unique_ptr<Contender> MakeStream();
std::unique_ptr<Contender> MakePacket();
std::unique_ptr<Contender> MakeFutex();
std::unique_ptr<Contender> MakeDirectSdBus();
std::unique_ptr<Contender> MakeDaemonSdBus();
std::unique_ptr<Contender> MakeGrpc();

enum class Layer { CLIENT, PROXY, LOGGING_CLIENT };
std::unique_ptr<Contender> MakeLibrary(Layer layer);
/** @} */

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Bench

#endif // CONTENDER_H
