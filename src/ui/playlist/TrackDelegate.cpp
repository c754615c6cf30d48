#include "ui/playlist/TrackDelegate.h"

#include "model/Path.h"
#include "model/TimeText.h"
#include "player/PlayerController.h"
#include "ui/playlist/MissingFiles.h"
#include "ui/playlist/TrackListModel.h"
#include "ui/playlist/TrackMenu.h"
#include "ui/texts/Texts.h"
#include "ui/theme/Icons.h"
#include "ui/theme/StylePainting.h"
#include "ui/theme/Theme.h"

#include <QAbstractItemView>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QScreen>
#include <QToolTip>
#include <algorithm>

namespace quorel {

namespace {

constexpr double kMargin = 14;
constexpr double kGap = 14;
constexpr double kMark = 12;

/// In base units, which are points.
double fontSize(const AppSettings& settings) {
    return std::clamp(settings.playlistFontSize, 10.0, 36.0);
}

/// Of fractions of a unit, too, as fonts sized in pixels cannot be.
QFont rowFont(const AppSettings& settings) {
    QFont font = Theme::font(Theme::TextRole::Body);
    const QScreen* const screen = QGuiApplication::primaryScreen();
    font.setPointSizeF(fontSize(settings) * 72 / (screen ? screen->logicalDotsPerInchY() : 96));
    return font;
}

QString lengthOf(const Track& track) {
    return track.duration ? formatTime(track.duration) : QString();
}

} // namespace

TrackDelegate::TrackDelegate(PlayerController& player, MissingFiles& missing, TrackListModel& model,
                             QObject* parent)
    : QStyledItemDelegate(parent)
    , player_(player)
    , missing_(missing)
    , model_(model)
    , font_(rowFont(player.settings()))
    , metrics_(font_) {}

void TrackDelegate::refreshFont() {
    font_ = rowFont(player_.settings());
    metrics_ = QFontMetricsF(font_);
}

int TrackDelegate::rowHeight() const {
    return px(fontSize(player_.settings()) * 1.3 + 8);
}

QSize TrackDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {px(100), rowHeight()};
}

bool TrackDelegate::isPlaying(const Track& track) const {
    return track.id == player_.playingTrackID() &&
           player_.activePlaylistID() == player_.playingPlaylistID();
}

TrackDelegate::Columns TrackDelegate::columnsOf(const QRectF& area, const Track& track) const {
    const auto digits = QString::number(player_.activePlaylist().tracks.size()).size();
    const double numberWidth =
        std::max(metrics_.horizontalAdvance(u'0') * static_cast<double>(digits), kMark + 2);
    const double lengthWidth = metrics_.horizontalAdvance(lengthOf(track));
    Columns columns;
    columns.number = {area.left() + kMargin, area.top(), numberWidth, area.height()};
    columns.length = {area.right() - kMargin - lengthWidth, area.top(), lengthWidth, area.height()};
    const double left = columns.number.right() + kGap;
    columns.label = {left, area.top(), std::max(columns.length.left() - kGap - left, 0.0),
                     area.height()};
    return columns;
}

void TrackDelegate::paintGround(QPainter& painter, const QRectF& area,
                                const QStyleOptionViewItem& option, int row, bool selected) const {
    if (row % 2 == 1)
        painter.fillRect(area, Theme::faded(Theme::steel, 0.16));
    if (selected)
        painter.fillRect(area, Theme::selection);
    if (option.state & QStyle::State_MouseOver)
        painter.fillRect(area, Theme::faded(Theme::steelLight, selected ? 0.18 : 0.28));
    if (!(option.state & QStyle::State_HasFocus))
        return;
    // Where the keyboard is; a ring once somebody walks about with it.
    if (stateOf(option, option.widget).focused)
        strokeInside(painter, area, 3, Theme::gold);
    else
        painter.fillRect(QRectF(area.left(), area.top(), 2, area.height()),
                         Theme::faded(Theme::textDim, 0.8));
}

void TrackDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    const Track* const track = model_.trackAt(index);
    if (!track)
        return;
    const InBaseUnits units(*painter);
    const QRectF area = InBaseUnits::area(option.rect);
    const bool selected = player_.selection().contains(track->id);
    paintGround(*painter, area, option, index.row(), selected);

    const Columns columns = columnsOf(area, *track);
    const bool gone = missing_.isMissing(track->path);
    const bool playing = isPlaying(*track);
    const QColor dim = gone       ? Theme::faded(Theme::textDim, selected ? 0.85 : 0.6)
                       : selected ? Theme::textDim.lighter(130)
                                  : Theme::textDim;
    const QColor ink = gone ? dim : playing ? Theme::green : Theme::text;
    painter->setFont(font_);
    painter->setPen(dim);
    if (playing)
        drawIcon(*painter, Icon::Play,
                 {columns.number.right() - kMark + 1, area.center().y() - kMark / 2, kMark, kMark},
                 Theme::green);
    else
        painter->drawText(columns.number, Qt::AlignVCenter | Qt::AlignRight,
                          QString::number(model_.playlistRow(index.row()) + 1));
    painter->drawText(columns.length, Qt::AlignVCenter | Qt::AlignRight, lengthOf(*track));
    painter->setPen(ink);
    painter->drawText(columns.label, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      metrics_.elidedText(rowLabel(*track), Qt::ElideRight, columns.label.width()));
}

QString TrackDelegate::toolTip(const QModelIndex& index, int width) const {
    const Track* const track = model_.trackAt(index);
    if (!track)
        return {};
    if (missing_.isMissing(track->path))
        return tr("The file is gone: %1").arg(pathForDisplay(track->path));
    const QString label = rowLabel(*track);
    const Columns columns = columnsOf({0, 0, width / uiScale(), 1}, *track);
    return metrics_.horizontalAdvance(label) > columns.label.width() ? label : QString();
}

bool TrackDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                              const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), tipText(toolTip(index, option.rect.width())),
                       view->viewport(), option.rect);
    return true;
}

} // namespace quorel
