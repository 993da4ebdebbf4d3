// What every object that the player serves stands on: a counted pointer, a base with the reference
// count, and the one way to answer QueryInterface.
#pragma once

#include <tdkviz/com.h>

#include <atomic>
#include <initializer_list>
#include <utility>

namespace tdkplay {

// Holds one reference, or nothing. Not shared between threads without a lock.
template <typename T>
class ComPtr {
public:
    ComPtr() = default;
    // Takes a reference of its own.
    explicit ComPtr(T* object) : object_(object) {
        if (object_) object_->AddRef();
    }
    ComPtr(const ComPtr& other) : ComPtr(other.object_) {}
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ~ComPtr() { Reset(); }
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    void Reset() {
        if (T* old = std::exchange(object_, nullptr)) old->Release();
    }
    T* Get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // For out parameters: lets go what is held and gives the place for a new reference.
    T** Receive() {
        Reset();
        return &object_;
    }
    // Gives the reference to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(object_, nullptr); }

private:
    T* object_ = nullptr;
};

// Makes an object with one reference on it.
template <typename T, typename... Arguments>
ComPtr<T> MakeCom(Arguments&&... arguments) {
    return ComPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

// Asks `object` (may be null) for an interface; an empty pointer if it doesn't offer it.
template <typename T>
ComPtr<T> QueryFor(IUnknown* object, const GUID& id) {
    ComPtr<T> found;
    if (object) object->QueryInterface(id, reinterpret_cast<void**>(found.Receive()));
    return found;
}

// An identifier and the interface that answers to it. The pointer must be the interface's own.
struct InterfaceEntry {
    const GUID& Id;
    IUnknown* Interface;
};

// The four steps of QueryInterface: clear, look up, count, give.
inline HRESULT GiveInterface(const GUID& id, void** out, std::initializer_list<InterfaceEntry> table) {
    if (!out) return E_POINTER;
    *out = nullptr;
    for (const InterfaceEntry& entry : table) {
        if (entry.Id != id) continue;
        entry.Interface->AddRef();
        *out = entry.Interface;
        return S_OK;
    }
    return E_NOINTERFACE;
}

// An object that lives by its reference count. Derived classes add QueryInterface and the operations.
template <typename... Interfaces>
class ComObject : public Interfaces... {
public:
    ComObject() = default;
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    ULONG AddRef() override { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG Release() override {
        const ULONG count = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (count == 0) delete this;
        return count;
    }

protected:
    virtual ~ComObject() = default;
    ULONG Holders() const { return count_.load(std::memory_order_acquire); }

private:
    std::atomic<ULONG> count_{0};
};

}  // namespace tdkplay
