// SPDX-License-Identifier: Apache-2.0
#ifndef TOOLS_TEST_H
#define TOOLS_TEST_H

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "bus_test.h"

inline const std::string CTL = EXAMPLES_DIR "/indicator_ctl";
inline const std::string MONITOR = EXAMPLES_DIR "/indicator_monitor";
inline const std::string SERVICE = EXAMPLES_DIR "/indicator_service";

/** A test of the tools, with a bus of its own, and a service that learns from it what applications do. */
class ToolsTest : public BusTest {
public:
    ToolsTest()
    {
        const std::string fifo = folder_ + "/uses";
        mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR);
        uses_ = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
    }

    ~ToolsTest() override { close(uses_); }

protected:
    /** Starts the service and waits until it can be found. */
    void StartService(const std::string& options = "")
    {
        const std::string command = "exec " + SERVICE + " " + options + " <" + folder_ + "/uses 2>&1";
        service_.emplace(std::vector<std::string>{"sh", "-c", command}, busAddress_);
        EXPECT_EQ(LineWithout("is waited for"), "ready");
    }

    /** Has the service read a line. */
    void Use(const std::string& line) const
    {
        const std::string text = line + "\n";
        EXPECT_EQ(write(uses_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    /** The service's next line without `text`. */
    std::string LineWithout(const std::string& text)
    {
        std::string line;
        do {
            line = service_->ReadLine();
        } while (line.find(text) != std::string::npos);
        return line;
    }

    /** What a shell's command prints on either stream, and "= " and its exit code at the end. */
    std::string Run(const std::string& command) const
    {
        setenv("OHOS_BUS_ADDRESS", busAddress_.c_str(), 1);
        setenv("HILOG_LEVEL", "OFF", 1);
        std::FILE* const shell = popen(("{ " + command + "; } 2>&1 </dev/null; echo \"= $?\"").c_str(), "re");
        std::string output;
        char bytes[4096];
        while (const size_t size = std::fread(bytes, 1, sizeof(bytes), shell)) {
            output.append(bytes, size);
        }
        pclose(shell);
        return output;
    }

    std::optional<Helper> service_;

private:
    int uses_ = -1; // To the service's standard input.
};

#endif // TOOLS_TEST_H
