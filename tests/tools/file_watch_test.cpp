// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "process_files.h"
#include "tools_test.h"

namespace {

/** A service that watches a file which is not there at first and one that is, and a monitor. */
class FileWatchTest : public ToolsTest {
protected:
    FileWatchTest()
    {
        std::ofstream(location_).close();
        StartService("--watch camera=" + camera_ + " --watch location=" + location_);
        monitor_.emplace(std::vector<std::string>{MONITOR}, busAddress_);
        EXPECT_EQ(monitor_->ReadLine(), "listening");
    }

    /** Makes the file, in the place of another one if there is one, of which the service says that. */
    void Create(const std::string& said = " is there now")
    {
        std::ofstream(folder_ + "/new").close();
        std::filesystem::rename(folder_ + "/new", camera_);
        ExpectSaid(said);
    }

    void ExpectSaid(const std::string& said)
    {
        EXPECT_EQ(AwaitLine(*service_, "indicator_service: "), "indicator_service: " + camera_ + said);
    }

    static int Open(const std::string& path) { return open(path.c_str(), O_RDONLY | O_CLOEXEC); }

    void ExpectUse(const std::string& use)
    {
        EXPECT_THAT(AwaitLine(*monitor_, "  use  "), testing::EndsWith("  use        " + use));
    }

    const std::string camera_ = folder_ + "/camera";
    const std::string location_ = folder_ + "/location";
    std::optional<Helper> monitor_;
};

TEST_F(FileWatchTest, AnAbsentFileIsWaitedForAndAnUnseenUseIsOfAnUnknownProcess)
{
    Create();
    // Mapped, it is open without a descriptor that could be found.
    const int file = Open(camera_);
    void* const mapping = mmap(nullptr, 1, PROT_READ, MAP_SHARED, file, 0);
    close(file);
    ExpectUse("camera by unknown process on");
    munmap(mapping, 1);
    ExpectUse("camera by unknown process off");
}

TEST_F(FileWatchTest, AFileIsFollowedThroughRemovalAndReplacementAndIsUsedOnceByAProcess)
{
    Create();
    const int first = Open(camera_);
    const int second = Open(camera_);
    ExpectUse("camera by tools_tests on");
    close(first);
    const int other = Open(location_); // Which is reported; the end of the first one is not.
    ExpectUse("location by tools_tests on");
    close(other);
    ExpectUse("location by tools_tests off");
    std::filesystem::remove(camera_);
    ExpectSaid(" is gone: No such file or directory");
    Create(" is back");
    close(second); // It had the removed one open until now.
    ExpectUse("camera by tools_tests off");
    Create(" was replaced");
    const int replaced = Open(camera_);
    ExpectUse("camera by tools_tests on");
    close(replaced);
}

TEST_F(FileWatchTest, AProgramThatBecomesAnotherOneIsNamedAnew)
{
    Create();
    Helper user({"bash", "-c", "exec 9<" + camera_ + "; read line; exec tail -f /dev/null"}, "");
    ExpectUse("camera by bash on");
    user.EndInput();
    ExpectUse("camera by tail on");
    ExpectUse("camera by bash off");
    user.Kill();
    ExpectUse("camera by tail off");
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
