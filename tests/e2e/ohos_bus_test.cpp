// SPDX-License-Identifier: Apache-2.0
// The program that runs a command beside a bus of its own.
#include <sys/stat.h>

#include "peer_test.h"

namespace {

class OhosBusTest : public PeerTest {
protected:
    OhosBusTest() { mkdir(temporary_.c_str(), S_IRWXU); }

    // The first line on either stream of a shell's command that runs $bus, and its exit code.
    std::string Run(const std::string& command) const
    {
        Helper shell({"bash", "-c",
                         "bus=" OHOS_BUS " TMPDIR=" + temporary_ + "; export TMPDIR; { " + command +
                             "; } 2>&1 </dev/null | head -n 1; echo ${PIPESTATUS[0]}"},
            "");
        const std::string line = shell.ReadLine();
        const std::string code = shell.ReadLine();
        shell.AwaitEnd();
        return line + " = " + code;
    }

    const std::string temporary_ = folder_ + "/tmp";
    const std::string show_ = " printenv OHOS_BUS_ADDRESS";
};

TEST_F(OhosBusTest, ACommandFindsTheBusAndItsExitCodeIsTheBuss)
{
    EXPECT_EQ(Run("$bus" + show_).rfind("unix:path=" + temporary_ + "/ohos_bus.", 0), 0U);
    EXPECT_EQ(Run("cd " + temporary_ + "; ln -s $bus link; ./link --address own" + show_),
        "unix:path=" + temporary_ + "/own = 0");
    daemon_->Kill(); // Which leaves its socket.
    EXPECT_EQ(Run("$bus --address " + folder_ + "/bus" + show_), busAddress_ + " = 0");
    const std::string usage = "usage: ohos_bus [--address PATH] COMMAND [ARGUMENT...] = ";
    EXPECT_EQ(Run("$bus --help"), usage + "0");
    for (const char* line : {"$bus", "$bus --address", "$bus --adress x true"}) {
        EXPECT_EQ(Run(line), usage + "2") << line;
    }
    EXPECT_EQ(Run("$bus sh -c 'echo x; exit 7'"), "x = 7");
    EXPECT_EQ(Run("$bus --address " + std::string(107, 'x') + show_)
                  .rfind("ohos_bus: the path of a socket has 107 bytes at most: not /", 0),
        0U);
}

TEST_F(OhosBusTest, AUserWithoutAnEntryInPasswdIsNamed)
{
    if (std::system("unshare --map-user=54321 true 2>/dev/null") != 0) {
        GTEST_SKIP() << "no user namespace to be had here";
    }
    EXPECT_EQ(Run("unshare --map-user=54321 $bus true"),
        "ohos_bus: user 54321 has no entry in passwd, which the daemon asks for = 1");
}

TEST_F(OhosBusTest, SignalsGoToTheCommandAndTheBusEndsWithIt)
{
    busAddress_ = "unix:path=" + folder_ + "/own";
    setenv("TMPDIR", temporary_.c_str(), 1);
    Helper bus({OHOS_BUS, "--address", folder_ + "/own", "sh", "-c", "echo ready; exec sleep 60"}, "");
    EXPECT_EQ(bus.ReadLine(), "ready");
    Helper& service = Start([] { Watch(100), Serve(100); });
    service.Hears({"up 100"});
    bus.Signal(SIGTERM);
    EXPECT_EQ(bus.AwaitEnd(), -SIGTERM);
    service.Hears({"down 100"});
    EXPECT_TRUE(AwaitThat([this] { return std::filesystem::is_empty(temporary_); }));
}

} // namespace
