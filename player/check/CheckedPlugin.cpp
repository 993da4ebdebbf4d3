#include "player/check/CheckedPlugin.h"

#include <cxxabi.h>
#include <dlfcn.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <thread>

#include "player/base/PictureSize.h"
#include "player/check/Findings.h"
#include "player/check/LibraryFault.h"
#include "player/check/ProcessState.h"
#include "player/check/SharedCalls.h"
#include "player/host/Values.h"

namespace tdkplay::check {
namespace {

constexpr int kBitsPerPixel = 32;
constexpr std::chrono::milliseconds kThreadPatience{100};

std::string ThrownType() {
    const std::type_info* const type = abi::__cxa_current_exception_type();
    if (!type) return "an exception";
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> readable(
        abi::__cxa_demangle(type->name(), nullptr, nullptr, &status), &std::free);
    return readable ? readable.get() : type->name();
}

MPAVizWindowRecord RecordOf(HWND window) {
    return {static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window)), {}};
}

// A negative result of any of the first calls fails the load.
void RequireSuccess(HRESULT result, const char* call) {
    if (SUCCEEDED(result)) return;
    std::array<char, 64> text = {};
    std::snprintf(text.data(), text.size(), "%s gives 0x%08X", call, static_cast<unsigned>(result));
    throw ContractFault(text.data());
}

// A buffer of GetInfo with a text in it, as long as the contract says and no longer.
class TextRoom {
public:
    TextRoom(const char* name, const std::string& before) : Room(name, kPluginTextSize, Against::kEnd) {
        before.copy(Get(), kPluginTextSize - 1);
    }
    char* Get() { return reinterpret_cast<char*>(Room.Data()); }
    std::string Text() { return {Get(), strnlen(Get(), kPluginTextSize)}; }

    GuardedBuffer Room;
};

}  // namespace

void CallPlugin(const std::string& name, const std::function<void()>& call) {
    const CallScope scope(name.c_str());
    try {
        call();
    } catch (const std::exception& error) {
        throw ContractFault("threw " + ThrownType() + " (" + error.what() + ") from " + name);
    } catch (...) {
        throw ContractFault("threw " + ThrownType() + " from " + name);
    }
}

PluginLibrary::PluginLibrary(const std::string& path) : path_(path), threadsBefore_(OtherThreads().size()) {
    CallPlugin("the load of the library", [&] { module_ = LoadLibraryA(path.c_str()); });
    if (!module_) throw ContractFault("doesn't load: " + WhyItDoesNotLoad(path));
}

PluginLibrary::~PluginLibrary() {
    if (module_) Free();
}

bool PluginLibrary::Free() {
    const auto limit = std::chrono::steady_clock::now() + kThreadPatience;
    while (OtherThreads().size() > threadsBefore_) {
        if (std::chrono::steady_clock::now() > limit) {
            module_ = nullptr;
            return false;
        }
        std::this_thread::yield();
    }
    CallPlugin("the end of the library", [&] { FreeLibrary(module_); });
    module_ = nullptr;
    void* const still = dlopen(path_.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (still) dlclose(still);
    return !still;
}

MPACreateVisualizationFunction PluginLibrary::Factory() const {
    return reinterpret_cast<MPACreateVisualizationFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_, kPluginFactoryName)));
}

ComPtr<IUnknown> PluginLibrary::Make() const {
    const MPACreateVisualizationFunction factory = Factory();
    if (!factory) throw ContractFault(std::string("doesn't export ") + kPluginFactoryName);
    ComPtr<IUnknown> object;
    HRESULT result = S_OK;
    CallPlugin(kPluginFactoryName, [&] { result = factory(object.Receive()); });
    RequireSuccess(result, kPluginFactoryName);
    if (!object) throw ContractFault(std::string(kPluginFactoryName) + " says that it worked and gives no object");
    return object;
}

CheckedPlugin::CheckedPlugin(const PluginLibrary& library, IUnknown* context, IKVAPreferences* preferences) {
    ComPtr<IUnknown> object = library.Make();
    CallPlugin("QueryInterface", [&] {
        two_ = QueryFor<IMPAVisualization2>(object.Get(), kIID_IMPAVisualization2);
        if (!two_) one_ = QueryFor<IMPAVisualization>(object.Get(), kIID_IMPAVisualization);
    });
    if (!two_ && !one_) throw ContractFault("the object offers neither IMPAVisualization2 nor IMPAVisualization");
    Initialize(context);
    says_ = Describe("");
    AskCapabilities();
    if (one_) CallPlugin("SetHostString", [&] { one_->SetHostString(""); });
    if (two_ && preferences) CallPlugin("SetPreferences", [&] { two_->SetPreferences(preferences); });
    CallPlugin("Release", [&] { object.Reset(); });
}

CheckedPlugin::~CheckedPlugin() {
    try {
        End();
    } catch (const ContractFault&) {
        // Whoever wants to know calls End.
    }
}

void CheckedPlugin::Initialize(IUnknown* context) {
    HRESULT result = S_OK;
    CallPlugin("Initialize", [&] { result = two_ ? two_->Initialize(context) : one_->Initialize(context); });
    RequireSuccess(result, "Initialize");
}

PluginDescription CheckedPlugin::Describe(const std::string& before) {
    TextRoom name("the name's buffer", before);
    TextRoom creator("the creator's buffer", before);
    TextRoom description("the description's buffer", before);
    HRESULT result = S_OK;
    CallPlugin("GetInfo", [&] {
        result = two_ ? two_->GetInfo(name.Get(), creator.Get(), description.Get())
                      : one_->GetInfo(name.Get(), creator.Get(), description.Get());
    });
    RequireSuccess(result, "GetInfo");
    PluginDescription texts = says_;
    texts.Name = name.Text();
    texts.Creator = creator.Text();
    texts.Description = description.Text();
    for (TextRoom* text : {&name, &creator, &description}) NoteTouched(text->Room, "GetInfo");
    return texts;
}

void CheckedPlugin::AskCapabilities() {
    GuardedBuffer maskRoom("the effect mask", sizeof(uint32_t), Against::kEnd);
    GuardedBuffer wishRoom("the byte for wantsSpectrum", sizeof(bool), Against::kEnd);
    auto* const mask = reinterpret_cast<uint32_t*>(maskRoom.Data());
    *mask = kEffectsAll;
    const auto bag = MakeCom<Values>();
    HRESULT result = S_OK;
    CallPlugin("GetCapabilities", [&] {
        auto* const wish = reinterpret_cast<bool*>(wishRoom.Data());
        result = two_ ? two_->GetCapabilities(mask, wish, bag.Get()) : one_->GetCapabilities(mask, wish, bag.Get());
    });
    RequireSuccess(result, "GetCapabilities");
    NoteTouched(maskRoom, "GetCapabilities");
    NoteTouched(wishRoom, "GetCapabilities");
    says_.EffectMask = *mask;
    says_.WantsSpectrum = *wishRoom.Data();
    bag->GetNumber(kPropertyRenderMode, &says_.RenderMode);
    bag->GetNumber(kPropertySupportConfigure, &says_.SupportConfigure);
}

void CheckedPlugin::NoteTouched(GuardedBuffer& buffer, const char* call) {
    const std::string touched = buffer.TakeTouched();
    if (!touched.empty()) touched_ = touched + ", in " + call;
}

void CheckedPlugin::SetActive(bool active) {
    if (two_) CallPlugin(active ? "SetActive(1)" : "SetActive(0)", [&] { two_->SetActive(active ? 1 : 0); });
}

void CheckedPlugin::OnClick(uint32_t x, uint32_t y) {
    CallPlugin("OnClick", [&] { two_ ? two_->OnClick(x, y, 0) : one_->OnClick(x, y, 0); });
}

void CheckedPlugin::Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, VizAnalysisFrame* frame) {
    CallPlugin("Draw " + PictureSize{width, height}.Text(), [&] {
        two_ ? two_->Draw(pixels, width, height, pitch, kBitsPerPixel, frame)
             : one_->Draw(pixels, width, height, pitch, kBitsPerPixel, frame);
    });
}

void CheckedPlugin::SetWindow(HWND window) {
    if (!two_) return;
    MPAVizWindowRecord record = RecordOf(window);
    CallPlugin(window ? "SetWindow" : "SetWindow(0)", [&] { two_->SetWindow(&record); });
}

void CheckedPlugin::DrawToWindow(HWND window, VizAnalysisFrame* frame) {
    if (!two_) return;
    MPAVizWindowRecord record = RecordOf(window);
    CallPlugin("DrawToWindow", [&] { two_->DrawToWindow(&record, frame); });
}

HRESULT CheckedPlugin::Configure(HWND parent) {
    MPAVizWindowRecord record = RecordOf(parent);
    HRESULT result = S_OK;
    CallPlugin("Configure", [&] { result = two_ ? two_->Configure(&record) : one_->Configure(parent); });
    return result;
}

void CheckedPlugin::End() {
    if (two_) {
        SetActive(false);
        if (DrawsToWindow()) SetWindow(nullptr);
        ComPtr<IMPAVisualizationClose> close;
        CallPlugin("QueryInterface",
                   [&] { close = QueryFor<IMPAVisualizationClose>(two_.Get(), kIID_IMPAVisualizationClose); });
        if (close) CallPlugin("Close", [&] { close->Close(); });
        CallPlugin("Release", [&] { close.Reset(); });
    }
    CallPlugin("the last Release", [&] {
        two_.Reset();
        one_.Reset();
    });
}

}  // namespace tdkplay::check
