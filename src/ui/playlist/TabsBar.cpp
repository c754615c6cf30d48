#include "ui/playlist/TabsBar.h"

#include "player/PlayerController.h"
#include "ui/controls/PanelButton.h"
#include "ui/playlist/DragContent.h"
#include "ui/playlist/PlaylistAutoScroller.h"
#include "ui/playlist/Questions.h"
#include "ui/playlist/RenameField.h"
#include "ui/playlist/TabMenu.h"
#include "ui/playlist/TabRow.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QFontMetricsF>
#include <QWheelEvent>

namespace quorel {

namespace {

constexpr double kHeight = 36;
constexpr double kMargin = 10;
constexpr double kAddSize = 24;
constexpr double kGhostWidth = 116;
constexpr double kFade = 28;
constexpr double kFieldSides = 24;
constexpr double kFieldWidest = 280;
constexpr std::chrono::nanoseconds kScrollStep(1'000'000'000 / 60);

QString shortcutText(int key) {
    return QKeySequence(Qt::CTRL | key).toString(QKeySequence::NativeText);
}

/// Lets what is cut off at an end of the strip vanish softly.
class EdgeFade final : public QWidget {
  public:
    EdgeFade(bool atRight, QWidget* parent)
        : QWidget(parent)
        , atRight_(atRight) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        QLinearGradient fade(0, 0, width(), 0);
        fade.setColorAt(atRight_ ? 0 : 1, Theme::faded(Theme::bg, 0));
        fade.setColorAt(atRight_ ? 1 : 0, Theme::bg);
        painter.fillRect(rect(), fade);
    }

  private:
    const bool atRight_;
};

} // namespace

TabsBar::TabsBar(PlayerController& player, Clock& clock, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , clock_(clock)
    , window_(new QWidget(this))
    , row_(new TabRow(player, window_))
    , fades_{new EdgeFade(false, window_), new EdgeFade(true, window_)}
    , add_(new TransportButton(Icon::Plus, PanelButton::Face::Quiet, this)) {
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    add_->setFaceSize({kAddSize, kAddSize});
    add_->setIconSize(14);
    add_->setAccessibleName(tr("New playlist"));
    add_->setToolTip(tr("New playlist (%1)").arg(shortcutText(Qt::Key_N)));
    connect(add_, &QAbstractButton::clicked, this, [this] { player_.addPlaylist(); });
    connect(row_, &TabRow::focused, this, &TabsBar::showCurrent);
    connect(row_, &TabRow::renameRequested, this, &TabsBar::rename);
    connect(row_, &TabRow::closeRequested, this,
            [this](const QUuid& playlist) { askToClose(player_, playlist, this); });
    for (const auto signal :
         {&PlayerController::playlistsEdited, &PlayerController::activePlaylistChanged})
        connect(&player, signal, this, &TabsBar::showCurrent);
}

QSize TabsBar::sizeHint() const {
    return {px(400), px(kHeight)};
}

QSize TabsBar::minimumSizeHint() const {
    return {px(160), px(kHeight)};
}

// --- Where the tabs are --------------------------------------------------------------------------

void TabsBar::place() {
    const QSize add = add_->sizeHint();
    const int left = px(kMargin);
    const int end = ghost_ ? px(kGhostWidth) : add.width();
    const int room = std::max(width() - left - px(kMargin) - end, 1);
    const int tabs = row_->tabsWidth();
    window_->setGeometry(left, 0, std::min(room, tabs), height());
    offset_ = std::clamp(offset_, 0, std::max(tabs - window_->width(), 0));
    const int high = row_->sizeHint().height();
    row_->setGeometry(-offset_, height() - high, tabs, high);
    fades_[0]->setGeometry(0, px(1), px(kFade), height());
    fades_[0]->setVisible(offset_ > 0);
    fades_[1]->setGeometry(window_->width() - px(kFade), px(1), px(kFade), height());
    fades_[1]->setVisible(offset_ + window_->width() < tabs);
    add_->setGeometry(QRect({left + window_->width() + px(2), height() - add.height()}, add));
    if (field_) {
        const auto index = player_.playlistIndex(field_->property("playlist").toUuid());
        if (index)
            field_->setGeometry(fieldArea(static_cast<int>(*index)));
    }
    update();
}

/// Over the tab, and over those beside it where the name is longer.
QRect TabsBar::fieldArea(int index) const {
    QRect area = row_->tabRect(index).translated(row_->pos()).adjusted(0, px(4), -px(4), -px(2));
    const int text = field_->fontMetrics().horizontalAdvance(field_->text()) + px(kFieldSides);
    area.setWidth(std::min({std::max(area.width(), text), px(kFieldWidest), window_->width()}));
    area.moveLeft(std::clamp(area.left(), 0, window_->width() - area.width()));
    return area;
}

void TabsBar::scrollTo(int offset) {
    offset_ = offset;
    place();
}

void TabsBar::showCurrent() {
    showTab(row_->currentIndex());
}

void TabsBar::showTab(int index) {
    place();
    const QRect tab = row_->tabRect(index);
    if (tab.left() < offset_)
        scrollTo(tab.left() - px(kFade));
    else if (tab.right() > offset_ + window_->width())
        scrollTo(tab.right() + px(kFade) - window_->width());
}

void TabsBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    showCurrent();
}

void TabsBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        place();
}

void TabsBar::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    const int by = turned.x() != 0 ? turned.x() : turned.y();
    scrollTo(offset_ - by * px(60) / 120);
    event->accept();
}

void TabsBar::step(int by) {
    const auto tabs = static_cast<int>(player_.playlistCount());
    const int next = (row_->currentIndex() + by + tabs) % tabs;
    player_.setActivePlaylist(player_.playlistAt(next).id);
}

// --- Renaming and the menu -----------------------------------------------------------------------

void TabsBar::rename(const QUuid& playlist) {
    const Playlist* const record = player_.findPlaylist(playlist);
    if (!record)
        return;
    field_ = new RenameField(record->name, window_); // screen readers see only tabs in a tab bar
    field_->setProperty("playlist", playlist);
    connect(field_, &RenameField::renamed, this,
            [this, playlist](const QString& name) { player_.renamePlaylist(playlist, name); });
    connect(field_, &RenameField::ended, this, &TabsBar::renamingEnded);
    connect(field_, &QLineEdit::textChanged, this, &TabsBar::place);
    showTab(static_cast<int>(player_.playlistIndex(playlist).value_or(0)));
    field_->show();
    field_->setFocus(Qt::OtherFocusReason);
}

void TabsBar::contextMenuEvent(QContextMenuEvent* event) {
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const QPoint at = row_->mapFrom(this, event->pos());
    const QUuid playlist =
        byMouse ? row_->playlistAt(at).value_or(QUuid()) : player_.activePlaylistID();
    if (!byMouse)
        showCurrent(); // the menu opens at it
    auto* const menu = new TabMenu(player_, playlist, this);
    connect(menu, &TabMenu::renameRequested, this, &TabsBar::rename);
    connect(menu, &TabMenu::loadRequested, this, &TabsBar::loadRequested);
    connect(menu, &TabMenu::saveRequested, this, &TabsBar::saveRequested);
    connect(menu, &TabMenu::clearRequested, this,
            [this](const QUuid& id) { askToClear(player_, id, this); });
    connect(menu, &TabMenu::closeRequested, this,
            [this](const QUuid& id) { askToClose(player_, id, this); });
    const QRect tab = row_->tabRect(row_->currentIndex());
    menu->popup(byMouse ? event->globalPos() : row_->mapToGlobal(tab.bottomLeft()));
}

// --- Drops ---------------------------------------------------------------------------------------

int TabsBar::dropIndexAt(const QPoint& at) const {
    if (at.x() > window_->geometry().right())
        return row_->count();
    const int index =
        row_->tabAt(row_->mapFrom(this, QPoint(at.x(), row_->geometry().center().y())));
    return index < 0 ? 0 : index; // the margin belongs to the first
}

/// Rows are not dropped on the tab that they come from.
bool TabsBar::canDrop(const QMimeData& dragged, int index) const {
    if (qobject_cast<const DraggedPlaylist*>(&dragged))
        return true;
    const auto* const own = qobject_cast<const DraggedTracks*>(&dragged);
    if (own && index < row_->count() && player_.playlistAt(index).id == own->playlist())
        return false;
    return hasFiles(dragged);
}

void TabsBar::showFileTarget(int index) {
    const bool onTab = index < row_->count();
    setGhost(!onTab);
    row_->markTarget(onTab ? TabRow::Mark::Tab : TabRow::Mark::None, onTab ? index : -1);
}

void TabsBar::showTabTarget(const QUuid& tab, int index) {
    const auto from = static_cast<int>(player_.playlistIndex(tab).value_or(0));
    const int to = std::min(index, row_->count() - 1);
    if (to == from)
        row_->markTarget(TabRow::Mark::None);
    else
        row_->markTarget(to < from ? TabRow::Mark::Before : TabRow::Mark::After, to);
}

void TabsBar::showNoTarget() {
    setGhost(false);
    row_->markTarget(TabRow::Mark::None);
}

void TabsBar::setGhost(bool shown) {
    if (std::exchange(ghost_, shown) == shown)
        return;
    add_->setVisible(!shown);
    place();
    update();
}

void TabsBar::dragEnterEvent(QDragEnterEvent* event) {
    // Entering decides over the whole visit; each move decides over its place.
    if (hasFiles(*event->mimeData()) || qobject_cast<const DraggedPlaylist*>(event->mimeData()))
        event->acceptProposedAction();
}

bool TabsBar::dragOver(const QMimeData& dragged, const QPoint& at) {
    const int index = dropIndexAt(at);
    if (const auto* const tab = qobject_cast<const DraggedPlaylist*>(&dragged)) {
        showTabTarget(tab->id(), index);
    } else if (canDrop(dragged, index)) {
        showFileTarget(index);
    } else {
        showNoTarget();
        return false;
    }
    return true;
}

void TabsBar::dragMoveEvent(QDragMoveEvent* event) {
    dragged_ = event->mimeData();
    draggedAt_ = event->position().toPoint();
    if (dragOver(*dragged_, draggedAt_))
        event->acceptProposedAction();
    else
        event->ignore();
    if (!scrolling_ && window_->width() < row_->width())
        scrolling_ =
            clock_.startTimer(kScrollStep, Clock::Repeat::Always, [this] { scrollStep(); });
}

void TabsBar::scrollStep() {
    const double speed = PlaylistAutoScroller::speedAt((draggedAt_.x() - window_->x()) / uiScale(),
                                                       window_->width() / uiScale());
    const int before = offset_;
    scrollTo(offset_ + qRound(speed * uiScale()));
    if (offset_ != before && dragged_)
        dragOver(*dragged_, draggedAt_);
}

void TabsBar::endDragOver() {
    scrolling_.reset();
    dragged_.clear();
    showNoTarget();
}

void TabsBar::dragLeaveEvent(QDragLeaveEvent*) {
    endDragOver();
}

void TabsBar::dropEvent(QDropEvent* event) {
    const QMimeData& dragged = *event->mimeData();
    const int index = dropIndexAt(event->position().toPoint());
    endDragOver();
    if (!canDrop(dragged, index))
        return;
    event->acceptProposedAction();
    if (const auto* const tab = qobject_cast<const DraggedPlaylist*>(&dragged))
        player_.movePlaylist(tab->id(), index);
    else if (index == row_->count())
        addDropped(player_, dragged, {.kind = ImportTarget::Kind::NewPlaylist});
    else
        addDropped(player_, dragged, {.playlist = player_.playlistAt(index).id});
}

// --- Painting ------------------------------------------------------------------------------------

void TabsBar::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    painter.fillRect(area, Theme::bg);
    paintSeparator(painter, area.topLeft(), area.topRight());
    if (ghost_)
        paintGhost(painter);
}

void TabsBar::paintGhost(QPainter& painter) const {
    const QRectF area = baseRect(*this);
    const double left = std::min((window_->geometry().right() + 1) / uiScale(),
                                 area.right() - kMargin - kGhostWidth);
    const QRectF tab = QRectF(left, 7, kGhostWidth, area.height() - 10);
    painter.setPen(QPen(Theme::green, 1.2, Qt::DashLine));
    painter.setBrush(Theme::faded(Theme::green, 0.10));
    painter.drawRoundedRect(tab, 6, 6);
    painter.setFont(Theme::font(Theme::TextRole::Body));
    painter.setPen(Theme::green);
    painter.drawText(tab, Qt::AlignCenter, tr("New playlist"));
}

} // namespace quorel
