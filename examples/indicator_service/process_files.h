// SPDX-License-Identifier: Apache-2.0
#ifndef PROCESS_FILES_H
#define PROCESS_FILES_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples {

/** Who a process is, as far as this user may know. */
struct ProcessOwner {
    std::string name = "unknown"; // Its characters can be shown.
    int32_t uid = -1;             // The real user's.
};

/** Calls `visit` for each running process. */
void ForEachProcess(const std::function<void(pid_t process)>& visit);

/** Calls `visit` for each file that a process has open; none of a process that this user may not look into. */
void ForEachOpenFile(pid_t process, const std::function<void(dev_t device, ino_t inode)>& visit);

/** Nothing if the process has ended. */
std::optional<ProcessOwner> FindOwner(pid_t process);

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Examples

#endif // PROCESS_FILES_H
