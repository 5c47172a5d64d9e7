// SPDX-License-Identifier: Apache-2.0
#ifndef IPC_TYPES_H
#define IPC_TYPES_H

namespace OHOS {

/** What SendRequest and the managers return by themselves. A target's OnRemoteRequest may return the same. */
enum {
    ERR_NONE = 0,
    ERR_PERMISSION_DENIED = 1,
    ERR_NULL_OBJECT = 7,
    ERR_NO_MEMORY = 12,               // For a message, here or at the peer.
    ERR_INVALID_VALUE = 22,           // A null object, or a number out of range.
    ERR_DEAD_OBJECT = 32,             // The object's process is gone, or this process is at its end or a fork's child.
    ERR_TIMED_OUT = 110,              // The request may have been, or may yet be, served.
    IPC_PROXY_INVALID_CODE_ERR = 204, // The request code is too great to be sent.
    IPC_STUB_UNKNOW_TRANS_ERR = 305,  // IPCObjectStub has no such request.
};

} // namespace OHOS

#endif // IPC_TYPES_H
