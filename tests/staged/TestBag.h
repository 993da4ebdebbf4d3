// A bag of values of the host's own: numbers alone, without iteration.
#pragma once

#include <map>
#include <string>

#include <tdkviz/values.h>

#include "tests/support/TestObjects.h"

namespace tdkviz::test {

class TestBag final : public HeapObject<IKVAValues> {
public:
    IUnknown* Find(const GUID& id) override { return id == kIID_IUnknown || id == kIID_IKVAValues ? this : nullptr; }
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
    HRESULT SetTextValue(const char*, IKVABuffer*) override { return E_FAIL; }
    HRESULT GetTextValue(const char*, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetFirstNumber(const char**, uint32_t*) override { return E_FAIL; }
    HRESULT GetNextNumber(const char**, uint32_t*) override { return E_FAIL; }
    HRESULT SetBufferValue(const char*, IKVABuffer*) override { return E_FAIL; }
    HRESULT GetBufferValue(const char*, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetFirstBufferValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetNextBufferValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetFirstTextValue(const char**, IKVABuffer**) override { return E_FAIL; }
    HRESULT GetNextTextValue(const char**, IKVABuffer**) override { return E_FAIL; }

private:
    std::map<std::string, uint32_t> numbers_;
};

}  // namespace tdkviz::test
