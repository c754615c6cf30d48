#include "ui/playlist/Questions.h"

#include "player/PlayerController.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace quorel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("quorel::Questions", text);
}

template <class Action>
void ask(const QString& question, qsizetype tracks, const QString& button, QWidget* parent,
         Action action) {
    auto* const box = new QMessageBox(parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setIconPixmap(iconPixmap(Icon::Warning, px(32), Theme::gold, parent->devicePixelRatioF()));
    box->setText(question);
    box->setInformativeText(tr("%1 tracks?").arg(tracks));
    QPushButton* const agree = box->addButton(button, QMessageBox::AcceptRole);
    QPushButton* const cancel = box->addButton(QMessageBox::Cancel);
    cancel->setIcon({});
    box->setDefaultButton(cancel);
    QObject::connect(agree, &QPushButton::clicked, box, action);
    box->open();
}

} // namespace

void askToClear(PlayerController& player, const QUuid& playlist, QWidget* parent) {
    if (const Playlist* const record = player.findPlaylist(playlist))
        ask(tr("Clear playlist \"%1\" — this can't be undone?").arg(record->name),
            record->tracks.size(), tr("Clear"), parent,
            [&player, playlist] { player.clearPlaylist(playlist); });
}

void askToClose(PlayerController& player, const QUuid& playlist, QWidget* parent) {
    const Playlist* const record = player.findPlaylist(playlist);
    if (!record)
        return;
    if (record->tracks.isEmpty())
        player.closePlaylist(playlist);
    else
        ask(tr("Close playlist \"%1\" — this can't be undone?").arg(record->name),
            record->tracks.size(), tr("Close Playlist"), parent,
            [&player, playlist] { player.closePlaylist(playlist); });
}

} // namespace quorel
