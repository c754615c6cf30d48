#include "ui/playlist/TabRow.h"

#include "player/PlayerController.h"
#include "ui/playlist/DragContent.h"
#include "ui/playlist/DragPreview.h"
#include "ui/playlist/TrackMenu.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QDrag>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QStyleHints>

namespace quorel {

namespace {

constexpr double kHeight = 32;
constexpr double kSides = 20;
constexpr double kNarrowest = 72;
constexpr double kWidest = 200;
constexpr double kGap = 4; // between tabs
constexpr double kRadius = 6;

QFont tabFont() {
    return Theme::font(Theme::TextRole::Strong);
}

/// A tab is round above and stands on the edge below.
QPainterPath tabShape(const QRectF& body) {
    QPainterPath path;
    path.addRoundedRect(body.adjusted(0, 0, 0, kRadius), kRadius, kRadius);
    QPainterPath above;
    above.addRect(body);
    return path.intersected(above);
}

} // namespace

TabRow::TabRow(PlayerController& player, QWidget* parent)
    : QTabBar(parent)
    , player_(player) {
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(tr("Playlists"));
    connect(this, &QTabBar::currentChanged, this,
            [this](int index) { player_.setActivePlaylist(player_.playlistAt(index).id); });
    for (const auto signal :
         {&PlayerController::playlistsEdited, &PlayerController::activePlaylistChanged})
        connect(&player, signal, this, &TabRow::refresh);
    connect(&player, &PlayerController::playingTrackChanged, this, qOverload<>(&TabRow::update));
    refresh();
}

void TabRow::refresh() {
    const QSignalBlocker quiet(this); // the controller knows already
    const int wanted = static_cast<int>(player_.playlistCount());
    while (count() > wanted)
        removeTab(count() - 1);
    while (count() < wanted)
        addTab(QString());
    const QFontMetricsF metrics(tabFont());
    for (int index = 0; index < wanted; ++index) {
        const QString& name = player_.playlistAt(index).name;
        const QString text = menuText(name);
        if (tabText(index) != text)
            setTabText(index, text);
        const bool cut = metrics.horizontalAdvance(name) > kWidest - 2 * kSides;
        setTabToolTip(index, cut ? tipText(name) : QString());
    }
    setCurrentIndex(
        static_cast<int>(player_.playlistIndex(player_.activePlaylistID()).value_or(0)));
    update();
}

bool TabRow::event(QEvent* event) {
    const bool isUsed = QTabBar::event(event);
    // What Qt paints anew is the place of the tab when the pointer came to it; it may have moved.
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
    case QEvent::HoverLeave:
        if (const int now = hoveredTab(); std::exchange(hovered_, now) != now)
            update();
        break;
    default:
        break;
    }
    return isUsed;
}

int TabRow::hoveredTab() const {
    return underMouse() ? tabAt(mapFromGlobal(QCursor::pos())) : -1;
}

QSize TabRow::tabSizeHint(int index) const {
    const QString& name =
        player_.playlistAt(std::min<qsizetype>(index, player_.playlistCount() - 1)).name;
    const double text = QFontMetricsF(tabFont()).horizontalAdvance(name) + 1;
    return {px(std::clamp(text + 2 * kSides, kNarrowest, kWidest) + kGap), px(kHeight)};
}

std::optional<QUuid> TabRow::playlistAt(const QPoint& at) const {
    const int index = tabAt(at);
    return index < 0 ? std::nullopt : std::optional(player_.playlistAt(index).id);
}

void TabRow::markTarget(Mark mark, int index) {
    const bool isSame = mark == mark_ && index == target_;
    mark_ = mark;
    target_ = index;
    if (!isSame)
        update();
}

void TabRow::paintTab(QPainter& painter, int index) const {
    const double scale = uiScale();
    const QRect pixels = tabRect(index);
    const QRectF area(pixels.x() / scale, 0, pixels.width() / scale, height() / scale);
    const QRectF body = crisp(painter, area.adjusted(0, 3, -kGap, 0));
    const bool chosen = index == currentIndex();
    const bool hovered = index == hoveredTab();
    const Mark mark = index == target_ ? mark_ : Mark::None;
    const QPainterPath shape = tabShape(body);
    painter.fillPath(shape, chosen ? Theme::listBlack
                                   : Theme::faded(hovered ? Theme::steelLight : Theme::steel,
                                                  hovered ? 0.75 : 0.5));
    if (chosen)
        painter.fillPath(shape.intersected(tabShape({body.left(), body.top(), body.width(), 2})),
                         Theme::green);
    if (mark == Mark::Tab) {
        painter.fillPath(shape, Theme::faded(Theme::green, 0.16));
        strokeInside(painter, body.adjusted(0, 0, 0, -1), kRadius, Theme::green);
    }
    if (mark == Mark::Before || mark == Mark::After) {
        const double x = mark == Mark::Before ? area.left() : area.right() - kGap;
        painter.fillRect(QRectF(x + 1, body.top(), 2, body.height()), Theme::green);
    }
    if (hovered)
        drawIcon(painter, Icon::Handle, {body.left() + 4, body.center().y() - 6, 12, 12},
                 Theme::textDim);
    const Playlist& playlist = player_.playlistAt(index);
    const bool playing = playlist.id == player_.playingPlaylistID();
    if (playing)
        drawIcon(painter, Icon::Play, {body.right() - 16, body.center().y() - 5, 10, 10},
                 Theme::green);
    const QRectF text = body.adjusted(kSides - 2, 1, -kSides + 2, 0);
    const QFont font = chosen ? tabFont() : Theme::font(Theme::TextRole::Body);
    painter.setFont(font);
    painter.setPen(chosen ? Theme::text.lighter(115)
                          : (hovered ? Theme::text : Theme::textDim.lighter(115)));
    painter.drawText(text, Qt::AlignCenter | Qt::TextSingleLine,
                     QFontMetricsF(font).elidedText(playlist.name, Qt::ElideRight, text.width()));
    if (chosen && stateOf(*this).focused)
        paintFocusRing(painter, body.adjusted(3, 5, -3, -3), 4);
}

void TabRow::paintEvent(QPaintEvent* event) {
    BasePainter painter(this);
    for (int index = 0; index < count(); ++index)
        if (tabRect(index).intersects(event->rect()))
            paintTab(painter, index);
}

void TabRow::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    pressedAt_ = event->button() == Qt::LeftButton ? std::optional(at) : std::nullopt;
    closing_ = event->button() == Qt::MiddleButton ? playlistAt(at) : std::nullopt;
    QTabBar::mousePressEvent(event);
}

void TabRow::mouseMoveEvent(QMouseEvent* event) {
    QTabBar::mouseMoveEvent(event);
    if (!pressedAt_ || !event->buttons().testFlag(Qt::LeftButton))
        return;
    const QPoint way = event->position().toPoint() - *pressedAt_;
    if (way.manhattanLength() < QGuiApplication::styleHints()->startDragDistance())
        return;
    const int index = tabAt(*pressedAt_);
    pressedAt_.reset();
    if (index >= 0)
        startDrag(index);
}

void TabRow::mouseReleaseEvent(QMouseEvent* event) {
    QTabBar::mouseReleaseEvent(event);
    pressedAt_.reset();
    // Who moves away from the tab before letting go has thought better of it.
    if (const auto pressed = std::exchange(closing_, {});
        pressed && pressed == playlistAt(event->position().toPoint()))
        Q_EMIT closeRequested(*pressed);
}

void TabRow::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const auto playlist = playlistAt(event->position().toPoint());
        playlist && event->button() == Qt::LeftButton)
        Q_EMIT renameRequested(*playlist);
}

void TabRow::wheelEvent(QWheelEvent* event) {
    event->ignore(); // the strip scrolls
}

void TabRow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_F2:
        Q_EMIT renameRequested(player_.activePlaylistID());
        break;
    case Qt::Key_Home:
        setCurrentIndex(0);
        break;
    case Qt::Key_End:
        setCurrentIndex(count() - 1);
        break;
    default:
        QTabBar::keyPressEvent(event);
    }
}

void TabRow::focusInEvent(QFocusEvent* event) {
    QTabBar::focusInEvent(event);
    Q_EMIT focused();
}

void TabRow::startDrag(int index) {
    const Playlist& playlist = player_.playlistAt(index);
    auto* const drag = new QDrag(this);
    drag->setPixmap(dragPreview(playlist.name, devicePixelRatioF()));
    drag->setHotSpot({px(24), -px(8)});
    drag->setMimeData(new DraggedPlaylist(playlist.id));
    drag->exec(Qt::MoveAction);
}

} // namespace quorel
