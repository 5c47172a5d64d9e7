// SPDX-License-Identifier: Apache-2.0
// The program that runs a command beside a bus of its own.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "peer_test.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

class OhosBusTest : public PeerTest {
protected:
    OhosBusTest() { mkdir(temporary_.c_str(), S_IRWXU); }

    const std::string temporary_ = folder_ + "/tmp";
    const std::string bus_ = "TMPDIR=" + temporary_ + " " OHOS_BUS " ";
    const std::string show_ = " printenv OHOS_BUS_ADDRESS";
};

TEST_F(OhosBusTest, ACommandFindsTheBusAndItsExitCodeIsTheBuss)
{
    EXPECT_THAT(Run(bus_ + show_), StartsWith("unix:path=" + temporary_ + "/ohos_bus."));
    EXPECT_EQ(Run("cd " + temporary_ + "; ln -s " OHOS_BUS " link; ./link --address own" + show_),
        "unix:path=" + temporary_ + "/own\n= 0\n");
    daemon_->Kill(); // Which leaves its socket.
    EXPECT_EQ(Run(bus_ + "--address " + folder_ + "/bus" + show_), busAddress_ + "\n= 0\n");
    for (const auto& [line, code] : {std::pair("--help", 0), {"", 2}, {"--address", 2}, {"--adress x true", 2}}) {
        EXPECT_THAT(Run(bus_ + line), AllOf(StartsWith("usage: ohos_bus [--address PATH] COMMAND [ARGUMENT...]\n"),
                                          EndsWith("= " + std::to_string(code) + "\n")));
    }
    EXPECT_EQ(
        Run("cd " + folder_ + "; TMPDIR=tmp " OHOS_BUS " sh -c 'test -S \"${OHOS_BUS_ADDRESS#unix:path=}\"'"), "= 0\n");
    EXPECT_EQ(Run(bus_ + "sh -c 'echo x; exit 7'"), "x\n= 7\n");
    EXPECT_THAT(Run(bus_ + "--address " + std::string(107, 'x') + show_),
        StartsWith("ohos_bus: the path of a socket has 107 bytes at most: not /"));
    if (std::system("unshare --map-user=54321 true 2>/dev/null") == 0) { // Where there are user namespaces.
        EXPECT_EQ(Run("unshare --map-user=54321 " OHOS_BUS " true"),
            "ohos_bus: user 54321 has no entry in passwd, which the daemon asks for\n= 1\n");
    }
}

TEST_F(OhosBusTest, SignalsGoToTheCommandAndTheBusEndsWithIt)
{
    busAddress_ = "unix:path=" + folder_ + "/own";
    setenv("TMPDIR", temporary_.c_str(), 1);
    Helper bus({OHOS_BUS, "--address", folder_ + "/own", "sh", "-c", "echo ready; exec sleep 60"}, "");
    EXPECT_EQ(bus.ReadLine(), "ready");
    Helper& service = Start([] { Watch(100), Serve(100); });
    service.ExpectEvents({"up 100"});
    bus.Signal(SIGTERM);
    EXPECT_EQ(bus.AwaitEnd(), -SIGTERM);
    service.ExpectEvents({"down 100"});
    const std::filesystem::path socket = folder_ + "/own";
    EXPECT_TRUE(AwaitThat([&] { return std::filesystem::is_empty(temporary_) && !exists(socket); }));
}

TEST_F(OhosBusTest, APathThatTheNextBusHasStaysItsOwn)
{
    const std::string path = folder_ + "/own";
    EXPECT_EQ(Run("TMPDIR=" + temporary_ + " " OHOS_BUS " --address " + path + " ln -sfn next " + path), "= 0\n");
    EXPECT_TRUE(AwaitThat([this] { return std::filesystem::is_empty(temporary_); }));
    EXPECT_EQ(std::filesystem::read_symlink(path), "next");
}

} // namespace
