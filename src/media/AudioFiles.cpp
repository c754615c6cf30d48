#include "media/AudioFiles.h"

#include "media/FolderWalk.h"
#include "media/NaturalOrder.h"
#include "model/Path.h"
#include "storage/Files.h"

#include <QSet>
#include <algorithm>

namespace quorel {

bool hasAudioExtension(QStringView path) {
    const QStringView found = extension(path);
    return std::ranges::any_of(kAudioExtensions, [found](QStringView known) {
        return found.compare(known, Qt::CaseInsensitive) == 0;
    });
}

QStringList collectAudioFiles(const QStringList& from, const CollectControl& control) {
    QStringList paths;
    QSet<QString> known;
    const auto take = [&](const QByteArray& file) {
        const QString path = pathFromBytes(file);
        const qsizetype before = known.size();
        known.insert(path);
        if (known.size() > before)
            paths += path;
    };
    const auto isWanted = [](const QByteArray& name) {
        return hasAudioExtension(QString::fromLatin1(name));
    };
    const auto afterFolder = [&] {
        if (control.onProgress)
            control.onProgress(paths.size());
    };
    FolderWalk walk({isWanted, take, afterFolder, control.stop});

    const QByteArray here = workingFolder();
    QSet<QByteArray> seen;
    for (const QString& given : from) {
        const QByteArray path = absolutePath(pathToBytes(given), here);
        if (given.isEmpty() || given.contains(QChar::Null) || seen.contains(path))
            continue;
        seen.insert(path);
        if (!isRegularFile(path))
            walk.enter(path);
        else if (isWanted(path))
            take(path);
    }
    walk.followLinks();
    NaturalOrder().sort(paths, control.stop);
    return control.stop.stop_requested() ? QStringList() : paths;
}

} // namespace quorel
