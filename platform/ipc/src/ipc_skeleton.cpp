// SPDX-License-Identifier: Apache-2.0
#include "ipc_skeleton.h"

#include <unistd.h>

#include "peer.h"

namespace OHOS {

uid_t IPCSkeleton::GetCallingUid()
{
    const Transport::Peer* caller = Transport::Peer::Calling();
    return caller != nullptr ? caller->Uid() : getuid();
}

pid_t IPCSkeleton::GetCallingPid()
{
    const Transport::Peer* caller = Transport::Peer::Calling();
    return caller != nullptr ? caller->Pid() : getpid();
}

} // namespace OHOS
