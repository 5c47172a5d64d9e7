// SPDX-License-Identifier: Apache-2.0
#ifndef TOOLS_TEST_H
#define TOOLS_TEST_H

#include <fcntl.h>
#include <sys/stat.h>

#include <optional>

#include "peer_test.h"

inline const std::string CTL = EXAMPLES_DIR "/indicator_ctl";
inline const std::string MONITOR = EXAMPLES_DIR "/indicator_monitor";
inline const std::string SERVICE = EXAMPLES_DIR "/indicator_service";

/** A test of the tools, with a bus of its own, and a service that learns from it what applications do. */
class ToolsTest : public PeerTest {
public:
    ToolsTest()
    {
        const std::string fifo = folder_ + "/uses";
        mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR);
        uses_ = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    }

    ~ToolsTest() override { close(uses_); }

protected:
    /** Starts the service and waits until it can be found; who has waited for it may come before that. */
    void StartService(const std::string& options = "")
    {
        const std::string command = "exec " + SERVICE + " " + options + " <" + folder_ + "/uses 2>&1";
        service_.emplace(std::vector<std::string>{"sh", "-c", command}, busAddress_);
        while (service_->ReadLine() != "ready" && !HasFailure()) {
        }
    }

    /** Has the service read a line. */
    void Use(const std::string& line) const
    {
        const std::string text = line + "\n";
        EXPECT_EQ(write(uses_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    std::optional<Helper> service_;

private:
    int uses_ = -1; // To the service's standard input.
};

#endif // TOOLS_TEST_H
