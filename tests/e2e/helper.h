// SPDX-License-Identifier: Apache-2.0
#ifndef HELPER_H
#define HELPER_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <deque>
#include <initializer_list>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

/** Enough for what takes milliseconds, in a sanitizer's build on a busy machine. */
constexpr int PATIENCE_S = 20;

/** In a helper: prints an event, which may come from any thread. */
void Tell(const std::string& event);

/**
 * A process forked from this one, which runs what a test says; or a program. Either ends with this object. It is forked
 * while this process has one thread and does not use the stand-in, and keeps none of its descriptors.
 */
class Helper {
public:
    /** Both get `busAddress` as OHOS_BUS_ADDRESS; none where it is empty. */
    explicit Helper(const std::string& busAddress);
    Helper(const std::vector<std::string>& command, const std::string& busAddress);
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;
    ~Helper();

    /** Runs a lambda there, on the main thread, whose captures are plain bytes. Its result as text. */
    template <typename F>
    std::string Ask(F function)
    {
        Send(Pack(function, false));
        return Answer();
    }

    /** The same, which must give `answer`. */
    template <typename F>
    void Expect(const std::string& answer, F function)
    {
        EXPECT_EQ(Ask(function), answer);
    }

    /** Again and again, until it gives `answer`. */
    template <typename F>
    void Await(const std::string& answer, F function)
    {
        std::string last;
        for (int i = 0; i < PATIENCE_S * 200 && (last = Ask(function)) != answer && HasAnswered(); ++i) {
            Pause();
        }
        EXPECT_EQ(last, answer);
    }

    /** Runs it on a thread of its own, which tells "done RESULT" in the end. */
    template <typename F>
    void Begin(F function)
    {
        Send(Pack(function, true));
        Answer();
    }

    /** The next event. */
    std::string Event();

    /** Its next events must be these, in this order. */
    void Hears(std::initializer_list<std::string> events);

    /** The next `count` events, sorted. */
    std::vector<std::string> Events(size_t count);

    /** Its next line; empty, and a failed test, if none comes. */
    std::string ReadLine();

    /** How many of "task" or "fd", its threads or descriptors, it has. */
    size_t Count(const std::string& what) const;

    /** A field of its status, as "VmRSS:", in KiB. */
    size_t Status(const std::string& key) const;

    /** Writes to a program's standard input. */
    void Input(const std::string& text) const;

    void Signal(int signal) const;
    void Kill();

    /** Ends its input, at which a helper exits. */
    void EndInput() const;

    /** Waits for its end. Its exit code, or -1 for a signal. */
    int AwaitEnd();

    pid_t Pid() const
    {
        return pid_;
    }

private:
    /** Functions are where they are here, and the captures are copied. */
    struct Request {
        std::string (*run)(const void* captures);
        bool isBackground;
        alignas(std::max_align_t) std::array<char, 224> captures;
    };

    static std::string Text(const std::string& text)
    {
        return text;
    }

    static std::string Text(long number)
    {
        return std::to_string(number);
    }

    template <typename F>
    static Request Pack(const F& function, bool isBackground)
    {
        static_assert(std::is_trivially_copyable_v<F> && sizeof(F) <= sizeof(Request::captures));
        Request request{[](const void* captures) -> std::string {
                            const F& copied = *static_cast<const F*>(captures);
                            if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
                                copied();
                                return "";
                            } else {
                                return Text(copied());
                            }
                        },
            isBackground, {}};
        std::memcpy(request.captures.data(), &function, sizeof(F));
        return request;
    }

    void Fork(const std::vector<std::string>& command, const std::string& busAddress);
    [[noreturn]] static void Serve(int line);
    static void Pause();
    bool HasAnswered() const;
    void Send(const Request& request) const;
    std::string Answer();

    pid_t pid_ = -1;             // -1 once it has ended.
    int line_ = -1;              // To its standard input and output.
    std::FILE* input_ = nullptr; // What comes on the line, which it closes.
    std::deque<std::string> events_;
};

#endif // HELPER_H
