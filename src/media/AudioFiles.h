#pragma once

#include <QStringList>
#include <array>
#include <functional>
#include <stop_token>

namespace quorel {

/// What names an audio file, in lower case. The content of a file is not looked at.
inline constexpr std::array<QStringView, 9> kAudioExtensions = {
    u"mp3", u"m4a", u"aac", u"flac", u"wav", u"aiff", u"aif", u"caf", u"m4b"};

/// Whether the path ends in one of them, in capitals or not.
bool hasAudioExtension(QStringView path);

/// What may be said to a collection, and hear of it, while it is under way.
struct CollectControl {
    std::stop_token stop;                            ///< once it is stopped, nothing is returned
    std::function<void(qsizetype found)> onProgress; ///< after each folder, on the same thread
};

/// The audio files among and below these files and folders, each path once, in the order of
/// NaturalOrder. Hidden entries of a folder (their names begin with a dot, or its file ".hidden"
/// lists them) are passed over with all that is below them, and so is what is missing, unreadable
/// or no regular file. No audio file is opened. A folder that is reached through symbolic links is
/// entered unless it has been already. Relative paths begin at the working folder. Waits for the
/// disk; any thread.
QStringList collectAudioFiles(const QStringList& from, const CollectControl& control = {});

} // namespace quorel
