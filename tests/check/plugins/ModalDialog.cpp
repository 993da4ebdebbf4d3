// Its Configure comes back when its window has been closed.
#include <windows.h>

#include "tests/check/plugins/GoodPlugin.h"

class ModalDialog final : public GoodPlugin {
    HRESULT GetCapabilities(uint32_t*, bool*, IKVAValues* properties) override {
        return properties->SetNumber(kPropertySupportConfigure, 1);
    }
    HRESULT Configure(MPAVizWindowRecord*) override {
        const HWND window = CreateWindowExA(0, "Static", "Settings", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 80,
                                            nullptr, nullptr, nullptr, nullptr);
        MSG message;
        while (IsWindow(window) && GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
        return S_OK;
    }
};

EXPORT_PLUGIN(ModalDialog)
