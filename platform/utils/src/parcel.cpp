// SPDX-License-Identifier: Apache-2.0
#include "parcel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace OHOS {
namespace {

constexpr size_t ALIGNMENT = 4;
constexpr size_t FIRST_CAPACITY = 256;

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "items are copied as the host keeps them");

size_t PaddingOf(size_t size)
{
    return (ALIGNMENT - size % ALIGNMENT) % ALIGNMENT;
}

} // namespace

Parcel::~Parcel()
{
    std::free(data_);
}

size_t Parcel::GetDataSize() const
{
    return dataSize_;
}

size_t Parcel::GetReadableBytes() const
{
    return dataSize_ - readPosition_;
}

size_t Parcel::GetReadPosition() const
{
    return readPosition_;
}

size_t Parcel::GetMaxCapacity() const
{
    return maxCapacity_;
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

uintptr_t Parcel::GetData() const
{
    return reinterpret_cast<uintptr_t>(data_);
}

uint8_t* Parcel::Extend(size_t size)
{
    const size_t padding = PaddingOf(size);
    const size_t room = maxCapacity_ - dataSize_;
    if (size > room || padding > room - size) {
        return nullptr;
    }
    const size_t end = dataSize_ + size + padding;
    if (end > capacity_ || data_ == nullptr) {
        // Doubling keeps the copying linear. The allocator holds less than half the address space: no overflow.
        const size_t grown = std::min(std::max({end, capacity_ * 2, FIRST_CAPACITY}), maxCapacity_);
        void* data = std::realloc(data_, grown);
        if (data == nullptr) {
            return nullptr;
        }
        data_ = static_cast<uint8_t*>(data);
        capacity_ = grown;
    }
    uint8_t* begin = data_ + dataSize_;
    std::memset(begin + size, 0, padding);
    dataSize_ = end;
    return begin;
}

void Parcel::Truncate(size_t size)
{
    dataSize_ = std::min(dataSize_, size);
    readPosition_ = std::min(readPosition_, dataSize_);
}

const uint8_t* Parcel::Take(size_t size)
{
    const size_t readable = GetReadableBytes();
    if (size > readable) {
        return nullptr;
    }
    const uint8_t* begin = data_ + readPosition_;
    readPosition_ += size + std::min(PaddingOf(size), readable - size);
    return begin;
}

bool Parcel::Skip(size_t size)
{
    return Take(size) != nullptr;
}

template <typename T>
bool Parcel::Write(T value)
{
    uint8_t* begin = Extend(sizeof(value));
    if (begin == nullptr) {
        return false;
    }
    std::memcpy(begin, &value, sizeof(value));
    return true;
}

template <typename T>
bool Parcel::Read(T& value)
{
    const uint8_t* begin = Take(sizeof(value));
    if (begin == nullptr) {
        return false;
    }
    std::memcpy(&value, begin, sizeof(value));
    return true;
}

template <typename Char>
bool Parcel::WriteText(const std::basic_string<Char>& text)
{
    if (text.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
        return false;
    }
    const auto length = static_cast<int32_t>(text.size());
    const size_t textSize = (text.size() + 1) * sizeof(Char);
    uint8_t* begin = Extend(sizeof(length) + textSize);
    if (begin == nullptr) {
        return false;
    }
    std::memcpy(begin, &length, sizeof(length));
    std::memcpy(begin + sizeof(length), text.c_str(), textSize);
    return true;
}

template <typename Char>
bool Parcel::ReadText(std::basic_string<Char>& text)
{
    text.clear();
    const size_t start = readPosition_;
    int32_t length = 0;
    if (Read(length) && length >= 0) {
        const size_t textSize = static_cast<size_t>(length) * sizeof(Char);
        const uint8_t* begin = Take(textSize + sizeof(Char));
        constexpr Char END = 0;
        if (begin != nullptr && std::memcmp(begin + textSize, &END, sizeof(END)) == 0) {
            text.resize(static_cast<size_t>(length));
            std::memcpy(text.data(), begin, textSize);
            return true;
        }
    }
    readPosition_ = start;
    return false;
}

// The three functions of one scalar item: its name, its type in memory, its type in the parcel.
#define PARCEL_SCALAR(Name, Type, Stored)                                                                              \
    bool Parcel::Write##Name(Type value)                                                                               \
    {                                                                                                                  \
        return Write(static_cast<Stored>(value));                                                                      \
    }                                                                                                                  \
    bool Parcel::Read##Name(Type& value) /* NOLINT(bugprone-macro-parentheses): a type takes none */                   \
    {                                                                                                                  \
        Stored stored{};                                                                                               \
        if (!Read(stored)) {                                                                                           \
            return false;                                                                                              \
        }                                                                                                              \
        value = static_cast<Type>(stored);                                                                             \
        return true;                                                                                                   \
    }                                                                                                                  \
    Type Parcel::Read##Name()                                                                                          \
    {                                                                                                                  \
        Type value{};                                                                                                  \
        Read##Name(value);                                                                                             \
        return value;                                                                                                  \
    }

PARCEL_SCALAR(Bool, bool, int32_t)
PARCEL_SCALAR(Int32, int32_t, int32_t)
PARCEL_SCALAR(Uint32, uint32_t, uint32_t)
PARCEL_SCALAR(Int64, int64_t, int64_t)
PARCEL_SCALAR(Uint64, uint64_t, uint64_t)
PARCEL_SCALAR(Float, float, float)
PARCEL_SCALAR(Double, double, double)

#undef PARCEL_SCALAR

bool Parcel::WriteString(const std::string& value)
{
    return WriteText(value);
}

bool Parcel::WriteString16(const std::u16string& value)
{
    return WriteText(value);
}

bool Parcel::ReadString(std::string& value)
{
    return ReadText(value);
}

bool Parcel::ReadString16(std::u16string& value)
{
    return ReadText(value);
}

std::string Parcel::ReadString()
{
    std::string value;
    ReadText(value);
    return value;
}

std::u16string Parcel::ReadString16()
{
    std::u16string value;
    ReadText(value);
    return value;
}

bool Parcel::WriteParcelable(const Parcelable* object)
{
    if (object == nullptr) {
        return WriteInt32(0);
    }
    return WriteInt32(1) && object->Marshalling(*this);
}

bool Parcel::WriteStrongParcelable(const sptr<Parcelable>& object)
{
    return WriteParcelable(object.GetRefPtr());
}

bool Parcel::WriteBuffer(const void* data, size_t size)
{
    uint8_t* begin = data != nullptr ? Extend(size) : nullptr;
    if (begin == nullptr) {
        return false;
    }
    std::memcpy(begin, data, size);
    return true;
}

const uint8_t* Parcel::ReadBuffer(size_t size)
{
    return Take(size);
}

} // namespace OHOS
