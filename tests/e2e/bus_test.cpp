// SPDX-License-Identifier: Apache-2.0
#include "bus_test.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

std::string Replace(std::string text, const std::string& what, const std::string& with)
{
    return text.replace(text.find(what), what.size(), with);
}

} // namespace

BusTest::BusTest(const std::string& serviceUser)
{
    char folder[] = "/tmp/ohos_bus_test.XXXXXX";
    folder_ = mkdtemp(folder);
    busAddress_ = "unix:path=" + folder_ + "/bus";
    std::ifstream file(BUS_CONFIGURATION);
    std::string configuration{std::istreambuf_iterator<char>(file), {}};
    const std::string user = serviceUser.empty() ? getpwuid(getuid())->pw_name : serviceUser;
    configuration = Replace(configuration, "@SERVICE_USER@", user);
    std::ofstream(folder_ + "/bus.conf") << Replace(configuration, "@SOCKET@", folder_ + "/bus");
    StartDaemon();
}

BusTest::~BusTest()
{
    for (const Helper& helper : helpers_) {
        helper.EndInput();
    }
    for (Helper& helper : helpers_) {
        EXPECT_TRUE(helper.Pid() < 0 || helper.AwaitEnd() == 0) << "A helper did not end well.";
    }
    daemon_ = nullptr;
    std::filesystem::remove_all(folder_);
}

Helper& BusTest::Start()
{
    return helpers_.emplace_back(busAddress_);
}

void BusTest::StartDaemon()
{
    const std::string command = "exec dbus-daemon --nofork --nopidfile --print-address=1 2>/dev/null --config-file=";
    daemon_ = std::make_unique<Helper>(std::vector<std::string>{"sh", "-c", command + folder_ + "/bus.conf"}, "");
    daemon_->ReadLine(); // Once it listens.
}

void BusTest::KillDaemon()
{
    daemon_ = nullptr;
    std::filesystem::remove(folder_ + "/bus");
}
