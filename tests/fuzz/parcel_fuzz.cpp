// SPDX-License-Identifier: Apache-2.0
// A parcel, step by step beside a second one that is slow and plain.
// Covers: platform/utils/src/parcel.cpp
#include <iterator>
#include <memory>

#include "indicator_size.h"
#include "input.h"
#include "ipc_object_stub.h"

using namespace OHOS;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator;
using namespace OHOS::Korvane::Quenlar::PrivacyIndicator::Test;

namespace {

struct TestedParcel : MessageParcel {
    using Parcel::SetReceived;
    using Parcel::Take;
    using Parcel::Truncate; // What comes from a peer may end anywhere.
};

/** A parcel written the slow way, by what its table of items says and nothing else. */
struct SlowParcel : Reader {
    bool Write(const Bytes& item)
    {
        const Bytes padded = Padded(item);
        const bool fits = !isReceived && bytes.size() + padded.size() <= capacity;
        bytes += fits ? padded : "";
        return fits;
    }

    /** An item whose first 4 bytes stay if the others do not fit. */
    bool WriteParts(const Bytes& item) { return Write(item.substr(0, 4)) && Write(item.substr(4)); }

    bool Skip(size_t size)
    {
        const bool isThere = size <= bytes.size() - cursor;
        cursor = isThere ? std::min(cursor + Padded(Bytes(size, ' ')).size(), bytes.size()) : cursor;
        return isThere;
    }

    size_t capacity = 204800;
    bool isReceived = false;
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
    size_t Below(size_t end) { return end <= 256 ? input_.Byte() % end : input_.Number<uint32_t>() % end; }

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

    template <typename Text>
    static Bytes Item(const Text& text)
    {
        return I32(static_cast<int64_t>(text.size())) + Memory(text.c_str(), text.size() + 1);
    }

    template <typename T>
    bool Write(bool (Parcel::*write)(T))
    {
        const T value = Any<T>();
        return (parcel_.*write)(value) == slow_.Write(Memory(&value));
    }

    /** Takes the nth of these steps, or none. */
    template <typename... Step>
    static bool TakeStep(size_t n, const Step&... steps)
    {
        bool agree = true;
        static_cast<void>(((n-- == 0 ? (agree = steps(), true) : false) || ...));
        return agree;
    }

    bool WriteOne()
    {
        const size_t kind = Below(15);
        const bool isFirst = Below(2) == 0;
        const auto text = kind == 7 || kind == 9 ? AnyText<std::string>() : "";
        const auto wide = kind == 8 || kind == 13 ? AnyText<std::u16string>() : u"";
        return TakeStep(
            kind, [&] { return parcel_.WriteBool(isFirst) == slow_.Write(I32(isFirst ? 1 : 0)); },
            [&] { return Write(&Parcel::WriteInt32); }, [&] { return Write(&Parcel::WriteUint32); },
            [&] { return Write(&Parcel::WriteInt64); }, [&] { return Write(&Parcel::WriteUint64); },
            [&] { return Write(&Parcel::WriteFloat); }, [&] { return Write(&Parcel::WriteDouble); },
            [&] { return parcel_.WriteString(text) == slow_.WriteParts(Item(text)); },
            [&] { return parcel_.WriteString16(wide) == slow_.WriteParts(Item(wide)); },
            [&] { return parcel_.WriteBuffer(text.data(), text.size()) == (!text.empty() && slow_.Write(text)); },
            [&] { return WriteRecord(isFirst); }, [&] { return RaiseCapacity(); }, [&] { return WriteObject(); },
            [&] { return WriteToken(wide); }, [&] { return !isFirst || Receive(); });
    }

    bool RaiseCapacity()
    {
        const size_t capacity = slow_.capacity - 4 + Below(9);
        const bool isRaised = capacity > slow_.capacity;
        slow_.capacity = std::max(slow_.capacity, capacity);
        return parcel_.SetMaxCapacity(capacity) == isRaised && parcel_.GetMaxCapacity() == slow_.capacity;
    }

    bool WriteObject()
    {
        const size_t position = slow_.bytes.size();
        const bool isWritten = slow_.Write(Bytes(24, '\0'));
        slow_.objects.resize(slow_.objects.size() + (isWritten ? 1 : 0), position);
        return parcel_.WriteRemoteObject(object_) == isWritten && !parcel_.WriteRemoteObject(nullptr);
    }

    /** The two int32 of a token are written together or not at all. */
    bool WriteToken(const std::u16string& token)
    {
        return parcel_.WriteInterfaceToken(token) ==
               (slow_.Write(I32(0x100) + I32(0)) && slow_.WriteParts(Item(token)));
    }

    bool Receive()
    {
        parcel_.SetReceived();
        return slow_.isReceived = true;
    }

    bool WriteRecord(bool isThere)
    {
        const bool isStrong = Below(2) == 0;
        if (!isThere) {
            const bool isWritten = slow_.Write(I32(0));
            return isStrong ? parcel_.WriteStrongParcelable(nullptr) : parcel_.WriteParcelable(nullptr) == isWritten;
        }
        const sptr<Indicator::IndicatorSize> size = new Indicator::IndicatorSize();
        size->width = 3.0F;
        size->height = 0.5F;
        Parcel plain; // It has no table of objects.
        Require(plain.WriteStrongParcelable(size) && plain.ReadInt32() == 1, "a plain parcel is written and read");
        // Each of its parts fits or does not.
        const bool isWritten = slow_.Write(I32(1)) && slow_.WriteParts(I32(0x40400000) + I32(0x3f000000));
        return (isStrong ? parcel_.WriteStrongParcelable(size) : parcel_.WriteParcelable(size)) == isWritten;
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
        const auto item = slow_.Number(sizeof(T));
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
        const auto item = slow_.Text(sizeof(typename Text::value_type));
        Text text(3, 'x');
        const bool isRead = Below(2) == 0 ? (parcel_.*read)(text) : (text = (parcel_.*get)(), item.has_value());
        return isRead == item.has_value() && Memory(text.data(), text.size()) == item.value_or("");
    }

    bool ReadOne()
    {
        const size_t size = Below(20);
        return TakeStep(
            Below(15), [&] { return ReadBool(size % 2 == 0); },
            [&] { return Read<int32_t>(&Parcel::ReadInt32, &Parcel::ReadInt32); },
            [&] { return Read<uint32_t>(&Parcel::ReadUint32, &Parcel::ReadUint32); },
            [&] { return Read<int64_t>(&Parcel::ReadInt64, &Parcel::ReadInt64); },
            [&] { return Read<uint64_t>(&Parcel::ReadUint64, &Parcel::ReadUint64); },
            [&] { return Read<float>(&Parcel::ReadFloat, &Parcel::ReadFloat); },
            [&] { return Read<double>(&Parcel::ReadDouble, &Parcel::ReadDouble); },
            [&] { return ReadText<std::string>(&Parcel::ReadString, &Parcel::ReadString); },
            [&] { return ReadText<std::u16string>(&Parcel::ReadString16, &Parcel::ReadString16); },
            [&] { return ReadBuffer(size); }, [&] { return ReadRecord(); },
            [&] { return slow_.Skip(size + 1) == (parcel_.Take(size + 1) != nullptr); }, [&] { return Rewind(); },
            [&] { return ReadObject(); }, [&] { return ReadToken(); });
    }

    bool ReadBool(bool byReference)
    {
        const auto item = slow_.Number(4);
        bool value = false;
        const bool isRead = byReference ? parcel_.ReadBool(value) : (value = parcel_.ReadBool(), item.has_value());
        return isRead == item.has_value() && value == (item && *item != I32(0));
    }

    bool ReadBuffer(size_t size)
    {
        const auto item = slow_.Buffer(size);
        const uint8_t* bytes = parcel_.ReadBuffer(size);
        return item ? size == 0 || Memory(bytes, size) == *item : bytes == nullptr;
    }

    bool ReadRecord()
    {
        const std::unique_ptr<Indicator::IndicatorSize> record(parcel_.ReadParcelable<Indicator::IndicatorSize>());
        const bool isThere = slow_.Reader::Read("?ii");
        const Bytes floats = slow_.Take();
        return isThere ? record && Memory(&record->width) + Memory(&record->height) == floats : !record;
    }

    bool Rewind()
    {
        const size_t position = Below(slow_.bytes.size() + 8);
        const bool isInside = position <= slow_.bytes.size();
        slow_.cursor = isInside ? position : slow_.cursor;
        return parcel_.RewindRead(position) == isInside;
    }

    bool ReadObject()
    {
        const bool isThere = std::count(slow_.objects.begin(), slow_.objects.end(), slow_.cursor) > 0;
        return parcel_.ReadRemoteObject() == (isThere && slow_.Skip(24) ? object_.GetRefPtr() : nullptr);
    }

    bool ReadToken()
    {
        slow_.Number(4);
        slow_.Number(4);
        const std::u16string token = parcel_.ReadInterfaceToken();
        return Memory(token.data(), token.size()) == slow_.Text(sizeof(char16_t)).value_or("");
    }

    Input input_;
    TestedParcel parcel_;
    SlowParcel slow_;
    const sptr<IRemoteObject> object_ = new IPCObjectStub();
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Sequence(Input(data, size)).Run();
    return 0;
}
