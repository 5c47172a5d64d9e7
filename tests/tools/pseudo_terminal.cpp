// SPDX-License-Identifier: Apache-2.0
#include "pseudo_terminal.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <iterator>
#include <utility>

namespace {

constexpr int PATIENCE = 20000; // Milliseconds.

std::string WithoutSequences(const std::string& text)
{
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\033') {
            i = std::min(text.size(), text.find_first_of("ABCDHJKhlm", i)); // Its last letter.
        } else if (text[i] != '\r') {
            plain += text[i];
        }
    }
    return plain;
}

} // namespace

PseudoTerminal::PseudoTerminal(const std::vector<std::string>& command, const std::vector<std::string>& settings)
{
    std::vector<char*> arguments(command.size() + 1);
    std::transform(command.begin(), command.end(), arguments.begin(),
        [](const std::string& argument) { return const_cast<char*>(argument.c_str()); });
    const winsize size{24, 80, 0, 0};
    process_ = forkpty(&terminal_, nullptr, nullptr, &size);
    if (process_ == 0) {
        for (const auto& setting : settings) {
            putenv(const_cast<char*>(setting.c_str()));
        }
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
}

PseudoTerminal::~PseudoTerminal()
{
    if (process_ > 0) {
        Signal(SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(terminal_);
}

void PseudoTerminal::Type(const std::string& keys) const
{
    EXPECT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

void PseudoTerminal::Resize(unsigned short columns, unsigned short rows) const
{
    const winsize size{rows, columns, 0, 0};
    ioctl(terminal_, TIOCSWINSZ, &size);
}

void PseudoTerminal::Signal(int signal) const
{
    kill(process_, signal);
}

std::string PseudoTerminal::AwaitBoard(const std::string& text)
{
    do {
        // From the last "home" whose frame has come to its end.
        const size_t end = bytes_.rfind("\033[J");
        const size_t begin = end == std::string::npos ? end : bytes_.rfind("\033[H", end);
        if (begin != std::string::npos) {
            std::string board = WithoutSequences(bytes_.substr(begin, end - begin));
            if (board.find(text) != std::string::npos) {
                return board;
            }
        }
    } while (Read());
    ADD_FAILURE() << "no board with \"" << text << "\" in " << testing::PrintToString(bytes_);
    return "";
}

void PseudoTerminal::AwaitBytes(const std::string& text)
{
    size_t found = 0;
    while ((found = bytes_.find(text, awaited_)) == std::string::npos) {
        if (!Read()) {
            ADD_FAILURE() << "no \"" << text << "\" in " << testing::PrintToString(bytes_.substr(awaited_));
            return;
        }
    }
    awaited_ = found + text.size();
}

int PseudoTerminal::AwaitEnd()
{
    while (Read()) {
    }
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

tcflag_t PseudoTerminal::LocalModes() const
{
    termios modes{};
    tcgetattr(terminal_, &modes);
    return modes.c_lflag;
}

bool PseudoTerminal::Read()
{
    std::array<char, 65536> bytes{};
    pollfd wait{terminal_, POLLIN, 0};
    const ssize_t size = poll(&wait, 1, PATIENCE) > 0 ? read(terminal_, bytes.data(), bytes.size()) : 0;
    bytes_.append(bytes.data(), size > 0 ? static_cast<size_t>(size) : 0);
    return size > 0;
}
