// SPDX-License-Identifier: Apache-2.0
#ifndef PROCESS_FILES_H
#define PROCESS_FILES_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** The application that a process belongs to: the desktop's, if a desktop has started it, else its program. */
struct ProcessOwner {
    std::string name; // Printable.
    int32_t uid = -1; // The real user's.
};

/** The name where no process is known, or none that this user may look into. */
inline constexpr const char* UNKNOWN_PROCESS = "unknown process";

/** Calls `visit` for each running process. */
void ForEachProcess(const std::function<void(pid_t process)>& visit);

/** Calls `visit` for each file that a process has open; none of a process that this user may not look into. */
void ForEachOpenFile(pid_t process, const std::function<void(dev_t device, ino_t inode)>& visit);

/**
 * Whose process it is now: it may have run another program before. A process with a controlling terminal was not
 * started by the desktop, but from a shell in one of its windows: it is named after its program. Nothing if the process
 * has ended.
 */
std::optional<ProcessOwner> FindOwner(pid_t process);

/**
 * The application of a process by its /proc/PID/cgroup: desktops start each application in a control group named
 * `app[-LAUNCHER]-APPLICATION-RANDOM.scope` or `app[-LAUNCHER]-APPLICATION[@RANDOM].service`, in which bytes may be
 * written as `\xNN`. Empty if there is no such group.
 */
std::string FindDesktopApplication(const std::string& cgroups);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PROCESS_FILES_H
