#include "player/host/AddOn.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "player/base/ExitCode.h"
#include "player/base/SettingsKey.h"
#include "player/host/Values.h"

namespace tdkplay {
namespace {

constexpr char kAddOnFile[] = "tdkviz.so";
constexpr char kCodecsFolder[] = "Codecs";
constexpr char kEffectsSetting[] = "VizOn";

// The path block: where the add-on's companions lie.
std::string PathBlock(const std::string& folder) {
    std::string block;
    const auto add = [&block](const std::string& entry) { block.append(entry).push_back('\0'); };
    add("DT_Common=" + folder);
    add("DT_Plugins=" + folder);
    add("DT_Codecs=" + folder + "/" + kCodecsFolder);
    block.push_back('\0');
    return block;
}

template <typename Function>
Function FindExport(HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

bool HasStoredEffectsSetting() {
    try {
        return SettingsKey::OpenToRead(kAddOnKey).Find(kEffectsSetting).has_value();
    } catch (const PlayerError&) {
        return false;  // the pictures need no registry
    }
}

std::vector<std::pair<const char*, uint32_t>> NumbersOf(const PictureSettings& settings) {
    std::vector<std::pair<const char*, uint32_t>> numbers;
    if (settings.FrameRate) numbers.emplace_back(kConfigFrameRate, *settings.FrameRate);
    if (settings.Effects) numbers.emplace_back(kConfigEffects, *settings.Effects ? 1 : 0);
    if (settings.Randomize) numbers.emplace_back(kConfigRandomize, *settings.Randomize ? 1 : 0);
    return numbers;
}

}  // namespace

std::string OwnFolder() {
    std::error_code error;
    const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "." : file.parent_path().string();
}

AddOn::AddOn(const std::string& folder, HostContext& context) {
    // A first run shows the effects; after that the user's own choice counts.
    const bool isFirstRun = !HasStoredEffectsSetting();
    Start(folder, context);
    configuration_ = QueryFor<IMPAAdvancedConfiguration>(manager_.Get(), kIID_IMPAAdvancedConfiguration);
    if (isFirstRun) Change({{}, true, {}});
}

void AddOn::Start(const std::string& folder, HostContext& context) {
    const std::string path = folder + "/" + kAddOnFile;
    library_.reset(LoadLibraryA(path.c_str()));
    if (!library_) throw PlayerError(ExitCode::kNoAddOn, path + ": can't be loaded");
    const auto create = FindExport<TKCreateInstanceFunction>(library_.get(), kCreateInstanceName);
    if (const auto setPaths = FindExport<SetDLLAccessPathFunction>(library_.get(), kSetDLLAccessPathName))
        setPaths(PathBlock(folder).c_str());

    ComPtr<IUnknown> object;
    if (!create || FAILED(create(object.Receive())))
        throw PlayerError(ExitCode::kNoAddOn, path + ": makes no component");
    component_ = QueryFor<ITKCommandButton>(object.Get(), kIID_ITKCommandButton);
    if (component_) component_->Initialize(&context);
    manager_ = QueryFor<IMPAVizMgr>(component_.Get(), kIID_IMPAVizMgr);
    if (!manager_) throw PlayerError(ExitCode::kNoAddOn, path + ": isn't a visualization add-on");
}

// The manager goes with Shutdown whatever its count says, so its interfaces are let go before that.
AddOn::~AddOn() {
    RestoreConfiguration();
    configuration_.Reset();
    manager_.Reset();
    if (component_) component_->Shutdown();
    component_.Reset();
}

void AddOn::Configure(const PictureSettings& settings) {
    ComPtr<IKVAValues> before;
    if (!configuration_ || FAILED(configuration_->GetConfiguration(before.Receive()))) return;
    for (const auto& [key, value] : NumbersOf(settings)) {
        uint32_t old = value;
        before->GetNumber(key, &old);
        if (old != value) overridden_.push_back({key, old, value});
    }
    Change(settings);
}

PictureSettings AddOn::Picture() const {
    ComPtr<IKVAValues> values;
    if (!configuration_ || FAILED(configuration_->GetConfiguration(values.Receive()))) return {};
    const auto number = [&values](const char* key) {
        uint32_t value = 0;
        return SUCCEEDED(values->GetNumber(key, &value)) ? std::optional(value) : std::nullopt;
    };
    const auto flag = [&number](const char* key) { return number(key).value_or(0) != 0; };
    return {number(kConfigFrameRate), flag(kConfigEffects), flag(kConfigRandomize)};
}

void AddOn::Change(const PictureSettings& settings) {
    if (!configuration_) return;
    const auto values = MakeCom<Values>();
    for (const auto& [key, value] : NumbersOf(settings)) values->SetNumber(key, value);
    configuration_->SetConfiguration(values.Get());
}

void AddOn::RestoreConfiguration() {
    ComPtr<IKVAValues> now;
    if (overridden_.empty() || FAILED(configuration_->GetConfiguration(now.Receive()))) return;
    const auto restored = MakeCom<Values>();
    for (const Override& each : overridden_) {
        uint32_t current = 0;
        now->GetNumber(each.Key, &current);
        if (current == each.Put) restored->SetNumber(each.Key, each.Before);
    }
    configuration_->SetConfiguration(restored.Get());
}

void AddOn::AnnounceTrack() {
    if (const auto observer = QueryFor<ITKTrackObserver>(manager_.Get(), kIID_ITKTrackObserver))
        observer->OnTrackChange(nullptr);
}

}  // namespace tdkplay
