#include "ui/panel/ModePanel.h"

#include "player/PlayerController.h"
#include "ui/controls/ModeRow.h"
#include "ui/controls/PopoverPanel.h"
#include "ui/panel/PanelParts.h"
#include "ui/theme/Scale.h"

#include <QVBoxLayout>
#include <array>

namespace quorel {

namespace {

struct ModeText {
    PlaybackMode mode;
    Icon icon;
    const char* title;
    const char* help;
};

constexpr std::array<ModeText, 4> kModes = {{
    {PlaybackMode::Normal, Icon::ModeNormal, QT_TRANSLATE_NOOP("ModePanel", "Normal"),
     QT_TRANSLATE_NOOP("ModePanel", "Play through the playlist once")},
    {PlaybackMode::StopAfter, Icon::ModeStopAfter,
     QT_TRANSLATE_NOOP("ModePanel", "Auto-stop after track"),
     QT_TRANSLATE_NOOP("ModePanel", "Stop after every track")},
    {PlaybackMode::One, Icon::RepeatOne, QT_TRANSLATE_NOOP("ModePanel", "Repeat track"),
     QT_TRANSLATE_NOOP("ModePanel", "Repeat current track")},
    {PlaybackMode::All, Icon::RepeatAll, QT_TRANSLATE_NOOP("ModePanel", "Repeat playlist"),
     QT_TRANSLATE_NOOP("ModePanel", "Repeat the whole playlist")},
}};

ModeRow* addRow(QVBoxLayout& column, QWidget* panel, Icon icon, const QString& title,
                const QString& help) {
    auto* const row = new ModeRow(icon, title, panel);
    row->setCheckable(true);
    row->setToolTip(help);
    row->setAccessibleDescription(help);
    column.addWidget(row);
    return row;
}

} // namespace

void showModePanel(PlayerController& player, QWidget* button) {
    auto* const panel = new PopoverPanel(button);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setAccessibleName(QObject::tr("Playback mode"));
    QObject::connect(panel, &PopoverPanel::closed, panel, &QObject::deleteLater);
    auto* const column = new QVBoxLayout(panel);
    column->setSpacing(px(2));
    QList<ModeRow*> rows;
    for (const ModeText& text : kModes) {
        rows += addRow(*column, panel, text.icon, QObject::tr(text.title), QObject::tr(text.help));
        QObject::connect(rows.back(), &QAbstractButton::clicked, &player,
                         [&player, mode = text.mode] { player.setPlaybackMode(mode); });
    }
    column->addWidget(new SeparatorLine(panel));
    rows += addRow(*column, panel, Icon::Shuffle, QObject::tr("Shuffle"),
                   QObject::tr("Random order — combines with any mode"));
    QObject::connect(rows.back(), &QAbstractButton::clicked, &player,
                     &PlayerController::toggleShuffle);
    const auto refresh = [&player, rows] {
        for (std::size_t i = 0; i < kModes.size(); ++i)
            rows.at(qsizetype(i))->setChecked(player.settings().pbMode == kModes[i].mode);
        rows.back()->setChecked(player.settings().shuffle);
    };
    QObject::connect(&player, &PlayerController::settingsChanged, panel, refresh);
    // A click on the row that is on already must not turn it off.
    for (ModeRow* const row : rows)
        QObject::connect(row, &QAbstractButton::clicked, panel, refresh);
    refresh();
    panel->setMinimumWidth(px(210));
    panel->popUpAt(button);
}

} // namespace quorel
