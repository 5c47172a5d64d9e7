// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

#include <poll.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

// For what takes milliseconds: enough for a sanitizer's build on a busy machine.
constexpr std::chrono::seconds PATIENCE{20};

std::string Replace(std::string text, const std::string& what, const std::string& with)
{
    return text.replace(text.find(what), what.size(), with);
}

} // namespace

Helper::Helper(const std::vector<std::string>& command, const std::string& busAddress)
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        std::abort();
    }
    const timeval patience{PATIENCE.count(), 0};
    setsockopt(ends[0], SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
    std::vector<char*> arguments(command.size() + 1);
    std::transform(command.begin(), command.end(), arguments.begin(),
        [](const std::string& argument) { return const_cast<char*>(argument.c_str()); });
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(ends[1], STDIN_FILENO);
        dup2(ends[1], STDOUT_FILENO);
        setenv("HILOG_LEVEL", "OFF", 1);
        unsetenv("OHOS_BUS_ADDRESS");
        if (!busAddress.empty()) {
            setenv("OHOS_BUS_ADDRESS", busAddress.c_str(), 1);
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

void Helper::Do(std::initializer_list<std::string> commands)
{
    for (const std::string& command : commands) {
        EXPECT_EQ(Ask(command), "0") << command;
    }
}

std::string Helper::Ask(const std::string& command)
{
    const std::string text = command + "\n";
    EXPECT_EQ(send(line_, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size())) << command;
    std::string line;
    while (!(line = ReadLine()).empty() && line[0] == '!') {
        events_.push_back(line.substr(2));
    }
    return line.substr(std::min<size_t>(line.size(), 2));
}

void Helper::AskUntil(const std::string& answer, const std::string& command)
{
    const auto deadline = Clock::now() + PATIENCE;
    for (std::string last; (last = Ask(command)) != answer;) {
        ASSERT_LT(Clock::now(), deadline) << command << ": " << last;
    }
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
    if (poll(&end, 1, std::chrono::milliseconds(PATIENCE).count()) <= 0) {
        ADD_FAILURE() << "process " << pid_ << " does not end";
        Signal(SIGKILL);
    }
    close(end.fd);
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

BusTest::BusTest(const std::string& serviceUser) : launcher_(OnVariant("emulator"))
{
    char folder[] = "/tmp/ohos_bus_test.XXXXXX";
    folder_ = mkdtemp(folder);
    std::ifstream file(BUS_CONFIGURATION);
    std::string configuration{std::istreambuf_iterator<char>(file), {}};
    const std::string user = serviceUser.empty() ? getpwuid(getuid())->pw_name : serviceUser;
    configuration = Replace(configuration, "@SERVICE_USER@", user);
    std::ofstream(folder_ + "/bus.conf") << Replace(configuration, "@FOLDER@", folder_);
    const std::string command = "exec dbus-daemon --nofork --nopidfile --print-address=1 2>/dev/null --config-file=";
    daemon_ = std::make_unique<Helper>(std::vector<std::string>{"sh", "-c", command + folder_ + "/bus.conf"}, "");
    busAddress_ = daemon_->ReadLine();
}

BusTest::~BusTest()
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

std::vector<std::string> BusTest::OnVariant(const std::string& variant)
{
    return {"env", "LD_LIBRARY_PATH=" LIBRARIES_DIR "/" + variant};
}

std::vector<std::string> BusTest::CommandFor(const std::string& program) const
{
    std::vector<std::string> command = launcher_;
    command.push_back(std::string(PROCESSES_DIR) + "/" + program);
    return command;
}

Helper& BusTest::Start(std::initializer_list<std::string> commands, const std::string& program)
{
    Helper& helper = helpers_.emplace_back(CommandFor(program), busAddress_);
    helper.Do(commands);
    return helper;
}
