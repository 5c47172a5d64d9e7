// SPDX-License-Identifier: Apache-2.0
// A parcel, step by step beside a second one that is slow and plain.
// Covers: platform/utils/src/parcel.cpp
#include <iterator>
#include <memory>
#include <optional>

#include "indicator_size.h"
#include "input.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

struct ReceivedParcel : Parcel {
    using Parcel::Skip;
    using Parcel::Truncate; // What comes from a peer may end anywhere.
};

/** A parcel read and written the slow way, a byte at a time, by what its table of items says and nothing else. */
struct SlowParcel {
    bool Write(const Bytes& item)
    {
        const bool fits = bytes.size() + Padded(item).size() <= capacity;
        bytes += fits ? Padded(item) : "";
        return fits;
    }

    /** Items of 4 bytes each, up to the first one that does not fit. */
    bool WriteParts(const Bytes& items)
    {
        return items.empty() || (Write(items.substr(0, 4)) && WriteParts(items.substr(4)));
    }

    std::optional<Bytes> Read(size_t size)
    {
        if (size > bytes.size() || cursor > bytes.size() - size) {
            return std::nullopt;
        }
        const Bytes item = bytes.substr(cursor, size);
        cursor = std::min(cursor + Padded(item).size(), bytes.size());
        return item;
    }

    /** Its units only. */
    std::optional<Bytes> ReadText(size_t unit)
    {
        uint64_t length = 0;
        for (size_t i = 4; i-- > 0 && cursor + 4 <= bytes.size();) {
            length = length << 8 | static_cast<uint8_t>(bytes[cursor + i]);
        }
        const size_t start = cursor;
        const auto item =
            cursor + 4 <= bytes.size() && length <= INT32_MAX ? Read(4 + (length + 1) * unit) : std::nullopt;
        if (item && item->substr(4 + length * unit) != Bytes(unit, '\0')) {
            cursor = start;
            return std::nullopt;
        }
        return item ? std::optional(item->substr(4, length * unit)) : std::nullopt;
    }

    Bytes bytes;
    size_t cursor = 0;
    size_t capacity = 204800;
};

/** A run of steps on both parcels. Each step returns whether the two still agree. */
class Sequence {
public:
    explicit Sequence(Input input) : input_(input) {}

    void Run()
    {
        for (size_t steps = Below(24); steps > 0; --steps) {
            Require(WriteOne() && parcel_.GetDataSize() == slow_.bytes.size(), "both take the same");
        }
        Require(std::equal(slow_.bytes.begin(), slow_.bytes.end(), Data()), "both hold the same");
        if (Below(2) == 0) {
            Spoil();
        }
        while (!input_.IsEmpty()) {
            Require(ReadOne() && parcel_.GetReadPosition() == slow_.cursor &&
                        parcel_.GetReadableBytes() == slow_.bytes.size() - slow_.cursor,
                "both give the same");
        }
    }

private:
    size_t Below(size_t end)
    {
        return end <= 256 ? input_.Byte() % end : input_.Number<uint32_t>() % end;
    }

    char* Data() const
    {
        return reinterpret_cast<char*>(parcel_.GetData()); // NOLINT(performance-no-int-to-ptr): as a parcel has it.
    }

    template <typename T>
    T Any()
    {
        constexpr uint64_t SPECIAL[] = {0, 1, 4, 0xff, 0x7fffffff, 0x80000000, 0x7ff8000000000001, UINT64_MAX};
        const uint64_t bits = Below(2) == 0 ? SPECIAL[Below(std::size(SPECIAL))] : input_.Number<uint64_t>();
        T value;
        std::memcpy(&value, &bits, sizeof(value));
        return value;
    }

    template <typename Text>
    Text AnyText()
    {
        const size_t room = (slow_.capacity - slow_.bytes.size()) / sizeof(typename Text::value_type);
        Text text(Below(64) == 0 ? room - std::min(room, Below(24)) : 0, 'x'); // Some just fit, or do not.
        for (size_t more = text.empty() ? Below(12) : 0; more > 0; --more) {
            text += Any<typename Text::value_type>();
        }
        return text;
    }

    template <typename T>
    static Bytes Memory(const T* values, size_t count = 1)
    {
        return Bytes(reinterpret_cast<const char*>(values), count * sizeof(T));
    }

    template <typename T>
    bool Write(bool (Parcel::*write)(T))
    {
        const T value = Any<T>();
        return (parcel_.*write)(value) == slow_.Write(Memory(&value));
    }

    bool WriteOne()
    {
        const size_t kind = Below(12);
        const bool isTrue = Below(2) == 0;
        const auto text = kind == 7 || kind == 9 ? AnyText<std::string>() : "";
        const auto wide = kind == 8 ? AnyText<std::u16string>() : u"";
        switch (kind) {
        case 0:
            return parcel_.WriteBool(isTrue) == slow_.Write(I32(isTrue ? 1 : 0));
        case 1:
            return Write(&Parcel::WriteInt32);
        case 2:
            return Write(&Parcel::WriteUint32);
        case 3:
            return Write(&Parcel::WriteInt64);
        case 4:
            return Write(&Parcel::WriteUint64);
        case 5:
            return Write(&Parcel::WriteFloat);
        case 6:
            return Write(&Parcel::WriteDouble);
        case 7:
            return parcel_.WriteString(text) == slow_.Write(Str(text));
        case 8:
            return parcel_.WriteString16(wide) == slow_.Write(Str16(wide));
        case 9:
            return parcel_.WriteBuffer(text.data(), text.size()) == slow_.Write(text);
        case 10: {
            const Bytes item = isTrue ? I32(1) + I32(0x40400000) + I32(0x3f000000) : I32(0);
            const sptr<Indicator::IndicatorSize> size(isTrue ? new Indicator::IndicatorSize() : nullptr);
            if (size != nullptr) {
                size->width = 3.0F;
                size->height = 0.5F;
            }
            // It is written in parts, each of which fits or does not.
            return parcel_.WriteStrongParcelable(size) == slow_.WriteParts(item);
        }
        default:
            const size_t capacity = slow_.capacity - 4 + Below(9);
            const bool isRaised = capacity > slow_.capacity;
            slow_.capacity = std::max(slow_.capacity, capacity);
            return parcel_.SetMaxCapacity(capacity) == isRaised && parcel_.GetMaxCapacity() == slow_.capacity;
        }
    }

    /** Does what a hostile peer may do: alters bytes, and cuts the end off anywhere. */
    void Spoil()
    {
        for (size_t i = Below(8); i > 0 && !slow_.bytes.empty(); --i) {
            const size_t position = Below(slow_.bytes.size());
            slow_.bytes[position] = Data()[position] = Any<char>();
        }
        slow_.bytes.resize(slow_.bytes.size() - std::min(slow_.bytes.size(), Below(12)));
        parcel_.Truncate(slow_.bytes.size());
    }

    template <typename T>
    bool Read(bool (Parcel::*read)(T&), T (Parcel::*get)())
    {
        const auto item = slow_.Read(sizeof(T));
        T value = Any<T>();
        const Bytes before = Memory(&value);
        if (Below(2) == 0) {
            return (parcel_.*read)(value) == item.has_value() && Memory(&value) == item.value_or(before);
        }
        value = (parcel_.*get)();
        return Memory(&value) == item.value_or(Bytes(sizeof(T), '\0'));
    }

    template <typename Text>
    bool ReadText(bool (Parcel::*read)(Text&), Text (Parcel::*get)())
    {
        const auto item = slow_.ReadText(sizeof(typename Text::value_type));
        Text text(3, 'x');
        const bool isRead = Below(2) == 0 ? (parcel_.*read)(text) : (text = (parcel_.*get)(), item.has_value());
        return isRead == item.has_value() && Memory(text.data(), text.size()) == item.value_or("");
    }

    bool ReadOne()
    {
        const size_t size = Below(20);
        switch (Below(13)) {
        case 0: {
            const auto item = slow_.Read(4);
            return parcel_.ReadBool() == (item && *item != I32(0));
        }
        case 1:
            return Read<int32_t>(&Parcel::ReadInt32, &Parcel::ReadInt32);
        case 2:
            return Read<uint32_t>(&Parcel::ReadUint32, &Parcel::ReadUint32);
        case 3:
            return Read<int64_t>(&Parcel::ReadInt64, &Parcel::ReadInt64);
        case 4:
            return Read<uint64_t>(&Parcel::ReadUint64, &Parcel::ReadUint64);
        case 5:
            return Read<float>(&Parcel::ReadFloat, &Parcel::ReadFloat);
        case 6:
            return Read<double>(&Parcel::ReadDouble, &Parcel::ReadDouble);
        case 7:
            return ReadText<std::string>(&Parcel::ReadString, &Parcel::ReadString);
        case 8:
            return ReadText<std::u16string>(&Parcel::ReadString16, &Parcel::ReadString16);
        case 9: {
            const auto item = slow_.Read(size);
            const uint8_t* bytes = parcel_.ReadBuffer(size);
            return item ? size == 0 || Memory(bytes, size) == *item : bytes == nullptr;
        }
        case 10: {
            const auto flag = slow_.Read(4);
            const std::unique_ptr<Indicator::IndicatorSize> record(parcel_.ReadParcelable<Indicator::IndicatorSize>());
            const bool isThere = flag && *flag != I32(0);
            const auto width = isThere ? slow_.Read(4) : std::nullopt;
            const auto height = width ? slow_.Read(4) : std::nullopt;
            return height ? record && Memory(&record->width) == *width && Memory(&record->height) == *height : !record;
        }
        case 11:
            return slow_.Read(size + 1).has_value() == parcel_.Skip(size + 1);
        default:
            const size_t position = Below(slow_.bytes.size() + 8);
            const bool isInside = position <= slow_.bytes.size();
            slow_.cursor = isInside ? position : slow_.cursor;
            return parcel_.RewindRead(position) == isInside;
        }
    }

    Input input_;
    ReceivedParcel parcel_;
    SlowParcel slow_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Sequence(Input(data, size)).Run();
    return 0;
}
