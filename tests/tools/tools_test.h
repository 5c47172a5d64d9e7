// SPDX-License-Identifier: Apache-2.0
#ifndef TOOLS_TEST_H
#define TOOLS_TEST_H

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <optional>

#include "peer_test.h"

inline const std::string CTL = EXAMPLES_DIR "/indicator_ctl";
inline const std::string MONITOR = EXAMPLES_DIR "/indicator_monitor";
inline const std::string SERVICE = EXAMPLES_DIR "/indicator_service";

/** A test of the tools, with a bus of its own, and a service that learns from it what applications do. */
class ToolsTest : public PeerTest {
protected:
    /** Starts the service and waits until it can be found; who has waited for it may come before that. */
    void StartService(const std::string& options = "")
    {
        const std::string command = "exec " + SERVICE + " " + options + " 2>&1";
        service_.emplace(std::vector<std::string>{"sh", "-c", command}, busAddress_);
        AwaitLine(*service_, "ready");
    }

    void Use(const std::string& line) const { service_->Input(line + "\n"); }

    /** The program's next line that holds `text`; empty, and a failed test, if none comes. */
    static std::string AwaitLine(Helper& program, const std::string& text)
    {
        std::string line;
        do {
            line = program.ReadLine();
        } while (line.find(text) == std::string::npos && !HasFailure());
        return line;
    }

    std::optional<Helper> service_;
};

/** A program on a terminal of its own, which it is in front of, and what that terminal shows. */
class PseudoTerminal : public Helper {
public:
    PseudoTerminal(const std::vector<std::string>& command, const std::string& busAddress)
        : Helper(command, busAddress, true)
    {}

    /** Types `keys`, and then awaits these texts. */
    void Type(const std::string& keys, std::initializer_list<std::string> texts = {})
    {
        EXPECT_EQ(write(line_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
        for (const std::string& text : texts) {
            Await(text);
        }
    }

    /** Reads until the terminal has got `text`, after the one that was awaited before. */
    void Await(const std::string& text)
    {
        size_t found = 0;
        AwaitThat([&] { return (found = bytes_.find(text, awaited_)) != std::string::npos || !Read(); });
        ASSERT_NE(found, std::string::npos) << text << " in " << testing::PrintToString(bytes_.substr(awaited_));
        awaited_ = found + text.size();
    }

    void Resize(unsigned short columns, unsigned short rows) const
    {
        const winsize size{rows, columns, 0, 0};
        ioctl(line_, TIOCSWINSZ, &size);
    }

    int AwaitEnd()
    {
        while (Read()) {
        }
        return Helper::AwaitEnd();
    }

    const std::string& Bytes() const { return bytes_; }

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

#endif // TOOLS_TEST_H
