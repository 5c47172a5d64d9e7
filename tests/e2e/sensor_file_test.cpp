// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

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
protected:
    SensorFileTest()
    {
        Create(camera_);
        Create(microphone_);
        service_.emplace(serviceCommand_, busAddress_);
        EXPECT_EQ(service_->ReadLine(), "ready");
        app_.emplace(std::vector<std::string>{"env", DEVICE_LIBRARY, MONITOR}, busAddress_);
        EXPECT_EQ(app_->ReadLine(), "listening");
    }

    /** The app's next two lines are these, after their times: the switch, then the use, which come in either order. */
    void Hears(const std::string& indicator, const std::string& use)
    {
        constexpr size_t TIME = 14; // And two blanks.
        std::multiset<std::string> lines{app_->ReadLine().erase(0, TIME), app_->ReadLine().erase(0, TIME)};
        EXPECT_EQ(lines, (std::multiset<std::string>{"indicator  " + indicator, "use        " + use}));
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

    const std::string camera_ = folder_ + "/camera";
    const std::string microphone_ = folder_ + "/microphone";
    const std::vector<std::string> openCamera_{"tail", "-f", camera_};
    // With its standard error where its output goes.
    const std::vector<std::string> serviceCommand_{"sh", "-c", R"(exec "$0" "$@" 2>&1)", SERVICE, "--watch",
        "camera=" + camera_, "--watch", "microphone=" + microphone_};
    std::optional<Helper> service_;
    std::optional<Helper> app_;
};

TEST_F(SensorFileTest, AProcessThatHasTheFileOpenTwiceUsesTheSensorOnce)
{
    const int first = open(camera_.c_str(), O_RDONLY | O_CLOEXEC);
    const int second = open(camera_.c_str(), O_RDONLY | O_CLOEXEC);
    Hears("camera on", "camera by e2e_tests on");
    close(first);
    const int microphone = open(microphone_.c_str(), O_RDONLY | O_CLOEXEC);
    Hears("microphone on", "microphone by e2e_tests on");
    close(microphone);
    Hears("microphone off", "microphone by e2e_tests off");
    close(second);
    Hears("camera off", "camera by e2e_tests off");
}

TEST_F(SensorFileTest, AFileIsFollowedThroughRemovalAndReplacement)
{
    {
        Helper user(openCamera_, "");
        Hears("camera on", "camera by tail on");
        std::filesystem::remove(camera_);
        EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " is gone: No such file or directory");
        Create(camera_);
        EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " is back");
    }
    Hears("camera off", "camera by tail off"); // It had the removed one open until now.
    Create(folder_ + "/other");
    std::filesystem::rename(folder_ + "/other", camera_);
    EXPECT_EQ(ServiceLine(), "indicator_service: " + camera_ + " was replaced");
    Helper user(openCamera_, "");
    Hears("camera on", "camera by tail on");
}

} // namespace
