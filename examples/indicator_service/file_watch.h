// SPDX-License-Identifier: Apache-2.0
#ifndef FILE_WATCH_H
#define FILE_WATCH_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "in_memory_service.h"
#include "privacy_sensor_type.h"

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** A file that stands for a sensor. */
struct SensorFile {
    PrivacySensorType sensor;
    std::string path;
};

/** Reads `SENSOR=PATH`. Throws ParseError. */
SensorFile ParseSensorFile(const std::string& text);

/**
 * Sensor use as the use of files, reported to a service: a sensor is in use while a process has its file open. The
 * application is the process's, as FindOwner says, with its user; how often a process opens a file, or how many
 * processes of one application and user do, makes no difference.
 *
 * The kernel's notices of opening and closing say when to look, and /proc says which process has what open. There is a
 * REST of 0.2 s between two looks, or longer where looking takes long, so that many short uses cost little: a use of
 * 0.2 s is seen, a shorter one if it is open during a look. While there is a use, looks at intervals see what comes
 * without a notice: another program in the same process, or a descriptor handed on. A file that has been opened and not
 * closed since, but that no process can be seen to have open, is used by UNKNOWN_PROCESS: a process of another user, or
 * a descriptor on its way between two processes.
 *
 * A file may be absent, be removed or be replaced, with a message on standard error: a process that has the old one
 * open still uses the sensor, and a new one under the same path is watched in its place. Not thread-safe.
 */
class FileWatch {
public:
    /**
     * Begins the uses that there are. Throws std::system_error, which names the path, if a file that there is, or the
     * folder of one, cannot be watched. `service` is not owned.
     */
    FileWatch(const std::vector<SensorFile>& files, Testing::InMemoryService& service);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    /** A descriptor that can be read when it is time to look; negative if there is nothing to watch. */
    int GetFd() const;

    /** To be called when the descriptor can be read: reports to the service what has changed. Waits for nothing. */
    void Look();

private:
    using Use = std::tuple<PrivacySensorType, std::string, int32_t>; // As in SensorUse.

    struct Inode {
        int watch;
        dev_t device;
        ino_t number;          // 0 once the file is deleted: another one may get its number.
        bool isOpen = false;   // The last notice was of an opening.
        bool isSeen = false;   // At the last look a process had it open,
        bool isUnseen = false; // or none, though it was open.
    };

    struct Watched {
        SensorFile file;
        std::optional<Inode> current; // Under the path, if there is a file.
        std::vector<Inode> former;    // Not any more, but some process may have it open.
        bool hasBeenThere = false;
    };

    void ReadNotices();

    /** Calls `visit` with each file and each of its inodes. */
    template <typename Visit>
    void ForEachInode(const Visit& visit);

    /** Makes the file that is under the path now the current one, if it is another one. Returns 0 or the error. */
    int Follow(Watched& watched) const;

    /** Follows all files, and prints a message for each that is gone, replaced or there again. */
    void FollowAll();

    /** The uses that there are. Forgets the former files that nobody has open. */
    std::set<Use> FindUses();

    void Report(const std::set<Use>& uses);

    /** Makes the descriptor readable after `time`, 0 for never; if `takesNotices`, also when there is a notice. */
    void WakeAfter(std::chrono::nanoseconds time, bool takesNotices);

    void CloseAll();

    Testing::InMemoryService& service_;
    std::vector<Watched> watched_;
    int notices_ = -1;
    int timer_ = -1;
    int fd_ = -1; // An epoll instance with these two.
    bool isResting_ = false;
    bool isInDoubt_ = false; // A file is open, but by no process that was seen: look again.
    std::set<Use> uses_;     // Those that the service has been given.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // FILE_WATCH_H
