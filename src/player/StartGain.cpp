#include "player/StartGain.h"

#include "audio/analysis/TrackAnalysis.h"

#include <algorithm>

namespace quorel {

namespace {

constexpr double kUnknownGain = 0.501187; // -6 dB

QStringView folderOf(const Track& track) {
    return QStringView(track.path).first(track.path.lastIndexOf(u'/') + 1);
}

std::optional<double> knownGain(const Track& track) {
    if (!track.peakLinear || !track.rmsLinear)
        return std::nullopt;
    return normalisationGain(*track.peakLinear, *track.rmsLinear);
}

} // namespace

double startGain(const AppSettings& settings, const Track& track, const TrackList& list) {
    if (!settings.normalize)
        return 1;
    if (const auto gain = knownGain(track))
        return *gain;
    const QStringView folder = folderOf(track);
    std::vector<double> gains;
    for (const Track& other : list.tracks())
        if (const auto gain = other.peakLinear ? knownGain(other) : std::nullopt;
            gain && folderOf(other) == folder)
            gains.push_back(*gain);
    if (gains.empty())
        return kUnknownGain;
    const auto middle = gains.begin() + std::ptrdiff_t(gains.size() / 2);
    std::ranges::nth_element(gains, middle);
    return *middle;
}

} // namespace quorel
