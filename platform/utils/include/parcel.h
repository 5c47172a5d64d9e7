// SPDX-License-Identifier: Apache-2.0
#ifndef PARCEL_H
#define PARCEL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "refbase.h"

namespace OHOS {

class Parcel;

/**
 * Something that a parcel can carry. To be read back, a class also has a static `T* Unmarshalling(Parcel&)`, which
 * returns a new object that the caller owns, or null.
 */
class Parcelable : public virtual RefBase {
public:
    ~Parcelable() override = default; // Declared, since on a device the virtual functions begin with it.

    /** Appends the object to `parcel`. False if a write failed; what was written before it stays. */
    virtual bool Marshalling(Parcel& parcel) const = 0;
};

/**
 * A growing run of bytes with a read cursor. Items are little-endian and padded to 4 bytes. Not thread-safe.
 *
 * A write fails past the maximum capacity, without memory, and in a parcel that was received. Nothing is written then,
 * but the length of a string may be, and parts of a parcelable. `bool ReadX(X&)` fails where the item is cut, malformed
 * or a remote object's bytes. Cursor and value then stay as they were, but a string is emptied, and a number read from
 * a remote object moves the cursor. `X ReadX()` gives 0, false or an empty string instead. Padding that is missing at
 * the very end is forgiven. A bool is written as 0 or 1, and read as true from anything but 0.
 */
class Parcel {
public:
    // cppcheck-suppress uninitMemberVar; first_ is written before it is read.
    Parcel() = default;
    Parcel(const Parcel&) = delete;
    Parcel& operator=(const Parcel&) = delete;
    virtual ~Parcel();

    /** Bytes written, padding included. */
    size_t GetDataSize() const { return dataSize_; }

    /** Bytes from the read cursor to the end, and from the start to it. */
    size_t GetReadableBytes() const { return dataSize_ - readPosition_; }
    size_t GetReadPosition() const { return readPosition_; }

    /** Bytes that GetDataSize() may reach: 204800 at first. */
    size_t GetMaxCapacity() const { return maxCapacity_; }

    /** Raises the maximum capacity. False, and no change, unless `maxCapacity` is greater. */
    bool SetMaxCapacity(size_t maxCapacity);

    /** Sets the read cursor. False, and no change, for a position past the end. */
    bool RewindRead(size_t position);

    /** Address of the bytes, which belong to the parcel and may move at the next write; 0 before the first one. */
    uintptr_t GetData() const { return reinterpret_cast<uintptr_t>(data_); }

    bool WriteBool(bool value) { return WriteInt32(value ? 1 : 0); }
    bool WriteInt32(int32_t value);
    bool WriteUint32(uint32_t value) { return Write(value); }
    bool WriteInt64(int64_t value) { return Write(value); }
    bool WriteUint64(uint64_t value) { return Write(value); }
    bool WriteFloat(float value) { return Write(value); }
    bool WriteDouble(double value) { return Write(value); }

    /** The length as int32, the characters, a NUL. False, too, for more than INT32_MAX characters. */
    bool WriteString(const std::string& value) { return Write(value); }
    bool WriteString16(const std::u16string& value) { return Write(value); }

    /** An int32 1 and the object's Marshalling; an int32 0 for null, which in the second form never fails. */
    bool WriteParcelable(const Parcelable* object);
    bool WriteStrongParcelable(const sptr<Parcelable>& object);

    /** Copies `size` bytes, without a length before them. False for null or no bytes. */
    bool WriteBuffer(const void* data, size_t size)
    {
        uint8_t* begin = data != nullptr && size > 0 ? Extend(size) : nullptr;
        if (begin == nullptr) {
            return false;
        }
        std::memcpy(begin, data, size);
        return true;
    }

    bool ReadBool(bool& value);
    bool ReadInt32(int32_t& value) { return Read(value); }
    bool ReadUint32(uint32_t& value) { return Read(value); }
    bool ReadInt64(int64_t& value) { return Read(value); }
    bool ReadUint64(uint64_t& value) { return Read(value); }
    bool ReadFloat(float& value) { return Read(value); }
    bool ReadDouble(double& value) { return Read(value); }

    /** After a length below 0 or of INT32_MAX, which stands for no string, the cursor stays past the length. */
    bool ReadString(std::string& value) { return Read(value); }
    bool ReadString16(std::u16string& value) { return Read(value); }

    bool ReadBool() { return ReadInt32() != 0; }
    int32_t ReadInt32() { return ReadOrEmpty<int32_t>(); }
    uint32_t ReadUint32() { return ReadOrEmpty<uint32_t>(); }
    int64_t ReadInt64() { return ReadOrEmpty<int64_t>(); }
    uint64_t ReadUint64() { return ReadOrEmpty<uint64_t>(); }
    float ReadFloat() { return ReadOrEmpty<float>(); }
    double ReadDouble() { return ReadOrEmpty<double>(); }
    std::string ReadString() { return ReadOrEmpty<std::string>(); }
    std::u16string ReadString16() { return ReadOrEmpty<std::u16string>(); }

    /** A new object that the caller owns; null if null was written, or if the flag or the object is malformed. */
    template <typename T>
    T* ReadParcelable()
    {
        return ReadInt32() != 0 ? T::Unmarshalling(*this) : nullptr;
    }

    template <typename T>
    sptr<T> ReadStrongParcelable()
    {
        return sptr<T>(ReadParcelable<T>());
    }

    /** The next `size` bytes without their padding, to be used before the next write; null if there are fewer. */
    const uint8_t* ReadBuffer(size_t size);

protected:
    /** Appends `size` bytes, at least 1, which the caller fills in at once, and padding. Null if a write fails. */
    uint8_t* Extend(size_t size)
    {
        const size_t padding = PaddingOf(size);
        const size_t room = capacity_ - dataSize_;
        if ((size > room || padding > room - size) && !Grow(size, padding)) {
            return nullptr;
        }
        uint8_t* begin = data_ + dataSize_;
        std::memset(begin + size, 0, padding);
        dataSize_ += size + padding;
        return begin;
    }

    /** Takes back what was written after the first `size` bytes. Not for a parcel that was received or read beyond. */
    void Truncate(size_t size) { dataSize_ = size; }

    /** Ends writing: what came from outside is only read. */
    void SetReceived()
    {
        received_ = true;
        capacity_ = dataSize_; // The next write is to ask for more, and not to get it.
    }

    /** Begins to ask HasObject. */
    void SetHasObjects() { hasObjects_ = true; }

    /** The next `size` bytes: the read cursor moves past them and their padding. Null if there are fewer. */
    const uint8_t* Take(size_t size)
    {
        const size_t readable = GetReadableBytes();
        if (size > readable) {
            return nullptr;
        }
        const uint8_t* begin = data_ + readPosition_;
        readPosition_ += size + std::min(PaddingOf(size), readable - size);
        return begin;
    }

    /** True if any byte from `begin` up to `end` is a remote object's; a plain parcel has none. */
    virtual bool HasObject(size_t /* begin */, size_t /* end */) const { return false; }

private:
    static constexpr size_t ALIGNMENT = 4;

    static size_t PaddingOf(size_t size) { return -size % ALIGNMENT; }

    bool Grow(size_t size, size_t padding);
    template <typename T>
    bool Write(T value)
    {
        return WriteBuffer(&value, sizeof(value));
    }
    template <typename Char>
    bool Write(const std::basic_string<Char>& text);
    template <typename T>
    bool Read(T& value)
    {
        const uint8_t* begin = Take(sizeof(value));
        if (begin == nullptr || (hasObjects_ && HasObject(readPosition_ - sizeof(value), readPosition_))) {
            return false;
        }
        std::memcpy(&value, begin, sizeof(value));
        return true;
    }
    template <typename Char>
    bool Read(std::basic_string<Char>& text);
    template <typename T>
    T ReadOrEmpty()
    {
        T value{};
        Read(value);
        return value;
    }

    uint8_t* data_ = nullptr; // Null, first_, or allocated.
    size_t dataSize_ = 0;
    size_t capacity_ = 0; // Bytes that are there to be written to at data_.
    size_t maxCapacity_ = 204800;
    size_t readPosition_ = 0;
    bool received_ = false;
    bool hasObjects_ = false;
    alignas(ALIGNMENT) uint8_t first_[256]; // Most requests and replies fit in here.
};

} // namespace OHOS

#endif // PARCEL_H
