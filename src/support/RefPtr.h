// RefPtr: the one counted pointer for interfaces. RefCount: the one base for reference counts.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>

#include <tdkviz/com.h>

namespace tdkviz {

// Holds one reference on a COM-style object, or nothing. Not shared between threads without a lock.
template <typename T>
class RefPtr {
public:
    RefPtr() = default;
    // Takes a reference of its own.
    explicit RefPtr(T* object) : object_(object) {
        if (object_) object_->AddRef();
    }
    RefPtr(const RefPtr& other) : RefPtr(other.object_) {}
    RefPtr(RefPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~RefPtr() { Reset(); }

    RefPtr& operator=(RefPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    // Takes over a reference that the caller already holds.
    static RefPtr Adopt(T* object) {
        RefPtr pointer;
        pointer.object_ = object;
        return pointer;
    }

    void Reset() {
        if (T* old = std::exchange(object_, nullptr)) old->Release();
    }
    // Gives the reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(object_, nullptr); }

    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

    // For out parameters: lets go what is held and gives the place for a new reference.
    T** Receive() {
        Reset();
        return &object_;
    }
    void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

private:
    T* object_ = nullptr;
};

// Asks `object` (may be null) for an interface; an empty pointer if it doesn't offer it.
template <typename T>
RefPtr<T> QueryFor(IUnknown* object, const GUID& id) {
    void* found = nullptr;
    if (!object || FAILED(object->QueryInterface(id, &found))) return {};
    return RefPtr<T>::Adopt(static_cast<T*>(found));
}

// A reference count that interlocked operations change. What a count of 0 means is the owner's affair.
class RefCount {
public:
    ULONG Add() { return static_cast<ULONG>(count_.fetch_add(1, std::memory_order_relaxed) + 1); }
    // Gives the new count, which may be negative when more was released than taken.
    int32_t Remove() { return count_.fetch_sub(1, std::memory_order_acq_rel) - 1; }
    int32_t Get() const { return count_.load(std::memory_order_acquire); }

private:
    std::atomic<int32_t> count_{0};
};

}  // namespace tdkviz
