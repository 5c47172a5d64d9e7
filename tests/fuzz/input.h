// SPDX-License-Identifier: Apache-2.0
#ifndef INPUT_H
#define INPUT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "wire.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test {

/** Ends the process, which is a finding, unless the property holds. */
inline void Require(bool holds, const char* property)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", property);
        std::abort();
    }
}

/** The fuzzer's bytes, taken from the front. After their end everything is 0. */
class Input {
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    template <typename T>
    T Number()
    {
        T value{};
        const Bytes bytes = Take(sizeof(value));
        std::memcpy(&value, bytes.data(), bytes.size());
        return value;
    }

    bool IsEmpty() const { return size_ == 0; }

    uint8_t Byte() { return Number<uint8_t>(); }

    /** True for one value in `values` of the next byte, the greatest ones. */
    bool OneIn(unsigned values) { return Byte() >= 256 - 256 / values; }

    Bytes Take(size_t size)
    {
        const size_t taken = std::min(size, size_);
        Bytes bytes(reinterpret_cast<const char*>(data_), taken);
        data_ += taken;
        size_ -= taken;
        return bytes;
    }

    Bytes Rest() { return Take(size_); }

private:
    const uint8_t* data_;
    size_t size_;
};

/**
 * Reads a parcel's bytes by their documentation, and shares no code with the parcel. A layout names items, a letter
 * each: i  4 bytes, l  8 bytes, s  string, u  string16, L  int32 count and that many strings, ?  presence flag of a
 * record
 */
class Reader {
public:
    explicit Reader(Bytes read = "", std::vector<size_t> positions = {})
        : bytes(std::move(read)), objects(std::move(positions))
    {}

    std::optional<Bytes> Number(size_t size)
    {
        const bool isThere = size <= bytes.size() - cursor;
        const bool isNumber = isThere && !HasObject(cursor, size);
        cursor += isThere ? size : 0; // Past bytes of an object, too.
        return isNumber ? std::optional(bytes.substr(cursor - size, size)) : std::nullopt;
    }

    std::optional<Bytes> Buffer(size_t size)
    {
        const size_t start = cursor;
        auto buffer = HasObject(cursor, size) ? std::nullopt : Number(size);
        cursor = buffer ? cursor : start;
        return buffer;
    }

    /** The text without its length and end. */
    std::optional<Bytes> Text(size_t unit)
    {
        const size_t start = cursor;
        const auto head = Buffer(4);
        const int64_t length = head ? Value(*head) : 0;
        if (!head || length < 0 || length == INT32_MAX) {
            return std::nullopt; // The cursor is past a length that is none.
        }
        const auto text = Buffer((static_cast<size_t>(length) + 1) * unit);
        const size_t size = static_cast<size_t>(length) * unit;
        if (!text || text->substr(size) != Bytes(unit, '\0')) {
            cursor = start;
            return std::nullopt;
        }
        cursor = std::min(start + 4 + Padded(*text).size(), bytes.size());
        return text->substr(0, size);
    }

    /** Reads items up to the first that is cut or malformed; false if there is one. Absent is malformed. */
    bool Read(const std::string& layout)
    {
        return std::all_of(layout.begin(), layout.end(), [this](char item) { return ReadItem(item); });
    }

    /** What Read has read, as it should have been written, flags aside. */
    Bytes Take() { return std::exchange(read_, ""); }

    static int32_t Value(const Bytes& number)
    {
        uint32_t value = 0;
        for (size_t i = number.size(); i > 0; --i) {
            value = value << 8U | static_cast<uint8_t>(number[i - 1]);
        }
        return static_cast<int32_t>(value);
    }

    Bytes bytes;
    std::vector<size_t> objects; // The positions of remote objects.
    size_t cursor = 0;

private:
    bool HasObject(size_t start, size_t size) const
    {
        return std::any_of(objects.begin(), objects.end(),
            [=](size_t object) { return object < start + size && start < object + 24; });
    }

    bool ReadItem(char item)
    {
        const size_t unit = item == 'u' ? 2 : 1;
        if (item == 's' || item == 'u') {
            const auto text = Text(unit);
            read_ += text ? I32(static_cast<int64_t>(text->size() / unit)) + Padded(*text + Bytes(unit, '\0')) : "";
            return text.has_value();
        }
        const auto number = Number(item == 'l' ? 8 : 4);
        if (!number || item == '?' || (item == 'L' && Value(*number) > 999)) {
            return number && item == '?' && Value(*number) != 0;
        }
        const int32_t count = item == 'L' ? std::max(Value(*number), 0) : 0; // Below 0 there are no entries.
        read_ += item == 'L' ? I32(count) : *number;
        return Read(Bytes(static_cast<size_t>(count), 's'));
    }

    Bytes read_;
};

namespace Layout {

inline constexpr const char* POSITION = "iiiii";
inline constexpr const char* SIZE = "ii";
inline constexpr const char* DATA = "iiiiiisi";
inline constexpr const char* DETAIL = "siillliii";
inline constexpr const char* REMIND_INFO = "siiii";
inline constexpr const char* DURATION = "sisill";
inline constexpr const char* QUERY = "LLll";

} // namespace Layout

} // namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test

#endif // INPUT_H
