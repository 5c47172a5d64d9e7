// SPDX-License-Identifier: Apache-2.0
#ifndef FILE_WATCH_H
#define FILE_WATCH_H

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "indicator_service.h"
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
 * Sensor use as the use of files, told to a service: a sensor is in use while a process has its file open. The
 * application is the process's name, with its user; how often a process opens a file, or how many processes of one name
 * and user do, makes no difference.
 *
 * The kernel's notices of opening and closing say when to look, and /proc says who has what open. So a use that is over
 * before the look goes unseen, and so does one by a process that this user may not look into. While there is a use,
 * looks at intervals see what comes without a notice: a new name, or a descriptor handed on.
 *
 * A file may be removed or replaced, which is said on stderr: whoever has the old one open still uses the sensor, and a
 * new one under the same path is watched in its place. Not thread-safe.
 */
class FileWatch {
public:
    /**
     * Begins the uses that there are. Throws std::system_error, which names the path, if a file cannot be watched.
     * `service` is not owned.
     */
    FileWatch(const std::vector<SensorFile>& files, IndicatorService& service);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

    /** A descriptor that can be read when it is time to look; negative if there is nothing to watch. */
    int GetFd() const;

    /** Milliseconds until it is time anyway; negative if it is not. */
    int GetTimeout() const;

    /** Tells the service what has changed. Waits for nothing. */
    void Look();

private:
    using Use = std::tuple<PrivacySensorType, std::string, int32_t>; // As in SensorUse.

    struct Inode {
        int watch;
        dev_t device;
        ino_t number; // 0 once the file is no more: another one may get its number.
    };

    struct Watched {
        SensorFile file;
        std::optional<Inode> current; // Under the path, if there is a file.
        std::vector<Inode> former;    // Not any more, but some process may have it open.
    };

    void ReadNotices();

    /** Takes what is under the path now for current, if it is not yet. 0, or the error. */
    int Follow(Watched& watched) const;

    /** The uses that there are. Forgets the former files that nobody has open. */
    std::set<Use> FindUses();

    void Tell(const std::set<Use>& uses);

    IndicatorService& service_;
    std::vector<Watched> watched_;
    int fd_ = -1;
    std::set<Use> uses_; // As the service knows them.
};

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // FILE_WATCH_H
