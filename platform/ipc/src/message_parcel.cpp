// SPDX-License-Identifier: Apache-2.0
#include "message_parcel.h"

#include <algorithm>
#include <cstring>

#include "message.h"

namespace OHOS {

// By value, as on a device.
// cppcheck-suppress passedByValue
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool MessageParcel::WriteInterfaceToken(std::u16string token)
{
    constexpr int32_t POLICY = 0x100;
    constexpr int32_t WORK_SOURCE = 0;
    const size_t start = GetDataSize();
    if (!WriteInt32(POLICY) || !WriteInt32(WORK_SOURCE)) {
        Truncate(start);
        return false;
    }
    return WriteString16(token);
}

std::u16string MessageParcel::ReadInterfaceToken()
{
    ReadInt32();
    ReadInt32();
    return ReadString16();
}

bool MessageParcel::WriteRemoteObject(const sptr<IRemoteObject>& object)
{
    if (object == nullptr) {
        return false;
    }
    const size_t position = GetDataSize();
    uint8_t* bytes = Extend(Transport::OBJECT_SIZE);
    if (bytes == nullptr) {
        return false;
    }
    std::memset(bytes, 0, Transport::OBJECT_SIZE);
    objects_.push_back({position, object});
    SetHasObjects();
    return true;
}

sptr<IRemoteObject> MessageParcel::ReadRemoteObject()
{
    const size_t position = GetReadPosition();
    const auto found = std::lower_bound(objects_.begin(), objects_.end(), position,
        [](const Entry& entry, size_t wanted) { return entry.position < wanted; });
    if (found == objects_.end() || found->position != position) {
        return nullptr;
    }
    return Take(Transport::OBJECT_SIZE) != nullptr ? found->object : nullptr;
}

bool MessageParcel::HasObject(size_t begin, size_t end) const
{
    const auto next = std::partition_point(objects_.begin(), objects_.end(),
        [begin](const Entry& entry) { return entry.position + Transport::OBJECT_SIZE <= begin; });
    return next != objects_.end() && next->position < end;
}

} // namespace OHOS
