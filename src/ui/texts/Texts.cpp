#include "ui/texts/Texts.h"

#include "model/Path.h"
#include "model/TimeText.h"

#include <algorithm>
#include <cmath>

namespace quorel {

namespace {

bool isControl(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

/// Tags may hold line breaks and worse; a line shows blanks for them.
QString onOneLine(QString text) {
    if (std::any_of(text.cbegin(), text.cend(), isControl))
        std::replace_if(text.begin(), text.end(), isControl, u' ');
    return text;
}

/// Whether it could turn round what stands behind it.
bool isDirected(QChar c) {
    switch (c.direction()) {
    case QChar::DirR:
    case QChar::DirAL:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirRLI:
    case QChar::DirLRO:
    case QChar::DirFSI:
        return true;
    default:
        return c.isSurrogate(); // some scripts there are written from the right
    }
}

} // namespace

QString titleText(const Track& track) {
    return onOneLine(track.title.isEmpty() ? pathForDisplay(baseName(track.path).toString())
                                           : track.title);
}

QString rowLabel(const Track& track) {
    const QString title = titleText(track);
    return track.artist.isEmpty() ? title : onOneLine(track.artist) + QStringLiteral(" - ") + title;
}

QString isolated(const QString& text) {
    if (std::none_of(text.cbegin(), text.cend(), isDirected))
        return text;
    return QChar(0x2068) + text + QChar(0x2069); // first strong isolate, and its end
}

QString marqueeText(const Track* playing, double duration) {
    if (!playing)
        return QStringLiteral("Quorel");
    const QString label = isolated(rowLabel(*playing));
    return duration > 0 ? QStringLiteral("%1 (%2)").arg(label, formatTime(duration)) : label;
}

QString timeText(bool isLoaded, bool remaining, double currentTime, double duration) {
    if (!isLoaded)
        return QStringLiteral("0:00");
    if (remaining)
        return u'-' + formatTime(std::max(duration - currentTime, 0.0));
    return formatTime(currentTime);
}

QString formatInfoText(const Track& track) {
    QStringList parts;
    if (const QStringView format = extension(track.path); !format.isEmpty())
        parts += pathForDisplay(format.toString()).toUpper();
    if (track.bitrateKbps)
        parts += QStringLiteral("%1 kbps").arg(*track.bitrateKbps);
    if (track.sampleRateHz) {
        const qint64 rate = *track.sampleRateHz;
        parts += rate % 1000 == 0 ? QStringLiteral("%1 kHz").arg(rate / 1000)
                                  : QString::asprintf("%.1f kHz", static_cast<double>(rate) / 1000);
    }
    if (track.bpm.value_or(0) >= 1)
        parts += QStringLiteral("%1 BPM").arg(*track.bpm);
    return parts.join(QStringLiteral(" · "));
}

QString panText(double pan) {
    if (!(std::abs(pan) >= 0.005))
        return QStringLiteral("C");
    // Cut off, but not because of what adding up steps of a twentieth leaves behind.
    return QStringLiteral("%1%2%")
        .arg(QChar(pan < 0 ? u'L' : u'R'))
        .arg(int(std::abs(pan) * 100 + 1e-6));
}

QString gainText(const QList<double>& gains, qsizetype band) {
    const double gain = std::clamp(gains.value(band), -12.0, 12.0);
    const auto whole = std::isfinite(gain) ? std::lround(gain) : 0;
    return whole >= 1 ? QStringLiteral("+%1").arg(whole) : QString::number(whole);
}

QStringList statusFlags(const AppSettings& settings) {
    QStringList flags;
    const auto add = [&flags](bool on, const char* flag) {
        if (on)
            flags += QString::fromLatin1(flag);
    };
    add(settings.gapless, "GAPLESS");
    add(settings.trimSilence, "TRIM");
    add(settings.fadePlayOn || settings.fadePauseOn || settings.fadeStopOn || settings.fadeChangeOn,
        "FADE");
    add(settings.normalize, "NORM");
    add(settings.compOn, "COMP");
    add(settings.charFx == CharacterFX::Tape, "TAPE");
    add(settings.charFx == CharacterFX::Vinyl, "VINYL");
    add(settings.loudness, "LOUD");
    add(settings.pbMode == PlaybackMode::All, "REPEAT");
    add(settings.pbMode == PlaybackMode::One, "REPEAT-1");
    add(settings.pbMode == PlaybackMode::StopAfter, "AUTO-STOP");
    add(settings.shuffle, "SHUFFLE");
    return flags;
}

QString trackCountText(qsizetype tracks) {
    return tracks == 1 ? QStringLiteral("1 track") : QStringLiteral("%1 tracks").arg(tracks);
}

} // namespace quorel
