// SPDX-License-Identifier: Apache-2.0
#include "hilog/log.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <string_view>

namespace {

constexpr std::string_view LEVELS[] = {"D", "I", "W", "E", "F", "OFF"}; // From LOG_DEBUG upwards.
constexpr size_t TAG_CAPACITY = 32;                                     // A text's capacity counts its NUL.
constexpr size_t MESSAGE_CAPACITY = 4096;
constexpr size_t LINE_CAPACITY = MESSAGE_CAPACITY + 256; // The rest is for the line's head.
constexpr unsigned int DOMAIN_MASK = 0xFFFFF;
constexpr long NANOSECONDS_PER_MILLISECOND = 1000000;

std::atomic<LogCallback> g_callback{nullptr};
std::atomic<unsigned> g_lostLines{0}; // Those that standard error did not take.

// A bounded text on the stack: logging must work without memory, and throw nothing. What does not fit is cut off.
template <size_t CAPACITY>
struct Text {
    // `format` must match `args`, of which there is at least one.
    template <typename... Args>
    void Append(const char* format, Args... args)
    {
        const int count = std::snprintf(data + size, CAPACITY - size, format, args...);
        size += std::min(static_cast<size_t>(std::max(count, 0)), CAPACITY - 1 - size);
    }

    char data[CAPACITY]; // With a NUL at `size` once something has been appended.
    size_t size = 0;
};

bool SkipWord(const char*& at, std::string_view word)
{
    const bool isThere = std::strncmp(at, word.data(), word.size()) == 0;
    at += isThere ? word.size() : 0;
    return isThere;
}

// Knows the conversions s and d. After any other the types of the arguments are unknown: from there on `fmt` is
// appended as it stands.
void AppendMessage(Text<MESSAGE_CAPACITY>& message, const char* fmt, va_list arguments)
{
    while (const char* percent = std::strchr(fmt, '%')) {
        const char* at = percent + 1;
        const bool isPublic = SkipWord(at, "{public}");
        if (!isPublic) {
            SkipWord(at, "{private}");
        }
        if (*at != 's' && *at != 'd') {
            break;
        }
        message.Append("%.*s", static_cast<int>(percent - fmt), fmt);
        if (*at == 'd') {
            message.Append(isPublic ? "%d" : "<private>", va_arg(arguments, int));
        } else {
            const char* const text = va_arg(arguments, const char*);
            message.Append(isPublic ? "%s" : "<private>", text != nullptr ? text : "(null)");
        }
        fmt = at + 1;
    }
    message.Append("%s", fmt);
}

// Writes what standard error takes at once. Other processes share its open file description, so that O_NONBLOCK must
// not be set there: pipes and terminals are opened a second time.
ssize_t WriteAtOnce(const char* data, size_t size)
{
    struct stat file {};
    if (fstat(STDERR_FILENO, &file) != 0) {
        return -1;
    }
    if (S_ISSOCK(file.st_mode)) {
        return send(STDERR_FILENO, data, size, MSG_DONTWAIT | MSG_NOSIGNAL);
    }
    if (!S_ISFIFO(file.st_mode) && !S_ISCHR(file.st_mode)) {
        return write(STDERR_FILENO, data, size);
    }
    const int own = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own >= 0) {
        const ssize_t written = write(own, data, size);
        close(own); // Which leaves errno alone: a pipe or a terminal keeps nothing back.
        return written;
    }
    // It is another user's perhaps. A pipe that is ready has room for as much as is written here.
    pollfd ready{STDERR_FILENO, POLLOUT, 0};
    return poll(&ready, 1, 0) == 1 ? write(STDERR_FILENO, data, std::min<size_t>(size, PIPE_BUF)) : -1;
}

// As above, without the signal that a pipe without a reader sends. True if everything was written.
bool WriteSilently(const char* data, size_t size)
{
    sigset_t pending;
    sigset_t before;
    sigset_t sigpipe;
    sigemptyset(&sigpipe);
    sigaddset(&sigpipe, SIGPIPE);
    sigpending(&pending);
    pthread_sigmask(SIG_BLOCK, &sigpipe, &before);
    const ssize_t written = WriteAtOnce(data, size);
    if (written < 0 && errno == EPIPE && sigismember(&pending, SIGPIPE) == 0) {
        const timespec atOnce{};
        sigtimedwait(&sigpipe, nullptr, &atOnce);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return written == static_cast<ssize_t>(size);
}

void PrintLine(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* message)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const char typeLetter = type == LOG_APP ? 'A' : type == LOG_INIT ? 'I' : 'C';
    const unsigned lost = g_lostLines.exchange(0);
    Text<LINE_CAPACITY> line;
    if (lost > 0) {
        line.Append("[%u lines lost]\n", lost);
    }
    const size_t start = line.size;
    line.Append("%02d-%02d %02d:%02d:%02d.%03ld  %d  %d %c %c%05x/%s: %s", local.tm_mon + 1, local.tm_mday,
        local.tm_hour, local.tm_min, local.tm_sec, now.tv_nsec / NANOSECONDS_PER_MILLISECOND, getpid(), gettid(),
        LEVELS[level - LOG_DEBUG][0], typeLetter, domain & DOMAIN_MASK, tag, message);
    // Control characters could forge lines or command a terminal.
    std::replace_if(
        line.data + start, line.data + line.size, [](unsigned char letter) { return std::iscntrl(letter) != 0; }, '?');
    line.Append("%c", '\n');
    if (!WriteSilently(line.data, line.size)) {
        g_lostLines += lost + 1;
    }
}

int ReadThreshold()
{
    const char* const name = secure_getenv("HILOG_LEVEL");
    const auto* const found = std::find(std::begin(LEVELS), std::end(LEVELS), name != nullptr ? name : "");
    return found != std::end(LEVELS) ? LOG_DEBUG + static_cast<int>(found - LEVELS) : LOG_INFO;
}

bool IsPrinted(LogLevel level)
{
    static const int threshold = ReadThreshold();
    return level >= threshold && level <= LOG_FATAL;
}

} // namespace

int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, ...)
{
    if (fmt == nullptr) {
        return -1;
    }
    if (!HiLogIsLoggable(domain, tag, level)) {
        return 0;
    }
    const int savedErrno = errno;
    Text<TAG_CAPACITY> shortTag;
    shortTag.Append("%s", tag != nullptr ? tag : "");
    Text<MESSAGE_CAPACITY> message;
    va_list arguments;
    va_start(arguments, fmt);
    AppendMessage(message, fmt, arguments);
    va_end(arguments);
    if (const LogCallback callback = g_callback.load()) {
        callback(type, level, domain, shortTag.data, message.data);
    }
    if (IsPrinted(level)) {
        PrintLine(type, level, domain, shortTag.data, message.data);
    }
    errno = savedErrno;
    return 0;
}

bool HiLogIsLoggable(unsigned int /* domain */, const char* /* tag */, LogLevel level)
{
    return g_callback.load() != nullptr || IsPrinted(level);
}

void LOG_SetCallback(LogCallback callback) { g_callback.store(callback); }
