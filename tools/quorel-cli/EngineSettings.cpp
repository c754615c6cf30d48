#include "tools/quorel-cli/EngineSettings.h"

#include "model/Json.h"
#include "tools/quorel-cli/OpenTrack.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace quorel::cli {

ReadSettings readSettings(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file || text.empty()) {
        return {{}, aboutFile(path, QStringLiteral("no settings can be read there"))};
    }
    const auto settings = fromJson<AppSettings>(QByteArray::fromStdString(text));
    if (!settings) {
        return {{}, aboutFile(path, QStringLiteral("is not a JSON record of settings"))};
    }
    return {*settings, {}};
}

void applySettings(AudioEngine& engine, const AppSettings& settings) {
    engine.setVolume(settings.isMuted ? 0.0 : std::clamp(settings.volume, 0.0, 1.0));
    engine.setPan(std::clamp(settings.pan, -1.0, 1.0));
    for (int band = 0; band < std::min<int>(kEqBands, settings.eqGains.size()); ++band) {
        engine.setEQGain(band, static_cast<float>(settings.eqGains[band]));
    }
    engine.setEqEnabled(settings.eqOn);
    engine.setCompressor(settings.compOn, settings.compPreset);
    engine.setLoudness(settings.loudness, settings.volume, settings.loudnessStrength);
    engine.gaplessEnabled = settings.gapless;
}

} // namespace quorel::cli
