// SPDX-License-Identifier: Apache-2.0
#include "hilog/log.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <type_traits>
#include <unistd.h>

namespace {

constexpr const char* LEVEL_LETTERS = "DIWEF"; // From LOG_DEBUG upwards.
constexpr int LEVEL_OFF = LOG_FATAL + 1;
constexpr unsigned int DOMAIN_MASK = 0xFFFFF;
constexpr long NANOSECONDS_PER_MILLISECOND = 1000000;

std::atomic<LogCallback> g_callback{nullptr};

// A bounded text on the stack: logging must work without memory, and throw nothing. What does not fit is dropped.
class Text {
public:
    static constexpr int CAPACITY = 8192;

    // `format` must match `args`, of which there is at least one.
    template <typename... Args>
    void Append(const char* format, Args... args)
    {
        const int count = std::snprintf(data_ + size_, static_cast<size_t>(CAPACITY - size_), format, args...);
        size_ += std::clamp(count, 0, CAPACITY - 1 - size_);
    }

    void Append(const char* text, int size)
    {
        Append("%.*s", size, text);
    }

    const char* GetData() const
    {
        return data_;
    }

    int GetSize() const
    {
        return size_;
    }

    // Puts a line end in the place of the NUL, for which there is always room, and writes the text in one go.
    void WriteLine()
    {
        data_[size_] = '\n';
        while (write(STDERR_FILENO, data_, static_cast<size_t>(size_) + 1) < 0 && errno == EINTR) {
        }
    }

private:
    char data_[CAPACITY]; // Not cleared as a whole: every Append leaves a NUL at size_.
    int size_ = 0;
};

// One argument list that several functions consume in turn.
struct Arguments {
    va_list list;
};

// A placeholder taken apart: %{privacy}flags width.precision length conversion.
struct Placeholder {
    bool isPublic = false;
    char flags[8] = "";
    int width = 0;
    int precision = -1; // Negative means none, in printf too.
    char length = '\0'; // 'H' stands for hh and 'q' for ll.
    char conversion = '\0';
};

bool IsOneOf(char letter, const char* letters)
{
    return letter != '\0' && std::strchr(letters, letter) != nullptr;
}

// A width or precision: digits, or a star that takes an argument. More than the text could hold makes no difference.
int ParseNumber(const char*& at, Arguments& arguments)
{
    if (*at == '*') {
        at++;
        return std::clamp(va_arg(arguments.list, int), -Text::CAPACITY, Text::CAPACITY);
    }
    int number = 0;
    for (; std::isdigit(static_cast<unsigned char>(*at)) != 0; at++) {
        number = std::min(number * 10 + (*at - '0'), Text::CAPACITY);
    }
    return number;
}

// Parses behind the '%' and moves `at` behind the placeholder. False if it is not one.
bool ParsePlaceholder(const char*& at, Arguments& arguments, Placeholder& placeholder)
{
    if (*at == '{') {
        const char* end = std::strchr(at, '}');
        if (end == nullptr) {
            return false;
        }
        // Whatever is not declared public stays private.
        placeholder.isPublic = std::strncmp(at, "{public}", static_cast<size_t>(end + 1 - at)) == 0;
        at = end + 1;
    }
    const size_t flags = std::strspn(at, "-+ #0");
    if (flags >= sizeof(placeholder.flags)) {
        return false;
    }
    std::memcpy(placeholder.flags, at, flags);
    at += flags;
    placeholder.width = ParseNumber(at, arguments);
    if (*at == '.') {
        at++;
        placeholder.precision = ParseNumber(at, arguments);
    }
    if (IsOneOf(*at, "hljztL")) {
        placeholder.length = *at++;
        if (IsOneOf(placeholder.length, "hl") && *at == placeholder.length) {
            placeholder.length = placeholder.length == 'h' ? 'H' : 'q';
            at++;
        }
    }
    placeholder.conversion = *at;
    const bool isPlain = placeholder.length == '\0';
    const bool isKnown = (IsOneOf(*at, "diouxX") && placeholder.length != 'L') ||
                         (IsOneOf(*at, "aAeEfFgG") && (isPlain || IsOneOf(placeholder.length, "lL"))) ||
                         (IsOneOf(*at, "csp%") && isPlain);
    at += isKnown ? 1 : 0;
    return isKnown;
}

// Prints one value as the placeholder says, or only its having been there. `length` must match the type T.
template <typename T>
void AppendValue(Text& text, const Placeholder& placeholder, const char* length, T value)
{
    if (!placeholder.isPublic) {
        text.Append("%s", "<private>");
        return;
    }
    char format[32];
    std::snprintf(format, sizeof(format), "%%%s*.*%s%c", placeholder.flags, length, placeholder.conversion);
    text.Append(format, placeholder.width, placeholder.precision, value);
}

// Takes an integer argument, cuts it to the type that `length` names, and widens that.
template <typename Char, typename Short, typename Int, typename Wide>
Wide TakeInteger(char length, Arguments& arguments)
{
    static_assert(std::is_same_v<intmax_t, long>);
    static_assert(std::is_same_v<ssize_t, long>);
    static_assert(std::is_same_v<ptrdiff_t, long>);
    if (length == 'q') {
        return static_cast<Wide>(va_arg(arguments.list, long long));
    }
    switch (length) {
    case 'H':
        return static_cast<Char>(va_arg(arguments.list, int));
    case 'h':
        return static_cast<Short>(va_arg(arguments.list, int));
    case '\0':
        return static_cast<Int>(va_arg(arguments.list, int));
    default:
        return static_cast<Wide>(va_arg(arguments.list, long));
    }
}

// Takes one argument, of the type that the placeholder names, and prints it.
void AppendPlaceholder(Text& text, Placeholder& placeholder, Arguments& arguments)
{
    switch (placeholder.conversion) {
    case '%':
        text.Append("%c", '%');
        break;
    case 's': {
        const char* value = va_arg(arguments.list, const char*);
        AppendValue(text, placeholder, "", value != nullptr ? value : "(null)");
        break;
    }
    case 'c':
        placeholder.precision = -1;
        AppendValue(text, placeholder, "", va_arg(arguments.list, int));
        break;
    case 'p':
        placeholder.precision = -1;
        AppendValue(text, placeholder, "", va_arg(arguments.list, void*));
        break;
    case 'd':
    case 'i':
        AppendValue(
            text, placeholder, "ll", TakeInteger<signed char, short, int, long long>(placeholder.length, arguments));
        break;
    case 'o':
    case 'u':
    case 'x':
    case 'X':
        AppendValue(text, placeholder, "ll",
            TakeInteger<unsigned char, unsigned short, unsigned, unsigned long long>(placeholder.length, arguments));
        break;
    default:
        if (placeholder.length == 'L') {
            AppendValue(text, placeholder, "L", va_arg(arguments.list, long double));
        } else {
            AppendValue(text, placeholder, "", va_arg(arguments.list, double));
        }
        break;
    }
}

void AppendMessage(Text& text, const char* fmt, Arguments& arguments)
{
    while (*fmt != '\0') {
        const char* percent = std::strchr(fmt, '%');
        if (percent == nullptr) {
            break;
        }
        text.Append(fmt, static_cast<int>(std::min<ptrdiff_t>(percent - fmt, Text::CAPACITY)));
        fmt = percent + 1;
        Placeholder placeholder;
        if (!ParsePlaceholder(fmt, arguments, placeholder)) {
            // From here on nobody knows the types of the arguments.
            fmt = percent;
            break;
        }
        AppendPlaceholder(text, placeholder, arguments);
    }
    text.Append("%s", fmt);
}

void AppendHead(Text& text, LogType type, LogLevel level, unsigned int domain, const char* tag)
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm local{};
    localtime_r(&now.tv_sec, &local);
    const bool isLevel = level >= LOG_DEBUG && level <= LOG_FATAL;
    const char typeLetter = type == LOG_APP ? 'A' : type == LOG_INIT ? 'I' : 'C';
    text.Append("%02d-%02d %02d:%02d:%02d.%03ld  %d  %d %c %c%05x/%s: ", local.tm_mon + 1, local.tm_mday, local.tm_hour,
        local.tm_min, local.tm_sec, now.tv_nsec / NANOSECONDS_PER_MILLISECOND, getpid(), gettid(),
        isLevel ? LEVEL_LETTERS[level - LOG_DEBUG] : '?', typeLetter, domain & DOMAIN_MASK, tag);
}

int ReadThreshold()
{
    const char* name = secure_getenv("HILOG_LEVEL");
    if (name == nullptr) {
        return LOG_INFO;
    }
    if (std::strcmp(name, "OFF") == 0) {
        return LEVEL_OFF;
    }
    const char* letter = std::strlen(name) == 1 ? std::strchr(LEVEL_LETTERS, *name) : nullptr;
    return letter != nullptr ? LOG_DEBUG + static_cast<int>(letter - LEVEL_LETTERS) : LOG_INFO;
}

int Print(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, Arguments& arguments)
{
    if (fmt == nullptr) {
        return -1;
    }
    const LogCallback callback = g_callback.load();
    const bool isPrinted = HiLogIsLoggable(domain, tag, level);
    if (callback == nullptr && !isPrinted) {
        return 0;
    }
    const int savedErrno = errno;
    const char* safeTag = tag != nullptr ? tag : "";
    Text text;
    AppendHead(text, type, level, domain, safeTag);
    const int headSize = text.GetSize();
    AppendMessage(text, fmt, arguments);
    if (callback != nullptr) {
        callback(type, level, domain, safeTag, text.GetData() + headSize);
    }
    if (isPrinted) {
        text.WriteLine();
    }
    errno = savedErrno;
    return 0;
}

} // namespace

// A function with "..." cannot hand its arguments on but as a va_list.
#define PRINT_ARGUMENTS(type, level, domain, tag, fmt)                                                                 \
    Arguments arguments;                                                                                               \
    va_start(arguments.list, fmt);                                                                                     \
    const int result = Print(type, level, domain, tag, fmt, arguments);                                                \
    va_end(arguments.list);                                                                                            \
    return result

int HiLogPrint(LogType type, LogLevel level, unsigned int domain, const char* tag, const char* fmt, ...)
{
    PRINT_ARGUMENTS(type, level, domain, tag, fmt);
}

bool HiLogIsLoggable(unsigned int /* domain */, const char* /* tag */, LogLevel level)
{
    static const int threshold = ReadThreshold();
    return level >= threshold && level <= LOG_FATAL;
}

void LOG_SetCallback(LogCallback callback)
{
    g_callback.store(callback);
}

namespace OHOS {
namespace HiviewDFX {

int HiLog::Debug(const HiLogLabel& label, const char* fmt, ...)
{
    PRINT_ARGUMENTS(label.type, LOG_DEBUG, label.domain, label.tag, fmt);
}

int HiLog::Info(const HiLogLabel& label, const char* fmt, ...)
{
    PRINT_ARGUMENTS(label.type, LOG_INFO, label.domain, label.tag, fmt);
}

int HiLog::Warn(const HiLogLabel& label, const char* fmt, ...)
{
    PRINT_ARGUMENTS(label.type, LOG_WARN, label.domain, label.tag, fmt);
}

int HiLog::Error(const HiLogLabel& label, const char* fmt, ...)
{
    PRINT_ARGUMENTS(label.type, LOG_ERROR, label.domain, label.tag, fmt);
}

int HiLog::Fatal(const HiLogLabel& label, const char* fmt, ...)
{
    PRINT_ARGUMENTS(label.type, LOG_FATAL, label.domain, label.tag, fmt);
}

} // namespace HiviewDFX
} // namespace OHOS
