// SPDX-License-Identifier: Apache-2.0
#include "file_watch.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "parse.h"
#include "print.h"
#include "process_files.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

constexpr int LOOK_INTERVAL = 1000;                                             // Milliseconds, while there is a use.
constexpr uint32_t USE_NOTICES = IN_OPEN | IN_CLOSE | IN_ATTRIB | IN_MOVE_SELF; // A removal is IN_ATTRIB.
constexpr uint32_t FOLDER_NOTICES = IN_CREATE | IN_MOVED_TO | IN_ONLYDIR;

std::string FolderOf(const std::string& path)
{
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

} // namespace

SensorFile ParseSensorFile(const std::string& text)
{
    const size_t sign = text.find('=');
    if (sign == std::string::npos || sign + 1 == text.size()) {
        throw ParseError("\"" + text + "\" is not SENSOR=PATH");
    }
    return {ParseSensor(text.substr(0, sign)), text.substr(sign + 1)};
}

FileWatch::FileWatch(const std::vector<SensorFile>& files, IndicatorService& service) : service_(service)
{
    if (files.empty()) {
        return;
    }
    fd_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    for (const auto& file : files) {
        watched_.push_back({file, std::nullopt, {}});
        int error = fd_ < 0 ? errno : Follow(watched_.back());
        // The folder tells when a file comes back.
        if (error == 0 && inotify_add_watch(fd_, FolderOf(file.path).c_str(), FOLDER_NOTICES) < 0) {
            error = errno;
        }
        if (error != 0) {
            close(fd_);
            throw std::system_error(error, std::generic_category(), "cannot watch " + file.path);
        }
    }
    Tell(FindUses());
}

FileWatch::~FileWatch()
{
    if (fd_ >= 0) {
        close(fd_);
    }
}

int FileWatch::GetFd() const
{
    return fd_;
}

int FileWatch::GetTimeout() const
{
    return uses_.empty() ? -1 : LOOK_INTERVAL;
}

void FileWatch::Look()
{
    ReadNotices();
    for (auto& watched : watched_) {
        const bool wasThere = watched.current.has_value();
        const size_t formerCount = watched.former.size();
        const int error = Follow(watched);
        if (wasThere && error != 0) {
            Complain(watched.file.path + " is gone: " + std::strerror(error));
        } else if (watched.former.size() != formerCount) {
            Complain(watched.file.path + " was replaced");
        } else if (!wasThere && error == 0) {
            Complain(watched.file.path + " is back");
        }
    }
    Tell(FindUses());
}

void FileWatch::ReadNotices()
{
    std::array<char, 65536> bytes{};
    ssize_t size = 0;
    while ((size = read(fd_, bytes.data(), bytes.size())) > 0) {
        inotify_event notice{};
        for (size_t at = 0; at < static_cast<size_t>(size); at += sizeof(notice) + notice.len) {
            std::memcpy(&notice, &bytes[at], sizeof(notice));
            if ((notice.mask & IN_IGNORED) == 0) {
                continue; // Of all others it is enough that they came.
            }
            for (auto& watched : watched_) {
                if (watched.current && watched.current->watch == notice.wd) {
                    watched.current->number = 0;
                }
            }
        }
    }
}

int FileWatch::Follow(Watched& watched) const
{
    struct stat found {};
    // The path is opened only for something new: on some kernels that gives a notice, too.
    int error = stat(watched.file.path.c_str(), &found) == 0 ? 0 : errno;
    if (error == 0 && watched.current && watched.current->device == found.st_dev &&
        watched.current->number == found.st_ino) {
        return 0;
    }
    if (watched.current) {
        watched.former.push_back(*watched.current);
        watched.current.reset();
    }
    // Watched by descriptor: under the path, there may be another one by now.
    const int file = open(watched.file.path.c_str(), O_PATH | O_CLOEXEC);
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const int watch = file >= 0 && fstat(file, &found) == 0 ? inotify_add_watch(fd_, link.c_str(), USE_NOTICES) : -1;
    error = watch >= 0 ? 0 : errno;
    if (file >= 0) {
        close(file);
    }
    if (error == 0) {
        watched.current = {watch, found.st_dev, found.st_ino};
    }
    return error;
}

std::set<FileWatch::Use> FileWatch::FindUses()
{
    const auto isSame = [](dev_t device, ino_t number) {
        return [device, number](const Inode& inode) { return inode.device == device && inode.number == number; };
    };
    std::set<Use> uses;
    std::set<std::pair<dev_t, ino_t>> open;
    ForEachProcess([&](pid_t process) {
        std::set<PrivacySensorType> sensors;
        ForEachOpenFile(process, [&](dev_t device, ino_t number) {
            for (const auto& watched : watched_) {
                const auto is = isSame(device, number);
                if ((watched.current && is(*watched.current)) ||
                    std::any_of(watched.former.begin(), watched.former.end(), is)) {
                    sensors.insert(watched.file.sensor);
                    open.emplace(device, number);
                }
            }
        });
        const auto owner = sensors.empty() ? std::nullopt : FindOwner(process);
        for (const auto sensor : sensors) {
            if (owner) {
                uses.emplace(sensor, owner->name, owner->uid);
            }
        }
    });
    for (auto& [file, current, former] : watched_) {
        former.erase(std::remove_if(former.begin(), former.end(),
                         [&open](const Inode& inode) {
                             return open.count({inode.device, inode.number}) == 0;
                         }),
            former.end());
    }
    return uses;
}

void FileWatch::Tell(const std::set<Use>& uses)
{
    // Begins come first: where one process hands the sensor on to another, its indicator stays on.
    for (const auto& use : uses) {
        const auto& [sensor, name, uid] = use;
        // Refused if it was told otherwise already, or there is no room: it is tried again at the next look.
        if (uses_.count(use) == 0 && service_.BeginUse({sensor, name, uid})) {
            uses_.insert(use);
        }
    }
    for (auto use = uses_.begin(); use != uses_.end();) {
        if (uses.count(*use) != 0) {
            ++use;
            continue;
        }
        const auto& [sensor, name, uid] = *use;
        service_.EndUse({sensor, name, uid});
        use = uses_.erase(use);
    }
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples
