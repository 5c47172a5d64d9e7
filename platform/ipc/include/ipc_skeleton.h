// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_SKELETON_H
#define IPC_SKELETON_H

#include <sys/types.h>

namespace OHOS {

/** Who is calling: the caller while a request is being served on this thread, this process otherwise. */
class IPCSkeleton {
public:
    static uid_t GetCallingUid();
    static pid_t GetCallingPid();
};

} // namespace OHOS

#endif // IPC_SKELETON_H
