// SPDX-License-Identifier: Apache-2.0
#ifndef BUS_TEST_H
#define BUS_TEST_H

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <list>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

using Clock = std::chrono::steady_clock;

/** Enough for what takes milliseconds, in a sanitizer's build on a busy machine. */
constexpr int PATIENCE_S = 20;

/** A number for `./dev soak`, which makes some tests longer. */
inline int FromEnvironment(const char* name, int otherwise)
{
    const char* value = std::getenv(name);
    return value != nullptr ? std::atoi(value) : otherwise;
}

/** Asks again and again until `isSo`. False if it is not in time. */
template <typename F>
bool AwaitThat(F isSo)
{
    const auto deadline = Clock::now() + std::chrono::seconds(PATIENCE_S);
    bool isItSo = isSo();
    for (; !isItSo && Clock::now() < deadline; isItSo = isSo()) {
        usleep(5000);
    }
    return isItSo;
}

/**
 * A program, or a process forked from this one, which runs what a test says. Either ends with this object. It is forked
 * while this process has one thread and does not use the platform, and keeps none of its descriptors.
 */
class Helper {
public:
    /** Without a command, a fork. Its input and output are a socket, or a terminal that it is in front of. */
    Helper(const std::vector<std::string>& command, const std::string& busAddress, bool isOnTerminal = false)
    {
        int ends[2];
        const timeval patience{PATIENCE_S, 0};
        const winsize size{24, 80, 0, 0};
        if (isOnTerminal ? openpty(&ends[0], &ends[1], nullptr, nullptr, &size) != 0
                         : socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0 ||
                               setsockopt(ends[0], SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience)) != 0) {
            std::abort();
        }
        std::vector<char*> arguments(command.size() + 1);
        std::transform(command.begin(), command.end(), arguments.begin(),
            [](const std::string& argument) { return const_cast<char*>(argument.c_str()); });
        std::fflush(nullptr);
        pid_ = fork();
        if (pid_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            isOnTerminal ? login_tty(ends[1]) : dup2(ends[1], STDIN_FILENO) + dup2(ends[1], STDOUT_FILENO);
            close_range(STDERR_FILENO + 1, ~0U, 0);
            setenv("HILOG_LEVEL", "OFF", 1);
            setenv("OHOS_BUS_ADDRESS", busAddress.c_str(), 1);
            if (command.empty()) {
                Serve();
            }
            execvp(arguments[0], arguments.data());
            _exit(127);
        }
        line_ = ends[0];
        input_ = fdopen(line_, "r");
        close(ends[1]);
    }

    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    ~Helper()
    {
        if (pid_ >= 0) {
            Kill();
        }
        std::fclose(input_);
    }

    /** Runs a lambda there, on the main thread, whose captures are plain bytes. Its result as text. */
    template <typename F>
    std::string Ask(F function)
    {
        Send([function] { Print("= " + Result(function)); });
        std::string line;
        while (!(line = ReadLine()).empty() && line[0] == '!') {
            events_.push_back(line);
        }
        return line.substr(std::min<size_t>(line.size(), 2));
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
        AwaitThat([&] { return (last = Ask(function)) == answer || std::feof(input_) != 0; });
        EXPECT_EQ(last, answer);
    }

    /** Runs it on a thread of its own, which reports the event "done RESULT" in the end. */
    template <typename F>
    void Begin(F function)
    {
        Send([function] {
            background.push_back(std::async(std::launch::async, [function] { Report("done " + Result(function)); }));
        });
    }

    static void Report(const std::string& event) { Print("! " + event); }

    std::string Event()
    {
        if (events_.empty()) {
            events_.push_back(ReadLine());
        }
        const std::string event = events_.front();
        events_.pop_front();
        return event.substr(std::min<size_t>(event.size(), 2));
    }

    void ExpectEvents(std::initializer_list<std::string> events)
    {
        for (const std::string& event : events) {
            EXPECT_EQ(Event(), event);
        }
    }

    std::vector<std::string> Events(size_t count)
    {
        std::vector<std::string> events(count);
        std::generate(events.begin(), events.end(), [this] { return Event(); });
        std::sort(events.begin(), events.end());
        return events;
    }

    /** Its next line; empty, and a failed test, if none comes. */
    std::string ReadLine()
    {
        std::string line;
        int byte = 0;
        while ((byte = std::fgetc(input_)) != EOF && byte != '\n') {
            line += static_cast<char>(byte);
        }
        EXPECT_NE(byte, EOF) << "process " << pid_ << (std::feof(input_) != 0 ? " has ended" : " keeps silent");
        return byte != EOF ? line : "";
    }

    /** How many of "task" or "fd", its threads or descriptors, it has. */
    long Count(const char* what) const
    {
        const std::filesystem::directory_iterator all("/proc/" + std::to_string(pid_) + "/" + what);
        return std::distance(begin(all), end(all));
    }

    void Input(const std::string& text) const
    {
        EXPECT_EQ(send(line_, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
    }

    /** Ends its input, at which a fork exits. */
    void EndInput() const { shutdown(line_, SHUT_WR); }

    void Signal(int signal) const
    {
        if (pid_ > 0) { // -1 is every process there is.
            kill(pid_, signal);
            if (signal == SIGSTOP) { // Some of its threads may run on a while.
                waitid(P_PID, static_cast<id_t>(pid_), nullptr, WSTOPPED);
            }
        }
    }

    void Kill()
    {
        Signal(SIGKILL);
        EXPECT_EQ(AwaitEnd(), -SIGKILL);
    }

    /** Waits for its end. Its exit code, or minus the number of the signal. */
    int AwaitEnd()
    {
        siginfo_t info{};
        const auto hasEnded = [&] {
            return waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED | WNOHANG) != 0 || info.si_pid != 0;
        };
        if (!AwaitThat(hasEnded)) {
            ADD_FAILURE() << "process " << pid_ << " does not end";
            Signal(SIGKILL);
            waitid(P_PID, static_cast<id_t>(pid_), &info, WEXITED);
        }
        pid_ = -1;
        return info.si_code == CLD_EXITED ? info.si_status : -info.si_status;
    }

    pid_t Pid() const { return pid_; }

protected:
    int line_ = -1; // To its standard input and output.

private:
    /** Functions are where they are here, and the captures are copied. */
    struct Request {
        void (*run)(const void* captures);
        alignas(std::max_align_t) std::array<char, 64> captures;
    };

    static inline std::vector<std::future<void>> background; // A helper's, which waits for all in the end.

    template <typename F>
    static std::string Result(const F& function)
    {
        std::ostringstream text;
        if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
            function();
        } else {
            text << function();
        }
        return text.str();
    }

    // A line is one write, whatever other threads, or the child of a fork, have to say.
    static void Print(const std::string& text)
    {
        const std::string line = text + "\n";
        if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
            _exit(1); // Nobody listens any more.
        }
    }

    template <typename F>
    void Send(const F& function) const
    {
        static_assert(std::is_trivially_copyable_v<F> && sizeof(F) <= sizeof(Request::captures));
        Request request{[](const void* captures) { (*static_cast<const F*>(captures))(); }, {}};
        std::memcpy(request.captures.data(), &function, sizeof(F));
        Input({reinterpret_cast<const char*>(&request), sizeof(request)});
    }

    [[noreturn]] static void Serve() noexcept
    {
        Request request{};
        while (recv(STDIN_FILENO, &request, sizeof(request), MSG_WAITALL) == sizeof(request)) {
            request.run(request.captures.data());
        }
        background.clear();
        std::exit(0);
    }

    pid_t pid_ = -1;             // -1 once it has ended.
    std::FILE* input_ = nullptr; // What comes on the line, which it closes.
    std::deque<std::string> events_;
};

/** A test with a bus daemon, and a folder, of its own. The helpers that run to its end must end well. */
class BusTest : public testing::Test {
public:
    BusTest()
    {
        std::string path = "/tmp/ohos_bus_test.XXXXXX";
        folder_ = mkdtemp(path.data());
        busAddress_ = "unix:path=" + folder_ + "/bus";
        StartDaemon();
    }

    ~BusTest() override
    {
        for (const Helper& helper : helpers_) {
            helper.EndInput();
        }
        for (Helper& helper : helpers_) {
            EXPECT_TRUE(helper.Pid() < 0 || helper.AwaitEnd() == 0) << "A helper did not end well.";
        }
        daemon_ = nullptr;
        std::filesystem::remove_all(folder_);
    }

protected:
    /** Forks a helper. */
    Helper& Start() { return helpers_.emplace_back(std::vector<std::string>(), busAddress_); }

    /** The same, and has it do something. */
    template <typename F>
    Helper& Start(F function)
    {
        Helper& helper = Start();
        helper.Ask(function);
        return helper;
    }

    /** At the same address as ever. Services may be had by one user alone, by default the one who runs this. */
    void StartDaemon(const std::string& serviceUser = "$(id -un)")
    {
        const std::string configure =
            "sed \"s|@SOCKET@|" + folder_ + "/bus|; s|@SERVICE_USER@|" + serviceUser + "|\" " BUS_CONFIGURATION;
        const std::string file = folder_ + "/bus.conf";
        const std::string run = "exec dbus-daemon --nofork --nopidfile --print-address=1 2>/dev/null --config-file=";
        const std::vector<std::string> command{"sh", "-c", configure + " >" + file + "; " + run + file};
        daemon_ = std::make_unique<Helper>(command, "");
        daemon_->ReadLine(); // Once it listens.
    }

    void KillDaemon()
    {
        daemon_ = nullptr;
        std::filesystem::remove(folder_ + "/bus");
    }

    /** What a shell's command prints on either stream, and "= " and its exit code at the end. */
    std::string Run(const std::string& command) const
    {
        setenv("OHOS_BUS_ADDRESS", busAddress_.c_str(), 1);
        setenv("HILOG_LEVEL", "OFF", 1);
        const std::string file = folder_ + "/printed";
        EXPECT_EQ(
            std::system(("{ " + command + "; } >" + file + " 2>&1 </dev/null; echo \"= $?\" >>" + file).c_str()), 0);
        std::ifstream printed(file);
        return {std::istreambuf_iterator<char>(printed), {}};
    }

    std::string folder_;     // Goes, with all in it.
    std::string busAddress_; // For the helpers that are yet to be started.
    std::unique_ptr<Helper> daemon_;

private:
    std::list<Helper> helpers_;
};

#endif // BUS_TEST_H
