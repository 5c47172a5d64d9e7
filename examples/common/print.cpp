// SPDX-License-Identifier: Apache-2.0
#include "print.h"

#include <poll.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <utility>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

void EndWithoutOutput(int error)
{
    struct sigaction action {};
    sigaction(SIGPIPE, nullptr, &action);
    if (action.sa_handler == SIG_IGN) {
        return;
    }
    if (error == EPIPE) {
        // The platform's threads block it.
        sigset_t pipe;
        sigemptyset(&pipe);
        sigaddset(&pipe, SIGPIPE);
        pthread_sigmask(SIG_UNBLOCK, &pipe, nullptr);
        std::raise(SIGPIPE);
    }
    Complain(std::string("standard output cannot be written: ") + std::strerror(error));
    _exit(EXIT_NOT_WRITTEN);
}

std::string ShownOn(int fd, const std::string& line) { return isatty(fd) == 1 ? Printable(line) : line; }

} // namespace

void Print(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        EndWithoutOutput(errno);
    }
}

void PrintLine(const std::string& line) { Print(ShownOn(STDOUT_FILENO, line) + "\n"); }

void PrintLineIfRead(const std::string& line)
{
    static std::mutex mutex;
    static unsigned long dropped = 0;
    const std::lock_guard<std::mutex> lock(mutex);
    pollfd room{STDOUT_FILENO, POLLOUT, 0}; // For a pipe: of PIPE_BUF bytes, more than any line has.
    if (poll(&room, 1, 0) <= 0 || (room.revents & POLLOUT) == 0) {
        ++dropped;
        return;
    }
    const unsigned long count = std::exchange(dropped, 0);
    const std::string before = count > 0 ? "(" + std::to_string(count) + " lines were not read)\n" : "";
    PrintLine(before + line);
}

void Complain(const std::string& message)
{
    std::fprintf(stderr, "%s: %s\n", program_invocation_short_name, ShownOn(STDERR_FILENO, message).c_str());
}

std::string Printable(const std::string& text)
{
    std::string shown;
    for (const char letter : text) {
        std::array<char, 8> code{letter, '\0'};
        if (letter < ' ' || letter > '~') {
            std::snprintf(code.data(), code.size(), "\\x%02x", static_cast<unsigned char>(letter));
        }
        shown += code.data();
    }
    return shown;
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
