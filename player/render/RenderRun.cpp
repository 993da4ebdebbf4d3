#include "player/render/RenderRun.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "player/base/ExitCode.h"
#include "player/render/FfmpegPipe.h"
#include "player/render/PngFolder.h"
#include "player/render/RenderProgress.h"
#include "player/render/RenderTarget.h"
#include "player/render/Y4mWriter.h"
#include "player/settings/PrivateRegistry.h"
#include "player/sound/DemoPiece.h"
#include "player/sound/SilentOutput.h"

namespace tdkplay {
namespace {

constexpr uint32_t kUsualRate = 30;  // frames a second

Options WithFrameRate(Options options) {
    options.Picture.FrameRate = options.Picture.FrameRate.value_or(kUsualRate);
    return options;
}

uint64_t LimitOf(const Options& options, uint64_t rate) {
    if (!options.Duration) return std::numeric_limits<uint64_t>::max();
    return static_cast<uint64_t>(std::llround(*options.Duration * static_cast<double>(rate)));
}

// The middle of frame `index`, in milliseconds.
uint64_t MiddleOf(uint64_t index, uint64_t rate) {
    return (2 * index + 1) * 1000 / (2 * rate);
}

// The file with the sound of the video, empty for none.
std::string AudioFile(const Options& options, const std::string& file, const ScratchFolder& scratch) {
    if (!options.RenderAudio || !file.empty()) return options.RenderAudio ? file : "";
    const std::string demo = scratch.File("demo.wav");
    WriteDemoPiece(demo);
    return demo;
}

std::unique_ptr<FrameSink> OpenSink(const Options& options, const std::string& file, const VideoFormat& format,
                                    const ScratchFolder& scratch) {
    const RenderTarget target = RenderTarget::FromPath(options.Render).value_or(RenderTarget{});
    if (target.IsEncoded())
        return std::make_unique<FfmpegPipe>(target, format, AudioFile(options, file, scratch),
                                            scratch.File("ffmpeg.log"));
    if (target.Form == RenderTarget::Kind::kY4m) return std::make_unique<Y4mWriter>(target.Path, format);
    return std::make_unique<PngFolder>(target.Path);
}

}  // namespace

void RenderRun::Render(const Options& asked, const std::string& file, std::unique_ptr<Decoder> decoder,
                       const Interrupt& interrupt) {
    const Options options = WithFrameRate(asked);
    const PrivateRegistry registry;
    const ScratchFolder scratch;
    SteppedRun::Prepare(options);

    auto counted = std::make_unique<CountedDecoder>(std::move(decoder));
    const CountedDecoder& counter = *counted;
    Session session(options, std::move(counted), kSilentName);
    RenderRun run(options, session, counter, interrupt);
    const std::unique_ptr<FrameSink> sink = OpenSink(options, file, run.Format(), scratch);
    RenderProgress progress(options.Render, run.Format(), run.ExpectedFrames(), options.Json);
    const uint64_t frames = run.WriteFrames(*sink, progress);
    sink->Finish();
    progress.End(frames, interrupt.IsRequested());
    if (interrupt.IsRequested())
        throw PlayerError(ExitCode::kInterrupted,
                          "interrupted; " + options.Render + " has " + std::to_string(frames) + " frames");
}

RenderRun::RenderRun(const Options& options, Session& session, const CountedDecoder& decoder,
                     const Interrupt& interrupt)
    : decoder_(decoder),
      interrupt_(interrupt),
      format_{options.SizeOrUsual().Width, options.SizeOrUsual().Height, *options.Picture.FrameRate},
      soundRate_(decoder.Format().Rate),
      limit_(LimitOf(options, soundRate_)),
      run_(options, session, interrupt),
      window_(run_.AddViews(session.ShownPlugins())) {}

uint64_t RenderRun::ExpectedFrames() const {
    const uint64_t sound = std::min(decoder_.TotalFrames(), limit_);
    return (sound * format_.Rate + soundRate_ - 1) / soundRate_;
}

// The device is filled further ahead than half a frame, so the end is known in time.
bool RenderRun::BeginsWithin(uint64_t index) const {
    const uint64_t length = decoder_.IsAtEnd() ? std::min(decoder_.Frames(), limit_) : limit_;
    return length > std::numeric_limits<uint64_t>::max() / format_.Rate || index * soundRate_ < length * format_.Rate;
}

uint64_t RenderRun::WriteFrames(FrameSink& sink, RenderProgress& progress) {
    Picture picture;
    uint64_t frames = 0;
    run_.Play();
    for (;; ++frames) {
        run_.DeliverAhead();
        if (!BeginsWithin(frames)) return frames;
        run_.AdvanceTo(MiddleOf(frames, format_.Rate));
        if (interrupt_.IsRequested()) return frames;
        ReadWindow(window_, picture);
        sink.Write(picture);
        progress.Report(frames + 1);
    }
}

}  // namespace tdkplay
