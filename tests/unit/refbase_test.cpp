// SPDX-License-Identifier: Apache-2.0
#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "refbase.h"

namespace {

using OHOS::RefBase;
using OHOS::sptr;
using OHOS::wptr;

// Writes its life down in `story`: F and L for the first and last strong reference, D for the end.
class Object : public virtual RefBase {
public:
    explicit Object(std::string& story) : story_(story) {}

    ~Object() override
    {
        story_ += 'D';
    }

    void OnFirstStrongRef(const void* /* objectId */) override
    {
        story_ += 'F';
    }

    void OnLastStrongRef(const void* /* objectId */) override
    {
        story_ += 'L';
    }

private:
    std::string& story_;
};

class Record : public virtual RefBase {};

class Both : public Record, public Object {
public:
    using Object::Object;
};

class Unallocatable : public RefBase {
public:
    static void* operator new(size_t /* size */, const std::nothrow_t& /* tag */) noexcept
    {
        return nullptr;
    }

    static void operator delete(void* /* object */) noexcept {}
};

static_assert(std::is_convertible_v<sptr<Both>, sptr<Object>> && std::is_convertible_v<sptr<Both>, wptr<RefBase>>);
static_assert(!std::is_constructible_v<sptr<Both>, sptr<Object>> && !std::is_constructible_v<wptr<Both>, wptr<Object>>);

// Calls both at once.
template <typename First, typename Second>
void Race(const First& first, const Second& second)
{
    std::atomic<bool> started{false};
    std::thread thread([&] {
        started = true;
        first();
    });
    while (!started) {
        std::this_thread::yield();
    }
    second();
    thread.join();
}

TEST(RefBaseTest, ObjectDiesWithItsLastStrongReference)
{
    std::string story;
    sptr<Object> first = sptr<Object>::MakeSptr(story);
    sptr<Object> second = first;
    sptr<Object> third(std::move(second));
    EXPECT_TRUE(third == first && first->GetSptrRefCount() == 2);
    sptr<Object>& self = third;
    third = self;
    third = std::move(self);
    second = third.GetRefPtr();
    EXPECT_EQ((*second).GetSptrRefCount(), 3);
    second = nullptr;
    third = second;
    EXPECT_EQ(first->GetSptrRefCount(), 1);
    EXPECT_EQ(story, "F");
    first = new Object(story);
    EXPECT_EQ(story, "FFLD"); // The old one is released last.
    EXPECT_EQ(sptr<Unallocatable>::MakeSptr(), nullptr);
}

TEST(RefBaseTest, ConversionsKeepCountThroughVirtualBases)
{
    std::string story;
    sptr<Both> both = new Both(story);
    sptr<Object> object = both;
    sptr<RefBase> base(std::move(object));
    const wptr<RefBase> weak = both;
    const wptr<Both> weakBoth = both;
    EXPECT_TRUE(weak == base && weak == wptr<RefBase>(weakBoth) && weak != nullptr && base == both);
    EXPECT_EQ(both->GetSptrRefCount(), 2);
    EXPECT_EQ(weakBoth.promote(), both);
    both = nullptr;
    EXPECT_EQ(weak.promote(), base);
    base = nullptr;
    EXPECT_EQ(story, "FLD");
    EXPECT_EQ(weak.promote(), nullptr);
    EXPECT_NE(weak.GetRefPtr(), nullptr);
    // The virtual base of a dead object must not be looked for.
    EXPECT_EQ(wptr<Record>(weakBoth).GetRefPtr(), nullptr);
}

TEST(RefBaseTest, CopiesHaveCountsOfTheirOwn)
{
    wptr<Record> weak;
    {
        Record record;
        weak = wptr<Record>(&record);
        const sptr<Record> counted = new Record(record);
        const sptr<Record> again = counted.GetRefPtr();
        const std::vector<Record> records(3, *counted);
        record = *counted;
        *counted = records[0];
        EXPECT_EQ(records[2].GetSptrRefCount() + record.GetSptrRefCount(), 0);
        EXPECT_EQ(counted->GetSptrRefCount(), 2);
        EXPECT_EQ(weak.promote(), nullptr);
    }
    EXPECT_EQ(weak.promote(), nullptr);
}

TEST(RefBaseTest, ReferencesOfSeveralThreadsRace)
{
    for (int round = 0; round < 1000; round++) {
        std::string story;
        auto* object = new Object(story);
        sptr<Object> strong;
        wptr<Object> weak;
        Race([&] { weak = object; }, [&] { strong = object; });
        ASSERT_EQ(weak.promote(), object);
        const auto promote = [&] {
            for (int i = 0; i < 20; i++) {
                const sptr<Object> promoted = weak.promote();
                ASSERT_TRUE(promoted == nullptr || story == "F"); // Alive while it is held.
            }
        };
        Race(promote, [&] { strong = nullptr; });
        ASSERT_EQ(story, "FLD");
    }
}

} // namespace
