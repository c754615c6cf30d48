#include "ui/FileDialogs.h"

#include "model/Path.h"
#include "player/PlayerController.h"
#include "ui/FilesAndFoldersDialog.h"

#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>

namespace quorel {

namespace {

/// Where the user was last; the music folder at first.
QString& lastFolder() {
    static QString folder = QStandardPaths::writableLocation(QStandardPaths::MusicLocation);
    if (!QFileInfo(folder).isDir()) // Qt would take it for the name of a file
        folder = QDir::homePath();
    return folder;
}

QString playlistFilter() {
    return QObject::tr("Playlists (*.m3u8 *.m3u)");
}

/// Qt's file names to paths: the way back from QFile::decodeName is the same for both.
QString pathOf(const QString& fileName) {
    return pathFromBytes(QFile::encodeName(fileName));
}

/// Tells of an error while `parent` is there.
PlaylistFileDone teller(QWidget* parent) {
    return [parent = QPointer(parent)](const std::optional<Error>& error) {
        if (!error || !parent)
            return;
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Quorel"), error->description,
                        QMessageBox::Ok, parent);
        box.setTextFormat(Qt::PlainText);
        box.exec();
    };
}

} // namespace

void addFilesOrFolders(PlayerController& player, QWidget* parent) {
    FilesAndFoldersDialog dialog(parent, QObject::tr("Add music"), lastFolder());
    if (dialog.exec() != QDialog::Accepted)
        return;
    lastFolder() = dialog.directory().absolutePath();
    QStringList paths;
    for (const QString& name : dialog.picked())
        paths += pathOf(name);
    player.importPaths(paths, {});
}

void loadPlaylistFile(PlayerController& player, QWidget* parent) {
    const QString name = QFileDialog::getOpenFileName(parent, QObject::tr("Load Playlist"),
                                                      lastFolder(), playlistFilter());
    if (name.isEmpty())
        return;
    lastFolder() = QFileInfo(name).absolutePath();
    player.loadPlaylist(pathOf(name), teller(parent));
}

void savePlaylistFile(PlayerController& player, const QUuid& playlist, QWidget* parent) {
    const Playlist* const record = player.findPlaylist(playlist);
    if (!record)
        return;
    QFileDialog dialog(parent, QObject::tr("Save Playlist As"), lastFolder(), playlistFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("m3u8"));
    dialog.selectFile(QString(record->name).replace(u'/', u'-') + QStringLiteral(".m3u8"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    lastFolder() = dialog.directory().absolutePath();
    player.savePlaylist(playlist, pathOf(dialog.selectedFiles().front()), teller(parent));
}

} // namespace quorel
