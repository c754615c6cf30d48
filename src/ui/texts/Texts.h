#pragma once

#include "model/AppSettings.h"
#include "model/Track.h"

#include <QString>
#include <QStringList>

namespace quorel {

// What the views say, made from what they show.

/// Artist and title as a row of a playlist has them; without a title the file's name stands for it.
QString rowLabel(const Track& track);
/// The title alone; without one the file's name stands for it.
QString titleText(const Track& track);

/// A text that keeps the direction it is written in to itself when it stands within another one.
QString isolated(const QString& text);

/// The scrolling title: the product's name without a track; the length in seconds, 0 where it is
/// not known, follows in brackets.
QString marqueeText(const Track* playing, double duration);

/// The display's time; seconds.
QString timeText(bool isLoaded, bool remaining, double currentTime, double duration);

/// Format, data rate, sampling rate and tempo, as far as they are known; empty without any.
QString formatInfoText(const Track& track);

/// The balance: C, L35%.
QString panText(double pan);

/// A gain in whole dB: 0, +1, -3.
QString gainText(const QList<double>& gains, qsizetype band);

/// The processing that is on, in the order of the status line.
QStringList statusFlags(const AppSettings& settings);

/// "1 track", "12 tracks".
QString trackCountText(qsizetype tracks);

} // namespace quorel
