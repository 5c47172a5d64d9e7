// SPDX-License-Identifier: Apache-2.0
#include "ipc_skeleton.h"

#include <unistd.h>

#include "peer.h"

namespace OHOS {

uid_t IPCSkeleton::GetCallingUid()
{
    const Transport::Peer* caller = Transport::Peer::calling;
    return caller != nullptr ? caller->uid : getuid();
}

pid_t IPCSkeleton::GetCallingPid()
{
    const Transport::Peer* caller = Transport::Peer::calling;
    return caller != nullptr ? caller->identity.pid : getpid();
}

} // namespace OHOS
