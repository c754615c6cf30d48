#include "audio/rt/Renderer.h"

#include "audio/rt/DenormalGuard.h"

#include <algorithm>
#include <cmath>

namespace quorel::rt {

void Renderer::prepare(const Format& format) {
    format_ = format;
    nodes_.graph.stop();
    nodes_.graph.prepare(format, nodes_.mainMixer);
    nodes_.graph.start();
    for (Source* source :
         {nodes_.player.exchange(nullptr), nodes_.player.takeLeft(), next_, sources_.take()}) {
        if (source) {
            sources_.giveBack(source);
        }
    }
    next_ = nullptr;
    applied_ = {}; // everything is to be applied anew
    fadeLeft_ = 0;
    pausedByFade_ = false;
    silentFrames_ = latencyFrames();
    report_ = {};
    reports_.write(report_);
}

bool Renderer::isSilent() const noexcept {
    return nodes_.player.isHalted() && silentFrames_ >= latencyFrames();
}

int Renderer::framesOf(double seconds) const noexcept {
    return static_cast<int>(std::lround(seconds * format_.sampleRate));
}

void Renderer::render(float* interleaved, int frames) noexcept {
    const DenormalGuard guard;
    receiveSource();
    const RenderParameters& wanted = parameters_.read();
    while (frames > 0) {
        switchSourceWhenReady();
        if (wanted.serial != applied_.serial && wanted.epoch == report_.epoch) {
            apply(wanted);
        }
        const int count = std::min({frames, kMaxBlockFrames, framesToNextEvent()});
        renderBlock(interleaved, count);
        account(count);
        interleaved += static_cast<std::ptrdiff_t>(count) * format_.channels();
        frames -= count;
    }
    reports_.write(report_);
}

void Renderer::receiveSource() noexcept {
    if (Source* source = sources_.take()) {
        if (next_) {
            sources_.giveBack(next_);
        }
        next_ = source;
        crossToNext();
        if (next_) {
            nodes_.player.pause();
        }
    }
}

// A seek inside the music goes over at once; everything else begins after the old sound has ended,
// because its parameters are its own.
void Renderer::crossToNext() noexcept {
    if (next_->softStart && nodes_.player.isPlaying() && !nodes_.player.isCrossing() &&
        next_->primed.load(std::memory_order_acquire)) {
        nodes_.player.crossTo(next_);
        beginEpoch();
    }
}

void Renderer::beginEpoch() noexcept {
    report_.epoch = next_->epoch;
    report_.runCount = 0;
    next_ = nullptr;
}

// The old source has to be silent all through the chain before the new one begins, so that neither
// its end nor a parameter that is set at once can click.
void Renderer::switchSourceWhenReady() noexcept {
    if (!next_ || !isSilent() || !next_->primed.load(std::memory_order_acquire)) {
        return;
    }
    if (Source* old = nodes_.player.exchange(next_)) {
        sources_.giveBack(old);
    }
    beginEpoch();
}

void Renderer::apply(const RenderParameters& wanted) noexcept {
    if (wanted.fade.id != applied_.fade.id) {
        applyFade(wanted.fade);
    }
    if (wanted.norm.id != applied_.norm.id) {
        applyNorm(wanted.norm);
    }
    applyGains(nodes_.eq, wanted.eq, applied_.eq);
    applyGains(nodes_.loudEQ, wanted.loud, applied_.loud);
    if (wanted.comp != applied_.comp) {
        nodes_.comp.setParameters(wanted.comp);
    }
    nodes_.comp.setBypass(wanted.compBypass);
    nodes_.mainMixer.glideVolume(wanted.volume);
    nodes_.mainMixer.setPan(wanted.pan);
    if (isSilent()) { // no need to glide, and nothing of what sounded before is to be heard
        nodes_.eq.reset();
        nodes_.loudEQ.reset();
        nodes_.comp.reset();
        nodes_.limiter.reset();
        nodes_.mainMixer.reset();
    }
    applyTransport(wanted.playing);
    applied_ = wanted;
}

void Renderer::applyFade(const FadeCommand& fade) noexcept {
    Mixer& gain = nodes_.outputGain;
    const bool silent = isSilent();
    if (fade.fromSilence && silent) {
        gain.setVolume(0.0F);
    }
    const int frames = fade.steps * framesOf(fade.stepSeconds);
    if (frames > 0) {
        gain.rampVolume(fade.target, frames, Shape::Linear);
    } else if (silent) {
        gain.setVolume(fade.target);
    } else {
        gain.glideVolume(fade.target);
    }
    fadeLeft_ = fade.thenPause ? frames : 0;
    pausedByFade_ = false;
}

void Renderer::applyNorm(const GainsCommand<1>& norm) noexcept {
    EqUnit& unit = nodes_.normUnit;
    if (!norm.bypass) {
        unit.setBypass(false); // a bypassed unit does not ramp
    }
    unit.rampGlobalGain(norm.db[0], std::max(norm.steps, 1),
                        framesOf(norm.steps > 0 ? norm.stepSeconds : PlayerNode::kEdgeSeconds));
    unit.setBypass(norm.bypass);
    if (norm.steps == 0 && isSilent()) {
        unit.reset(); // nothing sounds, so the next track begins at its own level
    }
}

template <std::size_t N>
void Renderer::applyGains(EqUnit& unit, const GainsCommand<N>& wanted,
                          const GainsCommand<N>& applied) noexcept {
    if (wanted.bypass != applied.bypass) {
        unit.setBypass(wanted.bypass);
    }
    if (wanted.id == applied.id) {
        return;
    }
    if (wanted.steps > 0) {
        unit.rampGains(wanted.db, wanted.steps, framesOf(wanted.stepSeconds));
    } else {
        unit.setGains(wanted.db);
    }
}

void Renderer::applyTransport(bool playing) noexcept {
    PlayerNode& player = nodes_.player;
    const bool wanted = playing && !pausedByFade_;
    if (wanted && !player.isPlaying() && player.source()) {
        const bool insideMusic =
            player.source()->softStart || player.source()->ring.readPosition() > 0;
        player.play(insideMusic);
    } else if (!wanted) {
        player.pause();
    }
}

// Blocks end where the player has to stop taking frames.
int Renderer::framesToNextEvent() const noexcept {
    int frames = kMaxBlockFrames;
    if (fadeLeft_ > 0) {
        frames = std::min(frames, fadeLeft_);
    }
    if (const int toHalt = nodes_.player.framesToHalt(); toHalt > 0) {
        frames = std::min(frames, toHalt);
    }
    if (next_ && nodes_.player.isHalted() && silentFrames_ < latencyFrames()) {
        frames = std::min(frames, latencyFrames() - static_cast<int>(silentFrames_));
    }
    return frames;
}

void Renderer::renderBlock(float* interleaved, int frames) noexcept {
    const int channels = format_.channels();
    Block block;
    block.pairs = (channels + 1) / 2;
    block.frames = frames;
    for (std::size_t pair = 0; pair < static_cast<std::size_t>(block.pairs); ++pair) {
        block.pair[pair] = channels == 2 ? interleaved : scratch_[pair].data();
    }
    nodes_.graph.process(block);
    if (channels == 2) {
        return;
    }
    for (int channel = 0; channel < channels; ++channel) {
        const float* in = block.pair[static_cast<std::size_t>(channel / 2)] + channel % 2;
        float* out = interleaved + channel;
        for (int i = 0; i < frames; ++i) {
            out[static_cast<std::ptrdiff_t>(i) * channels] = in[2 * i];
        }
    }
}

void Renderer::account(int frames) noexcept {
    PlayerNode& player = nodes_.player;
    if (Source* left = player.takeLeft()) {
        sources_.giveBack(left);
    }
    if (const int taken = player.taken(); taken > 0) {
        RenderedRun* run = report_.runCount == 0
                               ? nullptr
                               : &report_.runs[(report_.runCount - 1) % RenderReport::kRuns];
        if (!run || run->device + run->frames != report_.frames) {
            run = &report_.runs[report_.runCount++ % RenderReport::kRuns];
            *run = {report_.frames, player.position(), 0};
        }
        run->frames += taken;
        report_.musicEnd = report_.frames + taken + latencyFrames();
        silentFrames_ = frames - taken;
    } else {
        silentFrames_ += frames;
    }
    report_.frames += frames;
    report_.underruns = player.underruns();
    report_.silent = silentFrames_ >= latencyFrames();
    if (fadeLeft_ > 0) {
        fadeLeft_ -= frames;
        if (fadeLeft_ == 0) {
            nodes_.player.halt();
            pausedByFade_ = true;
        }
    }
}

} // namespace quorel::rt
