#include "tools/quorel-cli/OpenTrack.h"

#include "model/Path.h"
#include "tools/quorel-cli/Console.h"

namespace quorel::cli {

OpenedTrack openTrack(const std::string& path) {
    OpenedAudioFile opened = AudioFile::open(path);
    if (!opened.file) {
        return {nullptr, QString::fromStdString(opened.error)};
    }
    if (opened.file->length() <= 0) {
        return {nullptr, QStringLiteral("holds no sound")};
    }
    return {std::move(opened.file), {}};
}

TrackToPlay wholeFile(std::shared_ptr<AudioFile> file) {
    TrackToPlay track;
    track.file = std::move(file);
    return track;
}

QString aboutFile(const std::string& path, const QString& text) {
    const QString shown = pathForDisplay(pathFromBytes(QByteArrayView(path)));
    return printable(shown) + QStringLiteral(": ") + text;
}

} // namespace quorel::cli
