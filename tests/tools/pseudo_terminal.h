// SPDX-License-Identifier: Apache-2.0
#ifndef PSEUDO_TERMINAL_H
#define PSEUDO_TERMINAL_H

#include <sys/ioctl.h>
#include <termios.h>

#include <regex>

#include "bus_test.h"

/** A program on a terminal of its own, which it is in front of, and what that terminal shows. */
class PseudoTerminal : public Helper {
public:
    PseudoTerminal(const std::vector<std::string>& command, const std::string& busAddress)
        : Helper(command, busAddress, true)
    {}

    /** Types `keys`, and reads until the terminal has got these texts in their order, after those of an earlier call.
     */
    void Type(const std::string& keys, std::initializer_list<std::string> texts = {})
    {
        EXPECT_EQ(write(line_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        for (const std::string& text : texts) {
            size_t found = 0;
            while ((found = bytes_.find(text, awaited_)) == std::string::npos) {
                ASSERT_TRUE(Read()) << "no \"" << text << "\" in " << testing::PrintToString(bytes_.substr(awaited_));
            }
            awaited_ = found + text.size();
        }
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
                static const std::regex sequence("\033\\[[^A-Za-z]*[A-Za-z]|\r");
                std::string board = std::regex_replace(bytes_.substr(begin, end - begin), sequence, "");
                if (board.find(text) != std::string::npos) {
                    return board;
                }
            }
        } while (Read());
        ADD_FAILURE() << "no board with \"" << text << "\" in " << testing::PrintToString(bytes_);
        return "";
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
