// SPDX-License-Identifier: Apache-2.0
#ifndef PSEUDO_TERMINAL_H
#define PSEUDO_TERMINAL_H

#include <sys/ioctl.h>
#include <termios.h>

#include "bus_test.h"

/** A program on a terminal of its own, which it is in front of, and what that terminal shows. */
class PseudoTerminal : public Helper {
public:
    PseudoTerminal(const std::vector<std::string>& command, const std::string& busAddress)
        : Helper(command, busAddress, true)
    {}

    void Type(const std::string& keys) const
    {
        EXPECT_EQ(write(line_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    void Resize(unsigned short columns, unsigned short rows) const
    {
        const winsize size{rows, columns, 0, 0};
        ioctl(line_, TIOCSWINSZ, &size);
    }

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

    /** Reads up to the end, and waits for it. */
    int AwaitEnd()
    {
        while (Read()) {
        }
        return Helper::AwaitEnd();
    }

    /** All bytes that the terminal has got. */
    const std::string& Bytes() const { return bytes_; }

    /** The terminal's modes. */
    tcflag_t LocalModes() const
    {
        termios modes{};
        tcgetattr(line_, &modes);
        return modes.c_lflag;
    }

private:
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
        pollfd wait{line_, POLLIN, 0};
        const ssize_t size = poll(&wait, 1, PATIENCE_S * 1000) > 0 ? read(line_, bytes, sizeof(bytes)) : 0;
        bytes_.append(bytes, size > 0 ? static_cast<size_t>(size) : 0);
        return size > 0;
    }

    std::string bytes_;
    size_t awaited_ = 0;
};

#endif // PSEUDO_TERMINAL_H
