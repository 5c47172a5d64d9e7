// SPDX-License-Identifier: Apache-2.0
#include "transport_error.h"

#include <cerrno>

namespace OHOS::Transport {

int ErrorOf(int systemError)
{
    switch (systemError) {
    case EAGAIN:
        return BUFFER_FULL;
    case EMSGSIZE:
        return TOO_LARGE;
    case EMFILE:
    case ENFILE:
        return NO_DESCRIPTOR;
    case ENOMEM:
    case ENOBUFS:
        return NO_MEMORY;
    default:
        return DEAD;
    }
}

} // namespace OHOS::Transport
