// SPDX-License-Identifier: Apache-2.0
#ifndef PSEUDO_TERMINAL_H
#define PSEUDO_TERMINAL_H

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

/** A process on a terminal of its own, which it is in front of, and what that terminal shows. It ends with this object.
 */
class PseudoTerminal {
public:
    /** `settings` are NAME=VALUE, for its environment. */
    PseudoTerminal(const std::vector<std::string>& command, const std::vector<std::string>& settings)
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

    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    ~PseudoTerminal()
    {
        if (process_ > 0) {
            Signal(SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        close(terminal_);
    }

    void Type(const std::string& keys) const
    {
        EXPECT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    void Resize(unsigned short columns, unsigned short rows) const
    {
        const winsize size{rows, columns, 0, 0};
        ioctl(terminal_, TIOCSWINSZ, &size);
    }

    void Signal(int signal) const { kill(process_, signal); }

    /** Reads until the board on the screen holds `text`. Returns the board: lines, without colours. */
    std::string AwaitBoard(const std::string& text)
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

    /** Reads until the terminal has got `text`, after what an earlier call waited for. */
    void AwaitBytes(const std::string& text)
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

    /** Waits for the process's end. Its exit code, or -1 for a signal. */
    int AwaitEnd()
    {
        while (Read()) {
        }
        int status = 0;
        waitpid(std::exchange(process_, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /** All bytes that the terminal has got. */
    const std::string& Bytes() const { return bytes_; }

    /** The terminal's modes. */
    tcflag_t LocalModes() const
    {
        termios modes{};
        tcgetattr(terminal_, &modes);
        return modes.c_lflag;
    }

private:
    static constexpr int PATIENCE = 20000; // Milliseconds.

    static std::string WithoutSequences(const std::string& text)
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

    /** Reads more. False at the end, or after a while. */
    bool Read()
    {
        char bytes[65536];
        pollfd wait{terminal_, POLLIN, 0};
        const ssize_t size = poll(&wait, 1, PATIENCE) > 0 ? read(terminal_, bytes, sizeof(bytes)) : 0;
        bytes_.append(bytes, size > 0 ? static_cast<size_t>(size) : 0);
        return size > 0;
    }

    pid_t process_ = -1;
    int terminal_ = -1;
    std::string bytes_;
    size_t awaited_ = 0;
};

#endif // PSEUDO_TERMINAL_H
