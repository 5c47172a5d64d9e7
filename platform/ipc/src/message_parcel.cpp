// SPDX-License-Identifier: Apache-2.0
#include "message_parcel.h"

#include <cstring>
#include <iterator>

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
    objects_.emplace(position, object);
    SetHasObjects();
    return true;
}

sptr<IRemoteObject> MessageParcel::ReadRemoteObject()
{
    const auto found = objects_.find(GetReadPosition());
    return found != objects_.end() && Take(Transport::OBJECT_SIZE) != nullptr ? found->second : nullptr;
}

bool MessageParcel::HasObject(size_t begin, size_t end) const
{
    const auto next = objects_.lower_bound(end);
    return next != objects_.begin() && std::prev(next)->first + Transport::OBJECT_SIZE > begin;
}

} // namespace OHOS
