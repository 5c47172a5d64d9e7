// SPDX-License-Identifier: Apache-2.0
#include "refbase.h"

#include <memory>

namespace OHOS {

bool RefCounter::TryIncStrong()
{
    int count = strong_.load(std::memory_order_relaxed);
    // Never from 0: the thread that took the last reference away is deleting the object.
    while (count > 0) {
        if (strong_.compare_exchange_weak(count, count + 1, std::memory_order_acquire, std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

void RefCounter::DecWeak()
{
    if (weak_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

RefBase::~RefBase()
{
    RefCounter* counter = counter_.load(std::memory_order_acquire);
    if (counter != nullptr) {
        counter->DecWeak();
    }
}

RefCounter* RefBase::GetRefCounter() const
{
    RefCounter* counter = counter_.load(std::memory_order_acquire);
    if (counter == nullptr) {
        auto fresh = std::make_unique<RefCounter>();
        if (counter_.compare_exchange_strong(
                counter, fresh.get(), std::memory_order_acq_rel, std::memory_order_acquire)) {
            counter = fresh.release();
        }
    }
    return counter;
}

void RefBase::IncStrongRef(const void* objectId)
{
    if (GetRefCounter()->IncStrong()) {
        OnFirstStrongRef(objectId);
    }
}

void RefBase::DecStrongRef(const void* objectId)
{
    if (GetRefCounter()->DecStrong()) {
        OnLastStrongRef(objectId);
        delete this;
    }
}

int RefBase::GetSptrRefCount() const { return GetRefCounter()->GetStrong(); }

} // namespace OHOS
