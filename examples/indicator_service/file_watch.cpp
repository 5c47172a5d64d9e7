// SPDX-License-Identifier: Apache-2.0
#include "file_watch.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "parse.h"
#include "print.h"
#include "process_files.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds LOOK_INTERVAL{1}; // While there is a use.
constexpr std::chrono::milliseconds REST{200};
constexpr int32_t UNKNOWN_USER = -1;
constexpr int REST_FACTOR = 20; // A rest is this many times as long as the look before it, if that is longer.
constexpr uint32_t USE_NOTICES = IN_OPEN | IN_CLOSE | IN_ATTRIB | IN_MOVE_SELF; // A removal is IN_ATTRIB.
// A device's file may be made first, and made readable then.
constexpr uint32_t FOLDER_NOTICES = IN_CREATE | IN_MOVED_TO | IN_ATTRIB | IN_ONLYDIR;

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

FileWatch::FileWatch(const std::vector<SensorFile>& files, Testing::InMemoryService& service) : service_(service)
{
    if (files.empty()) {
        return;
    }
    notices_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    timer_ = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);
    fd_ = epoll_create1(EPOLL_CLOEXEC);
    for (const int fd : {notices_, timer_}) {
        epoll_event event{EPOLLIN, {}};
        epoll_ctl(fd_, EPOLL_CTL_ADD, fd, &event);
    }
    for (const auto& file : files) {
        watched_.push_back({file, std::nullopt, {}, false});
        // The folder's notices say when a file comes, or comes back.
        const bool isFollowed = fd_ >= 0 && timer_ >= 0 && notices_ >= 0 &&
                                inotify_add_watch(notices_, FolderOf(file.path).c_str(), FOLDER_NOTICES) >= 0;
        int error = isFollowed ? Follow(watched_.back()) : errno;
        if (isFollowed && error == ENOENT) {
            Complain(file.path + " is not there yet: it is waited for");
            error = 0;
        }
        if (error != 0) {
            CloseAll();
            throw std::system_error(error, std::generic_category(), "cannot watch " + file.path);
        }
    }
    Look();
}

FileWatch::~FileWatch() { CloseAll(); }

int FileWatch::GetFd() const { return fd_; }

void FileWatch::Look()
{
    uint64_t expirations = 0;
    const bool hasExpired = read(timer_, &expirations, sizeof(expirations)) > 0;
    if (isResting_ && hasExpired && !isInDoubt_) {
        isResting_ = false;
        WakeAfter(uses_.empty() ? std::chrono::nanoseconds(0) : LOOK_INTERVAL, true);
        return;
    }
    const auto begin = Clock::now();
    ReadNotices();
    FollowAll();
    Report(FindUses());
    isResting_ = true;
    WakeAfter(std::max<Clock::duration>(REST, (Clock::now() - begin) * REST_FACTOR), false);
}

void FileWatch::CloseAll()
{
    for (const int fd : {notices_, timer_, fd_}) {
        if (fd >= 0) {
            close(fd);
        }
    }
}

void FileWatch::WakeAfter(std::chrono::nanoseconds time, bool takesNotices)
{
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    const itimerspec due{{}, {seconds.count(), static_cast<long>((time - seconds).count())}};
    timerfd_settime(timer_, 0, &due, nullptr);
    epoll_event event{takesNotices ? EPOLLIN : 0U, {}};
    epoll_ctl(fd_, EPOLL_CTL_MOD, notices_, &event);
}

void FileWatch::ReadNotices()
{
    std::array<char, 65536> bytes{};
    ssize_t size = 0;
    while ((size = read(notices_, bytes.data(), bytes.size())) > 0) {
        inotify_event notice{};
        for (size_t at = 0; at < static_cast<size_t>(size); at += sizeof(notice) + notice.len) {
            std::memcpy(&notice, &bytes[at], sizeof(notice));
            ForEachInode([watch = notice.wd, mask = notice.mask](const Watched& /* watched */, Inode& inode) {
                if ((mask & IN_Q_OVERFLOW) != 0) {
                    inode.isOpen = false; // Notices are lost.
                } else if (inode.watch == watch) {
                    inode.number = (mask & IN_IGNORED) != 0 ? 0 : inode.number;
                    inode.isOpen = (mask & IN_OPEN) != 0 || (inode.isOpen && (mask & IN_CLOSE) == 0);
                }
            });
        }
    }
}

template <typename Visit>
void FileWatch::ForEachInode(const Visit& visit)
{
    for (auto& watched : watched_) {
        if (watched.current) {
            visit(watched, *watched.current);
        }
        for (auto& inode : watched.former) {
            visit(watched, inode);
        }
    }
}

void FileWatch::FollowAll()
{
    for (auto& watched : watched_) {
        const bool wasThere = watched.current.has_value();
        const size_t formerCount = watched.former.size();
        const int error = Follow(watched);
        if (wasThere && error != 0) {
            Complain(watched.file.path + " is gone: " + std::strerror(error));
        } else if (watched.former.size() != formerCount) {
            Complain(watched.file.path + " was replaced");
        } else if (!wasThere && error == 0) {
            Complain(watched.file.path + (watched.hasBeenThere ? " is back" : " is there now"));
        }
        watched.hasBeenThere |= watched.current.has_value();
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
    const int watch =
        file >= 0 && fstat(file, &found) == 0 ? inotify_add_watch(notices_, link.c_str(), USE_NOTICES) : -1;
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
    std::set<Use> uses;
    ForEachInode([](const Watched& /* watched */, Inode& inode) { inode.isSeen = false; });
    ForEachProcess([&](pid_t process) {
        std::set<PrivacySensorType> sensors;
        ForEachOpenFile(process, [&](dev_t device, ino_t number) {
            ForEachInode([&](const Watched& watched, Inode& inode) {
                if (inode.device == device && inode.number == number) {
                    inode.isSeen = true;
                    sensors.insert(watched.file.sensor);
                }
            });
        });
        const auto owner = sensors.empty() ? std::nullopt : FindOwner(process);
        for (const auto sensor : sensors) {
            if (owner) {
                uses.emplace(sensor, owner->name, owner->uid);
            }
        }
    });
    isInDoubt_ = false;
    ForEachInode([&](const Watched& watched, Inode& inode) {
        const bool isUnseen = inode.isOpen && !inode.isSeen;
        // Seen the second time only: a process that opens a file has it a moment after the notice.
        if (isUnseen && inode.isUnseen) {
            uses.emplace(watched.file.sensor, UNKNOWN_PROCESS, UNKNOWN_USER);
        }
        isInDoubt_ |= isUnseen && !inode.isUnseen;
        inode.isUnseen = isUnseen;
    });
    for (auto& watched : watched_) {
        auto& former = watched.former;
        former.erase(std::remove_if(former.begin(), former.end(),
                         [](const Inode& inode) { return !inode.isSeen && !inode.isOpen; }),
            former.end());
    }
    return uses;
}

void FileWatch::Report(const std::set<Use>& uses)
{
    // Begins come first: where one process hands the sensor on to another, its indicator stays on.
    for (const auto& use : uses) {
        const auto& [sensor, name, uid] = use;
        // Refused if another source has reported it already, or there is no room: it is tried again at the next look.
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
