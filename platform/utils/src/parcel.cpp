// SPDX-License-Identifier: Apache-2.0
#include "parcel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace OHOS {
namespace {

// A large parcel gets this much at once. Memory that nobody touches costs nothing, and glibc's allocator keeps twice
// the largest block that it has been given back; else it returns the memory of each large message to the kernel.
constexpr size_t LARGE = 64 << 10;
constexpr size_t SPACIOUS = 512 << 10;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "items are copied as the host keeps them");

} // namespace

Parcel::~Parcel()
{
    if (data_ != first_) {
        std::free(data_);
    }
}

bool Parcel::SetMaxCapacity(size_t maxCapacity)
{
    if (maxCapacity <= maxCapacity_) {
        return false;
    }
    maxCapacity_ = maxCapacity;
    return true;
}

bool Parcel::RewindRead(size_t position)
{
    if (position > dataSize_) {
        return false;
    }
    readPosition_ = position;
    return true;
}

// Makes room for as many bytes. False where they would be too many, without memory, and in a parcel that was received.
bool Parcel::Grow(size_t size, size_t padding)
{
    const size_t room = maxCapacity_ - dataSize_;
    if (received_ || size > room || padding > room - size) {
        return false;
    }
    const size_t end = dataSize_ + size + padding;
    if (end <= sizeof(first_)) {
        data_ = first_;
        capacity_ = sizeof(first_);
        return true;
    }
    // Doubling keeps the copying linear. The allocator holds less than half the address space: no overflow.
    size_t grown = std::max(end, capacity_ * 2);
    grown = grown > LARGE ? std::max(grown, SPACIOUS) : grown;
    void* data = std::realloc(data_ != first_ ? data_ : nullptr, grown);
    if (data == nullptr) {
        return false;
    }
    if (data_ == first_) {
        std::memcpy(data, first_, dataSize_);
    }
    data_ = static_cast<uint8_t*>(data);
    capacity_ = std::min(grown, maxCapacity_);
    return true;
}

template <typename Char>
bool Parcel::Write(const std::basic_string<Char>& text)
{
    if (text.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
        return false;
    }
    return Write(static_cast<int32_t>(text.size())) && WriteBuffer(text.c_str(), (text.size() + 1) * sizeof(Char));
}

template <typename Char>
bool Parcel::Read(std::basic_string<Char>& text)
{
    text.clear();
    const size_t start = readPosition_;
    int32_t length = 0;
    if (Read(length)) {
        if (length < 0 || length == std::numeric_limits<int32_t>::max()) {
            return false;
        }
        const size_t textStart = readPosition_;
        const size_t textSize = static_cast<size_t>(length) * sizeof(Char);
        const uint8_t* begin = Take(textSize + sizeof(Char));
        constexpr Char END = 0;
        if (begin != nullptr && !(hasObjects_ && HasObject(textStart, textStart + textSize + sizeof(END))) &&
            std::memcmp(begin + textSize, &END, sizeof(END)) == 0) {
            if (reinterpret_cast<uintptr_t>(begin) % alignof(Char) == 0) {
                text.assign(reinterpret_cast<const Char*>(begin), static_cast<size_t>(length));
            } else { // After an odd position was set.
                text.resize(static_cast<size_t>(length));
                std::memcpy(text.data(), begin, textSize);
            }
            return true;
        }
    }
    readPosition_ = start;
    return false;
}

template bool Parcel::Write(const std::string& text);
template bool Parcel::Write(const std::u16string& text);
template bool Parcel::Read(std::string& text);
template bool Parcel::Read(std::u16string& text);

bool Parcel::WriteInt32(int32_t value) { return Write(value); }

bool Parcel::ReadBool(bool& value)
{
    int32_t number = 0;
    if (!Read(number)) {
        return false;
    }
    value = number != 0;
    return true;
}

bool Parcel::WriteParcelable(const Parcelable* object)
{
    return object != nullptr ? WriteInt32(1) && object->Marshalling(*this) : WriteInt32(0);
}

bool Parcel::WriteStrongParcelable(const sptr<Parcelable>& object)
{
    return WriteParcelable(object.GetRefPtr()) || object == nullptr;
}

const uint8_t* Parcel::ReadBuffer(size_t size)
{
    if (size > GetReadableBytes() || (hasObjects_ && HasObject(readPosition_, readPosition_ + size))) {
        return nullptr;
    }
    const uint8_t* begin = data_ + readPosition_;
    readPosition_ += size;
    return begin;
}

} // namespace OHOS
