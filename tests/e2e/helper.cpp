// SPDX-License-Identifier: Apache-2.0
#include "helper.h"

#include <linux/close_range.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <memory>
#include <utility>

namespace {

// A line is one write, whatever other threads, or the child of a fork, have to say.
void Print(const std::string& line)
{
    if (write(STDOUT_FILENO, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
        _exit(1); // Nobody listens any more.
    }
}

} // namespace

void Tell(const std::string& event)
{
    Print("! " + event + "\n");
}

Helper::Helper(const std::string& busAddress)
{
    Fork({}, busAddress);
}

Helper::Helper(const std::vector<std::string>& command, const std::string& busAddress)
{
    Fork(command, busAddress);
}

void Helper::Fork(const std::vector<std::string>& command, const std::string& busAddress)
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        std::abort();
    }
    const timeval patience{PATIENCE_S, 0};
    setsockopt(ends[0], SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    std::vector<char*> arguments(command.size() + 1);
    std::transform(command.begin(), command.end(), arguments.begin(),
        [](const std::string& argument) { return const_cast<char*>(argument.c_str()); });
    std::fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], STDIN_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        syscall(SYS_close_range, STDERR_FILENO + 1, ~0U, 0);
        setenv("HILOG_LEVEL", "OFF", 1);
        unsetenv("OHOS_BUS_ADDRESS");
        if (!busAddress.empty()) {
            setenv("OHOS_BUS_ADDRESS", busAddress.c_str(), 1);
        }
        if (command.empty()) {
            Serve(STDIN_FILENO);
        }
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    line_ = ends[0];
    input_ = fdopen(line_, "r");
    close(ends[1]);
}

Helper::~Helper()
{
    if (pid_ >= 0) {
        Kill();
    }
    std::fclose(input_);
}

void Helper::Serve(int line)
{
    {
        std::vector<std::future<void>> background; // Waits for all in the end.
        Request request{};
        while (recv(line, &request, sizeof(request), MSG_WAITALL) == sizeof(request)) {
            if (request.isBackground) {
                background.push_back(std::async(
                    std::launch::async, [request] { Tell("done " + request.run(request.captures.data())); }));
            }
            Print("= " + (request.isBackground ? "" : request.run(request.captures.data())) + "\n");
        }
    }
    std::exit(0);
}

void Helper::Send(const Request& request) const
{
    EXPECT_EQ(send(line_, &request, sizeof(request), MSG_NOSIGNAL), static_cast<ssize_t>(sizeof(request)));
}

std::string Helper::Answer()
{
    std::string line;
    while (!(line = ReadLine()).empty() && line[0] == '!') {
        events_.push_back(line.substr(2));
    }
    return line.substr(std::min<size_t>(line.size(), 2));
}

bool Helper::HasAnswered() const
{
    return std::feof(input_) == 0 && std::ferror(input_) == 0;
}

void Helper::Pause()
{
    usleep(5000);
}

std::string Helper::Event()
{
    if (events_.empty()) {
        const std::string line = ReadLine();
        return line.substr(std::min<size_t>(line.size(), 2));
    }
    std::string event = std::move(events_.front());
    events_.pop_front();
    return event;
}

void Helper::Hears(std::initializer_list<std::string> events)
{
    for (const std::string& event : events) {
        EXPECT_EQ(Event(), event);
    }
}

std::vector<std::string> Helper::Events(size_t count)
{
    std::vector<std::string> events(count);
    std::generate(events.begin(), events.end(), [this] { return Event(); });
    std::sort(events.begin(), events.end());
    return events;
}

std::string Helper::ReadLine()
{
    char* bytes = nullptr;
    size_t capacity = 0;
    const ssize_t size = getline(&bytes, &capacity, input_);
    const std::unique_ptr<char, decltype(&std::free)> owned(bytes, std::free);
    if (size <= 0) {
        ADD_FAILURE() << "process " << pid_ << (std::feof(input_) != 0 ? " has ended" : " keeps silent");
        return "";
    }
    return {bytes, static_cast<size_t>(size) - 1};
}

size_t Helper::Count(const std::string& what) const
{
    const std::filesystem::directory_iterator all("/proc/" + std::to_string(pid_) + "/" + what);
    return static_cast<size_t>(std::distance(begin(all), end(all)));
}

size_t Helper::Status(const std::string& key) const
{
    std::ifstream file("/proc/" + std::to_string(pid_) + "/status");
    std::string line;
    while (std::getline(file, line) && line.rfind(key, 0) != 0) {
    }
    return std::stoul(line.substr(key.size()));
}

void Helper::Input(const std::string& text) const
{
    EXPECT_EQ(send(line_, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
}

void Helper::Signal(int signal) const
{
    if (pid_ > 0) { // -1 is every process there is.
        kill(pid_, signal);
        if (signal == SIGSTOP) { // Some of its threads may run on a while.
            waitid(P_PID, static_cast<id_t>(pid_), nullptr, WSTOPPED);
        }
    }
}

void Helper::Kill()
{
    Signal(SIGKILL);
    EXPECT_EQ(AwaitEnd(), -1);
}

void Helper::EndInput() const
{
    shutdown(line_, SHUT_WR);
}

int Helper::AwaitEnd()
{
    pollfd end{static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)), POLLIN, 0};
    if (poll(&end, 1, PATIENCE_S * 1000) <= 0) {
        ADD_FAILURE() << "process " << pid_ << " does not end";
        Signal(SIGKILL);
    }
    close(end.fd);
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
