// A bag of values of the host's own: numbers and texts, without iteration.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include <tdkviz/values.h>

namespace tdkviz::test {

class TestBag final : public IKVAValues {
public:
    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = nullptr;
        if (id != kIID_IUnknown && id != kIID_IKVAValues) return E_NOINTERFACE;
        *out = this;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references_; }
    ULONG Release() override {
        const ULONG count = --references_;
        if (count == 0) delete this;
        return count;
    }
    HRESULT SetNumber(const char* key, uint32_t value) override {
        numbers_[key] = value;
        return S_OK;
    }
    HRESULT GetNumber(const char* key, uint32_t* value) override {
        const auto found = numbers_.find(key);
        if (found == numbers_.end()) return E_FAIL;
        *value = found->second;
        return S_OK;
    }
    HRESULT SetTextValue(const char* key, IKVABuffer* text) override {
        text->AddRef();
        texts_[key] = text;
        return S_OK;
    }
    HRESULT GetTextValue(const char* key, IKVABuffer** text) override {
        const auto found = texts_.find(key);
        if (found == texts_.end()) return E_FAIL;
        found->second->AddRef();
        *text = found->second;
        return S_OK;
    }
    HRESULT GetFirstNumber(const char**, uint32_t*) override { return E_FAIL; }
    HRESULT GetNextNumber(const char**, uint32_t*) override { return E_FAIL; }
    HRESULT SetBufferValue(const char*, IKVABuffer*) override { return E_FAIL; }
    HRESULT GetBufferValue(const char*, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetFirstBufferValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetNextBufferValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetFirstTextValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetNextTextValue(const char**, IKVABuffer**) override { return E_FAIL; }

private:
    ~TestBag() {
        for (auto& [key, text] : texts_) text->Release();
    }

    std::atomic<ULONG> references_{1};
    std::map<std::string, uint32_t> numbers_;
    std::map<std::string, IKVABuffer*> texts_;
};

}  // namespace tdkviz::test
