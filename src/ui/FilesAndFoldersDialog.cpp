#include "ui/FilesAndFoldersDialog.h"

#include "media/AudioFiles.h"
#include "ui/theme/Scale.h"

#include <QDialogButtonBox>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSignalBlocker>

namespace quorel {

namespace {

QString musicFilter() {
    QStringList patterns;
    for (const QStringView ending : kAudioExtensions)
        patterns += QStringLiteral("*.%1").arg(ending);
    patterns += {QStringLiteral("*.m3u8"), QStringLiteral("*.m3u")};
    return QObject::tr("Music (%1)").arg(patterns.join(u' '));
}

} // namespace

FilesAndFoldersDialog::FilesAndFoldersDialog(QWidget* parent, const QString& title,
                                             const QString& folder)
    : QFileDialog(parent, title, folder)
    , list_((setOption(DontUseNativeDialog), findChild<QListView*>(QStringLiteral("listView")))) {
    setOption(HideNameFilterDetails); // a dozen endings
    setFileMode(ExistingFiles);
    setViewMode(Detail);
    setNameFilters({musicFilter(), tr("All files (*)")});
    resize(px(760), px(480));
    setLabelText(Accept, tr("&Add"));
    setLabelText(FileName, tr("Choose audio files and/or folders"));
    auto* const name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    connect(name, &QLineEdit::textEdited, this, [this] { hasTyped_ = true; });
    connect(this, &QFileDialog::directoryEntered, this, [this, name] {
        hasTyped_ = false;
        name->clear();
    });
    const QItemSelectionModel* const selection = list_->selectionModel();
    connect(selection, &QItemSelectionModel::selectionChanged, this, [this] { hasTyped_ = false; });
    // The dialog itself strips folders from the name and greys the button; this comes after it.
    connect(selection, &QItemSelectionModel::selectionChanged, this,
            &FilesAndFoldersDialog::showSelection, Qt::QueuedConnection);
}

QStringList FilesAndFoldersDialog::selectedPaths() const {
    QStringList paths;
    for (const QModelIndex& row : list_->selectionModel()->selectedRows())
        paths += row.data(QFileSystemModel::FilePathRole).toString();
    return paths;
}

void FilesAndFoldersDialog::showSelection() {
    const QModelIndexList rows = list_->selectionModel()->selectedRows();
    if (rows.isEmpty() || hasTyped_)
        return;
    QStringList names;
    for (const QModelIndex& row : rows)
        names += rows.size() == 1 ? row.data().toString() : u'"' + row.data().toString() + u'"';
    auto* const name = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    const QSignalBlocker silence(name);
    name->setText(names.join(u' '));
    auto* const buttons = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    buttons->button(QDialogButtonBox::Open)->setEnabled(true);
}

void FilesAndFoldersDialog::accept() {
    picked_ = hasTyped_ ? QStringList() : selectedPaths();
    if (!picked_.isEmpty()) {
        done(Accepted);
        return;
    }
    QFileDialog::accept(); // a folder that was typed is entered, a file taken
    if (result() == Accepted)
        picked_ = selectedFiles();
}

} // namespace quorel
