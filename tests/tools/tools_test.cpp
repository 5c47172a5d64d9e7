// SPDX-License-Identifier: Apache-2.0
#include "tools_test.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>

ToolsTest::ToolsTest()
{
    const std::string fifo = folder_ + "/uses";
    mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR);
    uses_ = open(fifo.c_str(), O_RDWR | O_CLOEXEC);
}

ToolsTest::~ToolsTest()
{
    close(uses_);
}

void ToolsTest::StartService(const std::string& options)
{
    const std::string command = "exec " + SERVICE + " " + options + " <" + folder_ + "/uses 2>&1";
    service_.emplace(std::vector<std::string>{"sh", "-c", command}, busAddress_);
    std::string line;
    do {
        line = service_->ReadLine();
    } while (line.find("is waited for") != std::string::npos);
    EXPECT_EQ(line, "ready");
}

void ToolsTest::Use(const std::string& line) const
{
    const std::string text = line + "\n";
    EXPECT_EQ(write(uses_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

std::string ToolsTest::ServiceLine()
{
    std::string line;
    do { // A client may register more than once, in either order.
        line = service_->ReadLine();
    } while (line.find(" listener of process ") != std::string::npos);
    return line;
}

void ToolsTest::AwaitMonitor()
{
    while (service_->ReadLine().find("event listener of process ") != 0 && !HasFailure()) {
    }
}

std::string ToolsTest::Run(const std::string& command) const
{
    setenv("OHOS_BUS_ADDRESS", busAddress_.c_str(), 1);
    setenv("HILOG_LEVEL", "OFF", 1);
    std::FILE* const shell = popen(("{ " + command + "; } 2>&1 </dev/null; echo \"= $?\"").c_str(), "re");
    std::string output;
    std::array<char, 4096> bytes{};
    while (const size_t size = std::fread(bytes.data(), 1, bytes.size(), shell)) {
        output.append(bytes.data(), size);
    }
    pclose(shell);
    return output;
}
