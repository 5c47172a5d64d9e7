// SPDX-License-Identifier: Apache-2.0
#ifndef REFBASE_H
#define REFBASE_H

#include <atomic>
#include <new>
#include <type_traits>
#include <utility>

namespace OHOS {

/**
 * The counts of one RefBase object. They live apart from the object, until the object and its last wptr are gone, so
 * that a wptr can ask for the object after its end. Any thread may call anything. For RefBase and wptr only.
 */
class RefCounter {
public:
    /** Adds a strong reference. True if it is the first one. */
    bool IncStrong() { return strong_.fetch_add(1, std::memory_order_relaxed) == 0; }

    /** Adds a strong reference if there is one already. False, and no change, if there is none. */
    bool TryIncStrong();

    /** Takes a strong reference away. True if it was the last one: what every holder did has happened before. */
    bool DecStrong() { return strong_.fetch_sub(1, std::memory_order_acq_rel) == 1; }

    int GetStrong() const { return strong_.load(std::memory_order_relaxed); }

    void IncWeak() { weak_.fetch_add(1, std::memory_order_relaxed); }

    /** Takes a weak reference away, and with the last one the counter itself. */
    void DecWeak();

private:
    std::atomic<int> strong_{0};
    std::atomic<int> weak_{1}; // The object itself counts as one.
};

/**
 * Base of everything held by sptr; derive virtually. The object is deleted when its last strong reference goes. One
 * that never had any is deleted plainly or lives on the stack. A copy starts with counts of its own and an assignment
 * leaves both objects' counts alone. Counting is thread-safe. The counter is allocated with the first reference, or
 * when it is asked for, and std::bad_alloc leaves that call when there is no memory for it.
 */
class RefBase {
public:
    RefBase() = default;
    RefBase(const RefBase& /* other */) noexcept {}
    RefBase& operator=(const RefBase& /* other */) noexcept { return *this; } // NOLINT(*-unhandled-self-assignment)
    virtual ~RefBase();

    /** Adds a strong reference. `objectId` identifies its holder to the hooks. */
    void IncStrongRef(const void* objectId);

    /** Takes a strong reference away, and deletes the object if it was the last one. */
    void DecStrongRef(const void* objectId);

    /** How many strong references there are: a snapshot. */
    int GetSptrRefCount() const;

    /** The object's counts, allocated at the first call. The caller of IncWeak may use them beyond the object. */
    RefCounter* GetRefCounter() const;

    /** Called with the first strong reference, on the thread that takes it. */
    virtual void OnFirstStrongRef(const void* /* objectId */) {}

    /** Called when the last strong reference has gone, before the object is deleted: make no new one from here. */
    virtual void OnLastStrongRef(const void* /* objectId */) {}

private:
    mutable std::atomic<RefCounter*> counter_{nullptr};
};

template <typename T>
class wptr;

/**
 * A strong reference to a RefBase object, or null. Compares as the plain pointer to which it converts. Different
 * threads may use different sptr of one object; one sptr is not thread-safe. T may be incomplete where the sptr is
 * only named.
 */
template <typename T>
class sptr {
public:
    sptr() = default;

    /** Takes part in the ownership of `object`, which must have been made with new; null is allowed. */
    sptr(T* object) : object_(object)
    {
        if (object_ != nullptr) {
            object_->IncStrongRef(this);
        }
    }

    sptr(const sptr& other) : sptr(other.object_) {}

    sptr(sptr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}

    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    sptr(const sptr<U>& other) : sptr(static_cast<T*>(other.GetRefPtr()))
    {}

    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    sptr(sptr<U>&& other) noexcept : object_(std::exchange(other.object_, nullptr))
    {}

    ~sptr()
    {
        if (object_ != nullptr) {
            object_->DecStrongRef(this);
        }
    }

    /** Assigns whatever an sptr can be made from. The old object is released last. */
    sptr& operator=(sptr other) noexcept
    {
        std::swap(object_, other.object_);
        return *this;
    }

    /** A new T made from `args`, or null if there is no memory for it. */
    template <typename... Args>
    static sptr MakeSptr(Args&&... args)
    {
        return sptr(new (std::nothrow) T(std::forward<Args>(args)...));
    }

    T* GetRefPtr() const { return object_; }

    operator T*() const { return object_; }

    T& operator*() const { return *object_; }

    T* operator->() const { return object_; }

private:
    template <typename U>
    friend class sptr;
    friend class wptr<T>;

    T* object_ = nullptr;
};

/**
 * A weak reference to a RefBase object, or null: it does not keep the object, but knows whether it is gone. Different
 * threads may use different wptr of one object; one wptr is not thread-safe.
 */
template <typename T>
class wptr {
public:
    wptr() = default;

    /** `object` must be alive, or null. */
    wptr(T* object) : object_(object), counter_(object != nullptr ? object->GetRefCounter() : nullptr) { IncWeak(); }

    wptr(const wptr& other) : object_(other.object_), counter_(other.counter_) { IncWeak(); }

    wptr(wptr&& other) noexcept : object_(other.object_), counter_(std::exchange(other.counter_, nullptr)) {}

    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    wptr(const sptr<U>& other) : wptr(static_cast<T*>(other.GetRefPtr()))
    {}

    /** Null if the object is gone: a pointer to a virtual base can be had from a living object only. */
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    wptr(const wptr<U>& other) : wptr(other.promote())
    {}

    ~wptr()
    {
        if (counter_ != nullptr) {
            counter_->DecWeak();
        }
    }

    wptr& operator=(wptr other) noexcept
    {
        std::swap(object_, other.object_);
        std::swap(counter_, other.counter_);
        return *this;
    }

    /** A strong reference, or null if no other one is left or there was never any. */
    sptr<T> promote() const
    {
        sptr<T> strong;
        if (counter_ != nullptr && counter_->TryIncStrong()) {
            strong.object_ = object_;
        }
        return strong;
    }

    /** The object; null where promote would give null. It may end at any time: to be compared, not to be followed. */
    T* GetRefPtr() const { return counter_ != nullptr && counter_->GetStrong() > 0 ? object_ : nullptr; }

    /** Compares what GetRefPtr gives, so that a reference to a dead object equals null. */
    bool operator==(const wptr& other) const { return GetRefPtr() == other.GetRefPtr(); }

    bool operator==(const sptr<T>& other) const { return GetRefPtr() == other.GetRefPtr(); }

    bool operator==(const T* other) const { return GetRefPtr() == other; }

    template <typename Other>
    bool operator!=(const Other& other) const
    {
        return !(*this == other);
    }

private:
    void IncWeak()
    {
        if (counter_ != nullptr) {
            counter_->IncWeak();
        }
    }

    T* object_ = nullptr;
    RefCounter* counter_ = nullptr;
};

} // namespace OHOS

#endif // REFBASE_H
