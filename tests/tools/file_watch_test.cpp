// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "process_files.h"
#include "tools_test.h"

namespace {

/** Hides an open file from every process's descriptors: it is on its way through a socket. */
class Hidden {
public:
    explicit Hidden(const std::string& path)
    {
        socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends_.data());
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        char byte = 0;
        iovec data{&byte, 1};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(file))> room{};
        msghdr message{nullptr, 0, &data, 1, room.data(), room.size(), 0};
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        *header = {CMSG_LEN(sizeof(file)), SOL_SOCKET, SCM_RIGHTS};
        std::memcpy(CMSG_DATA(header), &file, sizeof(file));
        EXPECT_EQ(sendmsg(ends_[0], &message, 0), 1);
        close(file);
    }
    Hidden(const Hidden&) = delete;
    Hidden& operator=(const Hidden&) = delete;
    ~Hidden()
    {
        close(ends_[0]);
        close(ends_[1]);
    }

private:
    std::array<int, 2> ends_{};
};

/** A service that watches a file which is not there at first, and a monitor. */
class FileWatchTest : public ToolsTest {
protected:
    FileWatchTest()
    {
        StartService("--watch camera=" + camera_);
        monitor_.emplace(std::vector<std::string>{MONITOR}, busAddress_);
        EXPECT_EQ(monitor_->ReadLine(), "listening");
    }

    /** Makes the file, and waits until it is watched. */
    void Create()
    {
        std::ofstream(folder_ + "/new").close();
        std::filesystem::rename(folder_ + "/new", camera_);
        EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " is there now");
    }

    /** The next use that the monitor prints. */
    std::string NextUse()
    {
        const std::string mark = "  use        ";
        std::string line;
        do {
            line = monitor_->ReadLine();
        } while (line.find(mark) == std::string::npos && !HasFailure());
        return line.substr(std::min(line.size(), line.find(mark) + mark.size()));
    }

    const std::string camera_ = folder_ + "/camera";
    std::optional<Helper> monitor_;
};

TEST_F(FileWatchTest, AnAbsentFileIsWaitedForAndAnUnseenUseIsOfAnUnknownProcess)
{
    Create();
    {
        const Hidden hidden(camera_);
        EXPECT_EQ(NextUse(), "camera by unknown process on");
    }
    EXPECT_EQ(NextUse(), "camera by unknown process off");
}

TEST_F(FileWatchTest, AProgramThatBecomesAnotherOneIsNamedAnew)
{
    Create();
    Helper user({"bash", "-c", "exec 9<" + camera_ + "; read line; exec tail -f /dev/null"}, "");
    EXPECT_EQ(NextUse(), "camera by bash on");
    user.EndInput();
    EXPECT_EQ(NextUse(), "camera by tail on");
    EXPECT_EQ(NextUse(), "camera by bash off");
    user.Kill();
    EXPECT_EQ(NextUse(), "camera by tail off");
}

TEST_F(FileWatchTest, AFolderMustBeThere)
{
    EXPECT_EQ(Run(SERVICE + " --watch camera=" + folder_ + "/none/camera"),
        "indicator_service: cannot watch " + folder_ + "/none/camera: No such file or directory\n= 1\n");
}

TEST(ProcessFilesTest, AnApplicationIsNamedByItsControlGroup)
{
    using OHOS::Korvane::Quenlar::PrivacyIndicator::Examples::FindDesktopApplication;
    const std::string user = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/";
    EXPECT_EQ(FindDesktopApplication(user + "app-gnome-org.gnome.Cheese-4242.scope\n"), "org.gnome.Cheese");
    EXPECT_EQ(FindDesktopApplication(user + "app-org.kde.konsole-1f2e.scope/tab(7).scope\n"), "org.kde.konsole");
    EXPECT_EQ(FindDesktopApplication(user + "app-flatpak-org.example.A\\x2db-1.scope\n"), "org.example.A-b");
    EXPECT_EQ(FindDesktopApplication(user + "app-gnome-firefox@6f.service\n"), "firefox");
    EXPECT_EQ(FindDesktopApplication("1:name=systemd:/app-a\\x2-1.scope\n0::/\n"), "a\\x2");
    for (const char* const other :
        {"vte-spawn-6f.scope\n", "app-a-1.slice\n", "session-2.scope\n", "myapp-a-1.scope\n"}) {
        EXPECT_EQ(FindDesktopApplication(user + other), "") << other;
    }
}

} // namespace
