#include "ui/playlist/TrackDelegate.h"

#include "model/TimeText.h"
#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/texts/Texts.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QPainter>
#include <algorithm>

namespace quorel {

namespace {

constexpr double kMargin = 14;
constexpr double kGap = 12;
constexpr double kMark = 10;

/// The user's size in points, limited; in base units of the interface.
double fontSize(const AppSettings& settings) {
    return std::clamp(settings.playlistFontSize, 10.0, 36.0) * 4 / 3;
}

QFont rowFont(const AppSettings& settings) {
    QFont font = Theme::font(Theme::TextRole::Body);
    font.setPixelSize(qRound(fontSize(settings)));
    return font;
}

} // namespace

TrackDelegate::TrackDelegate(PlayerController& player, QObject* parent)
    : QStyledItemDelegate(parent)
    , player_(player) {}

QSize TrackDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {px(100), px(fontSize(player_.settings()) * 1.25 + 6)};
}

void TrackDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    const Playlist& list = player_.activePlaylist();
    const qsizetype row = player_.visibleTracks().rowAt(index.row());
    const Track& track = list.tracks.at(row);
    const bool isPlaying =
        track.id == player_.playingTrackID() && list.id == player_.playingPlaylistID();
    const double scale = uiScale();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(option.rect.topLeft());
    painter->scale(scale, scale);
    const QRectF area(0, 0, option.rect.width() / scale, option.rect.height() / scale);
    if (player_.selection().contains(track.id))
        painter->fillRect(area, Theme::selection);
    else if (index.row() % 2 == 1)
        painter->fillRect(area, Theme::faded(Theme::steel, 0.14));
    if (option.state & QStyle::State_MouseOver)
        painter->fillRect(area, Theme::faded(Theme::steelLight, 0.22));
    if (option.state & QStyle::State_HasFocus)
        strokeInside(*painter, crisp(*painter, area), 2, Theme::faded(Theme::steelLight, 0.9));

    const QFont font = rowFont(player_.settings());
    const QFontMetricsF metrics(font);
    painter->setFont(font);
    const double numberWidth =
        std::max(metrics.horizontalAdvance(QString::number(list.tracks.size())), kMark);
    const QRectF number(kMargin, 0, numberWidth, area.height());
    if (isPlaying) {
        drawIcon(
            *painter, Icon::Play,
            {number.right() - kMark - 2, number.center().y() - kMark / 2 - 1, kMark + 2, kMark + 2},
            Theme::green);
    } else {
        painter->setPen(Theme::textDim);
        painter->drawText(number, Qt::AlignVCenter | Qt::AlignRight, QString::number(row + 1));
    }
    const QString length = track.duration ? formatTime(track.duration) : QString();
    const double lengthWidth = metrics.horizontalAdvance(length);
    painter->setPen(Theme::textDim);
    painter->drawText(QRectF(area.right() - kMargin - lengthWidth, 0, lengthWidth, area.height()),
                      Qt::AlignVCenter | Qt::AlignRight, length);
    const double left = number.right() + kGap;
    const double room = area.right() - kMargin - lengthWidth - kGap - left;
    painter->setPen(isPlaying ? Theme::green : Theme::text);
    painter->drawText(QRectF(left, 0, std::max(room, 0.0), area.height()),
                      Qt::AlignVCenter | Qt::AlignLeft,
                      metrics.elidedText(rowLabel(track), Qt::ElideRight, room));
    painter->restore();
}

} // namespace quorel
