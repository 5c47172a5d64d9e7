// SPDX-License-Identifier: Apache-2.0
#ifndef LAYOUT_H
#define LAYOUT_H

#include <utility>

#include "input.h"

// A layout names a parcel's items, a letter each:
//   i  4 bytes, l  8 bytes, s  string, u  string16, L  int32 count and that many strings, ?  presence flag of a record
namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test::Layout {

inline constexpr const char* POSITION = "iiiii";
inline constexpr const char* SIZE = "ii";
inline constexpr const char* DATA = "iiiiiisi";
inline constexpr const char* DETAIL = "siillliii";
inline constexpr const char* REMIND_INFO = "siiii";
inline constexpr const char* DURATION = "sisill";
inline constexpr const char* QUERY = "LLll";

/** A text whose length or end is now and then not what it should be. */
inline Bytes MakeText(Input& input, size_t unit)
{
    const uint8_t how = input.Byte();
    const Bytes text = input.Take(how % 32 * unit);
    const bool isBroken = how >= 0xE0;
    const auto length = isBroken ? input.Number<int32_t>() : static_cast<int32_t>(text.size() / unit);
    return I32(length) + Padded(text.substr(0, text.size() / unit * unit) + Bytes(unit, how == 0xFF ? 'x' : '\0'));
}

/** Items as a peer would write them, but for what the input breaks. */
inline Bytes Make(Input& input, const std::string& layout)
{
    Bytes bytes;
    for (const char item : layout) {
        switch (item) {
        case 'i':
            bytes += I32(input.Number<int32_t>());
            break;
        case 'l':
            bytes += I64(input.Number<int64_t>());
            break;
        case 's':
            bytes += MakeText(input, sizeof(char));
            break;
        case 'u':
            bytes += MakeText(input, sizeof(char16_t));
            break;
        case 'L': {
            const uint8_t how = input.Byte();
            // 999 and 1000 are the two sides of a list's limit.
            const int32_t count = how < 0xF0 ? how % 4 : 999 + how % 2;
            bytes += I32(input.OneIn(8) ? input.Number<int32_t>() : count);
            bytes += how < 0xF0 ? Make(input, Bytes(static_cast<size_t>(count), 's')) : Times(count, Str("x"));
            break;
        }
        case '?':
            bytes += I32(input.OneIn(8) ? input.Byte() % 3 : 1);
            break;
        default: // What is no item.
            break;
        }
    }
    return bytes;
}

/** The same, now and then cut somewhere. */
inline Bytes MakeCut(Input& input, const std::string& layout)
{
    const size_t cut = input.OneIn(8) ? input.Byte() : 0;
    const Bytes bytes = Make(input, layout);
    return bytes.substr(0, bytes.size() - std::min(cut, bytes.size()));
}

/** Reads a parcel's bytes by their layout: an account of the format that shares no code with the parcel. */
class Reader {
public:
    explicit Reader(Bytes bytes) : bytes_(std::move(bytes)) {}

    /** Reads items up to the first that is cut or malformed; false if there is one. Absent is malformed. */
    bool Read(const std::string& layout)
    {
        bool isRead = true;
        for (size_t i = 0; isRead && i < layout.size(); ++i) {
            isRead = ReadItem(layout[i]);
        }
        return isRead;
    }

    size_t Position() const
    {
        return position_;
    }

    /** What was read, as it should have been written, flags aside. */
    Bytes Take()
    {
        return std::exchange(read_, "");
    }

private:
    bool ReadItem(char item)
    {
        switch (item) {
        case 'i':
            return ReadBytes(4);
        case 'l':
            return ReadBytes(8);
        case 's':
            return ReadText(1);
        case 'u':
            return ReadText(2);
        case 'L':
            return ReadList();
        default: { // '?'
            const bool isPresent = Int32(position_) != 0;
            position_ += IsThere(position_, 4) ? 4 : 0;
            return isPresent;
        }
        }
    }

    bool IsThere(size_t at, size_t size) const
    {
        return at <= bytes_.size() && size <= bytes_.size() - at;
    }

    int32_t Int32(size_t at) const
    {
        int32_t value = 0;
        for (size_t i = 4; IsThere(at, 4) && i > 0; --i) {
            value = static_cast<int32_t>(static_cast<uint32_t>(value) << 8U | static_cast<uint8_t>(bytes_[at + i - 1]));
        }
        return value;
    }

    bool ReadBytes(size_t size)
    {
        if (!IsThere(position_, size)) {
            return false;
        }
        read_ += bytes_.substr(position_, size);
        position_ += size;
        return true;
    }

    bool ReadText(size_t unit)
    {
        const int64_t length = IsThere(position_, 4) ? Int32(position_) : -1;
        const size_t size = static_cast<size_t>(std::max<int64_t>(length, 0)) * unit;
        const size_t text = position_ + 4;
        if (length < 0 || !IsThere(text, size + unit) || bytes_.compare(text + size, unit, Bytes(unit, '\0')) != 0) {
            return false;
        }
        read_ += I32(static_cast<int32_t>(length)) + Padded(bytes_.substr(text, size + unit));
        position_ = std::min(text + Padded(Bytes(size + unit, ' ')).size(), bytes_.size());
        return true;
    }

    bool ReadList()
    {
        const int32_t count = Int32(position_);
        const Bytes before = read_;
        if (!ReadBytes(4) || count > 999) {
            return false;
        }
        read_ = before + I32(std::max(count, 0));
        return Read(Bytes(static_cast<size_t>(std::max(count, 0)), 's'));
    }

    const Bytes bytes_;
    size_t position_ = 0;
    Bytes read_;
};

template <typename T>
Bytes Marshalled(const T& record)
{
    RawParcel parcel;
    Require(record.Marshalling(parcel), "what was read can be written");
    return BytesOf(parcel);
}

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test::Layout

#endif // LAYOUT_H
