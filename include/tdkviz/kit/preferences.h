// Small numbers that a plug-in keeps between runs, as text in IKVAPreferences.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>

#include <tdkviz/values.h>

namespace viz {

// A buffer of text for the length of one WriteValue; it lives on the stack and is not counted.
class TextBuffer final : public IKVABuffer {
public:
    explicit TextBuffer(std::string text) : text_(std::move(text)) {}

    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = id == kIID_IUnknown || id == kIID_IKVABuffer ? this : nullptr;
        return *out ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT GetContents(void** data, uint32_t* size) override {
        *data = GetBuffer();
        *size = GetSize();
        return S_OK;
    }
    HRESULT SetContents(const void*, uint32_t) override { return kBufferIsShared; }
    HRESULT SetSize(uint32_t) override { return kBufferIsShared; }
    uint32_t GetSize() override { return static_cast<uint32_t>(text_.size() + 1); }
    void* GetBuffer() override { return text_.data(); }

private:
    std::string text_;
};

// Holds a reference on the preferences. Without any, everything reads as its default.
class Preferences {
public:
    explicit Preferences(IKVAPreferences* object = nullptr) : object_(object) {
        if (object_) object_->AddRef();
    }
    Preferences(Preferences&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Preferences& operator=(Preferences&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Preferences() {
        if (object_) object_->Release();
    }

    // `usual` if nothing is stored or it isn't below `end`.
    uint32_t Read(const char* name, uint32_t usual, size_t end) const {
        IKVABuffer* text = nullptr;
        if (!object_ || FAILED(object_->ReadValue(name, &text)) || !text) return usual;
        char* rest = nullptr;
        const char* from = static_cast<const char*>(text->GetBuffer());
        const unsigned long value = std::strtoul(from, &rest, 10);
        const bool good = rest != from && value < end;
        text->Release();
        return good ? static_cast<uint32_t>(value) : usual;
    }
    // Stored at once. [any]
    void Write(const char* name, uint32_t value) const {
        TextBuffer text(std::to_string(value));
        if (object_) object_->WriteValue(name, &text);
    }

private:
    IKVAPreferences* object_;
};

}  // namespace viz
