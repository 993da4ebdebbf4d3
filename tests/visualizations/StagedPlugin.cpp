#include "tests/visualizations/StagedPlugin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "player/sound/DemoPiece.h"
#include "src/audio/SpectrumAnalyser.h"
#include "tests/staged/TestBag.h"

namespace tdkviz::test {
namespace {

VizAnalysisFrame FrameOf(const int16_t* stereo) {
    VizAnalysisFrame frame = {};
    frame.ChannelCount = 2;
    frame.SampleRateLow = 44100;
    for (const bool right : {false, true}) {
        int16_t samples[kWaveformSamples];
        for (int i = 0; i < kWaveformSamples; ++i) {
            samples[i] = stereo[2 * i + right];
            (right ? frame.WaveformRight : frame.WaveformLeft)[i] = static_cast<int8_t>(samples[i] >> 8);
        }
        CSpectrumAnalyser analyser;
        analyser.Analyse(samples, kWaveformSamples, frame.SampleRateLow);
        const int32_t* bands = analyser.GetSpectrum();
        std::copy_n(bands, kSpectrumBands, right ? frame.SpectrumRight : frame.SpectrumLeft);
    }
    return frame;
}

}  // namespace

std::vector<std::string> StagedPlugins() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(STAGE_DIR "/Visualizations")) {
        if (entry.path().extension() == ".tkv") names.push_back(entry.path().stem());
    }
    std::sort(names.begin(), names.end());
    return names;
}

const std::vector<VizAnalysisFrame>& DemoFrames() {
    static const std::vector<VizAnalysisFrame> frames = [] {
        const std::vector<int16_t> piece = tdkplay::MakeDemoPiece();
        std::vector<VizAnalysisFrame> made;
        constexpr size_t kStep = 44100 / kFramesPerSecond * 2;
        for (size_t at = 0; at + 2 * kWaveformSamples <= piece.size(); at += kStep) made.push_back(FrameOf(&piece[at]));
        return made;
    }();
    return frames;
}

StagedPlugin::StagedPlugin(const std::string& name, IKVAPreferences* preferences) {
    library_ = LoadLibraryA((STAGE_DIR "/Visualizations/" + name + ".tkv").c_str());
    const auto create = reinterpret_cast<MPACreateVisualizationFunction>(
        reinterpret_cast<void*>(GetProcAddress(library_, kPluginFactoryName)));
    IUnknown* object = nullptr;
    if (!create || create(&object) != S_OK) return;
    void* found = nullptr;
    if (object->QueryInterface(kIID_IMPAVisualization2, &found) == S_OK) {
        two_ = static_cast<IMPAVisualization2*>(found);
        Describe(*two_);
        EXPECT_EQ(two_->SetPreferences(preferences), S_OK);
        two_->SetActive(1);
    } else if (object->QueryInterface(kIID_IMPAVisualization, &found) == S_OK) {
        one_ = static_cast<IMPAVisualization*>(found);
        Describe(*one_);
        EXPECT_EQ(one_->SetHostString(""), S_OK);
    }
    object->Release();
}

template <typename Interface>
void StagedPlugin::Describe(Interface& plugin) {
    char texts[3][kPluginTextSize] = {};
    bool wantsSpectrum = false;
    TestBag bag;
    EXPECT_EQ(plugin.Initialize(nullptr), S_OK);
    EXPECT_EQ(plugin.GetInfo(texts[0], texts[1], texts[2]), S_OK);
    for (const char* text : texts) EXPECT_NE(*text, 0);
    EXPECT_EQ(plugin.GetCapabilities(&effectMask_, &wantsSpectrum, &bag), S_OK);
    bag.GetNumber(kPropertyRenderMode, &renderMode_);
    bag.GetNumber(kPropertySupportConfigure, &supportsConfigure_);
}

StagedPlugin::~StagedPlugin() {
    if (one_) {
        EXPECT_EQ(one_->Release(), 0u);
    }
    if (two_) {
        MPAVizWindowRecord none = {};
        two_->SetActive(0);
        if (DrawsToWindow()) two_->SetWindow(&none);
        void* close = nullptr;
        if (two_->QueryInterface(kIID_IMPAVisualizationClose, &close) == S_OK) {
            static_cast<IMPAVisualizationClose*>(close)->Close();
            static_cast<IMPAVisualizationClose*>(close)->Release();
        }
        EXPECT_EQ(two_->Release(), 0u);
    }
    FreeLibrary(library_);
}

void StagedPlugin::Draw(void* pixels, int width, int height, int pitch, const VizAnalysisFrame& frame) {
    VizAnalysisFrame heard = frame;
    if (two_) two_->Draw(pixels, width, height, pitch, 32, &heard);
    if (one_) one_->Draw(pixels, width, height, pitch, 32, &heard);
}

void StagedPlugin::DrawTo(HWND window, const VizAnalysisFrame& frame) {
    VizAnalysisFrame heard = frame;
    MPAVizWindowRecord record = {static_cast<uint32_t>(reinterpret_cast<uintptr_t>(window)), {}};
    two_->DrawToWindow(&record, &heard);
}

}  // namespace tdkviz::test
