// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>

#include "bus_test.h"

namespace {

constexpr const char* SERVICE = EXAMPLES_DIR "/indicator_service";
constexpr const char* MONITOR = EXAMPLES_DIR "/indicator_monitor";
constexpr const char* DEVICE_LIBRARY = "LD_LIBRARY_PATH=" EXAMPLES_DIR "/../lib/device";

void Create(const std::string& path)
{
    const std::ofstream file(path);
}

/** A service that watches two files, and an app on the device's library that shows what becomes of it. */
class SensorFileTest : public BusTest {
public:
    SensorFileTest()
    {
        EXPECT_NE(mkdtemp(folder_), nullptr);
        camera_ = folder_ + std::string("/camera");
        microphone_ = folder_ + std::string("/microphone");
        Create(camera_);
        Create(microphone_);
    }

    ~SensorFileTest() override
    {
        for (const std::string& path : {camera_, microphone_, Other(), std::string(folder_)}) {
            std::remove(path.c_str());
        }
    }

protected:
    void Begin()
    {
        service_.emplace(ServiceCommand(), busAddress_);
        EXPECT_EQ(service_->ReadLine(), "ready");
        app_.emplace(std::vector<std::string>{"env", DEVICE_LIBRARY, MONITOR}, busAddress_);
        EXPECT_EQ(app_->ReadLine(), "listening");
    }

    /** With its standard error where its output goes. */
    std::vector<std::string> ServiceCommand() const
    {
        return {"sh", "-c", R"(exec "$0" "$@" 2>&1)", SERVICE, "--watch", "camera=" + camera_, "--watch",
            "microphone=" + microphone_};
    }

    /** The app's next two lines, without their times: the switch, then the use, which come in either order. */
    std::string Hear()
    {
        constexpr size_t TIME = 14; // And two blanks.
        std::vector<std::string> lines{app_->ReadLine(), app_->ReadLine()};
        for (std::string& line : lines) {
            line.erase(0, TIME);
        }
        std::sort(lines.begin(), lines.end());
        return lines[0] + ", " + lines[1];
    }

    /** The service's next line that is not about a listener. */
    std::string ServiceLine()
    {
        std::string line;
        do {
            line = service_->ReadLine();
        } while (line.find(" listener of process ") != std::string::npos);
        return line;
    }

    std::string Other() const
    {
        return folder_ + std::string("/other");
    }

    char folder_[32] = "/tmp/sensor_file_test.XXXXXX";
    std::string camera_;
    std::string microphone_;
    std::optional<Helper> service_;
    std::optional<Helper> app_;
};

TEST_F(SensorFileTest, AProcessThatHasTheFileOpenTwiceUsesTheSensorOnce)
{
    Begin();
    const int first = open(camera_.c_str(), O_RDONLY | O_CLOEXEC);
    const int second = open(camera_.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(Hear(), "indicator  camera on, use        camera by e2e_tests on");
    close(first);
    const int microphone = open(microphone_.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(Hear(), "indicator  microphone on, use        microphone by e2e_tests on");
    close(microphone);
    EXPECT_EQ(Hear(), "indicator  microphone off, use        microphone by e2e_tests off");
    close(second);
    EXPECT_EQ(Hear(), "indicator  camera off, use        camera by e2e_tests off");
}

TEST_F(SensorFileTest, AUseEndsWithTheProcess)
{
    Begin();
    Helper user({"tail", "-f", camera_}, "");
    EXPECT_EQ(Hear(), "indicator  camera on, use        camera by tail on");
    user.Kill();
    EXPECT_EQ(Hear(), "indicator  camera off, use        camera by tail off");
}

TEST_F(SensorFileTest, WhoHasARemovedFileOpenStillUsesTheSensor)
{
    Begin();
    std::optional<Helper> user;
    user.emplace(std::vector<std::string>{"tail", "-f", camera_}, "");
    EXPECT_EQ(Hear(), "indicator  camera on, use        camera by tail on");
    std::remove(camera_.c_str());
    EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " is gone: No such file or directory");
    Create(camera_);
    EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " is back");
    const int microphone = open(microphone_.c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(Hear(), "indicator  microphone on, use        microphone by e2e_tests on");
    user->Kill();
    EXPECT_EQ(Hear(), "indicator  camera off, use        camera by tail off");
    close(microphone);
    EXPECT_EQ(Hear(), "indicator  microphone off, use        microphone by e2e_tests off");
}

TEST_F(SensorFileTest, AReplacedFileIsFollowed)
{
    Begin();
    Create(Other());
    std::rename(Other().c_str(), camera_.c_str());
    EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " was replaced");
    Helper user({"tail", "-f", camera_}, "");
    EXPECT_EQ(Hear(), "indicator  camera on, use        camera by tail on");
}

TEST_F(SensorFileTest, AServiceDoesNotStartWithoutTheFile)
{
    std::remove(microphone_.c_str());
    Helper service(ServiceCommand(), busAddress_);
    EXPECT_EQ(service.ReadLine(), "indicator_service: cannot watch " + microphone_ + ": No such file or directory");
    EXPECT_EQ(service.AwaitEnd(), 1);
}

} // namespace
