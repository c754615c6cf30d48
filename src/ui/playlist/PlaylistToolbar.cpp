#include "ui/playlist/PlaylistToolbar.h"

#include "player/PlayerController.h"
#include "ui/playlist/SearchField.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Theme.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeySequence>

namespace quorel {

namespace {

constexpr double kRadius = 6;

} // namespace

ToolbarButton::ToolbarButton(Icon icon, const QString& name, const QKeySequence& shortcut,
                             QWidget* parent)
    : PanelButton(Face::Quiet, parent)
    , icon_(icon) {
    setAccessibleName(name);
    setToolTip(QStringLiteral("%1 (%2)").arg(name, shortcut.toString(QKeySequence::NativeText)));
}

void ToolbarButton::paintContent(QPainter& painter, const QRectF& face, const ControlState& state) {
    if (!state.hovered && !state.pressed && state.enabled) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::faded(Theme::steel, 0.55));
        painter.drawRoundedRect(crisp(painter, face), kRadius, kRadius);
    }
    constexpr double kSide = 16;
    QRectF square(0, 0, kSide, kSide);
    square.moveCenter(face.center());
    drawRaisedIcon(painter, icon_, square, inkOf(state), false);
}

QSizeF ToolbarButton::naturalFaceSize() const {
    return {30, 26};
}

PlaylistToolbar::PlaylistToolbar(PlayerController& player, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , search_(new SearchField(this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* const row = new QHBoxLayout(this);
    const auto add = [&](Icon icon, const QString& name, const QKeySequence& shortcut) {
        auto* const button = new ToolbarButton(icon, name, shortcut, this);
        row->addWidget(button);
        return button;
    };
    connect(add(Icon::Plus, tr("Add files or folders"), QKeySequence(Qt::CTRL | Qt::Key_O)),
            &QAbstractButton::clicked, this, &PlaylistToolbar::addRequested);
    connect(add(Icon::Load, tr("Load .m3u8 playlist"), QKeySequence(Qt::CTRL | Qt::Key_L)),
            &QAbstractButton::clicked, this, &PlaylistToolbar::loadRequested);
    connect(add(Icon::Save, tr("Save playlist as .m3u8"), QKeySequence(Qt::CTRL | Qt::Key_S)),
            &QAbstractButton::clicked, this,
            [this] { Q_EMIT saveRequested(player_.activePlaylistID()); });
    remove_ = add(Icon::Remove, tr("Remove selected"), Qt::Key_Delete);
    connect(remove_, &QAbstractButton::clicked, this, [this] { player_.removeSelected(); });
    undo_ = add(Icon::Undo, tr("Undo remove"), QKeySequence::Undo);
    connect(undo_, &QAbstractButton::clicked, this, [this] { player_.undoRemove(); });
    row->addStretch(1);
    search_->setMinimumWidth(px(96));
    search_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    row->addWidget(search_);
    setTabOrder(undo_, search_);
    setMargins();

    connect(search_, &SearchField::entered, &player_, &PlayerController::prepareSearch);
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (text != player_.searchText())
            player_.setSearchText(text);
    });
    connect(&player, &PlayerController::searchTextChanged, this, &PlaylistToolbar::refresh);
    connect(&player, &PlayerController::selectionChanged, this, &PlaylistToolbar::refresh);
    connect(&player, &PlayerController::undoChanged, this, &PlaylistToolbar::refresh);
    refresh();
}

void PlaylistToolbar::setMargins() {
    layout()->setContentsMargins(px(10), px(5), px(10), px(5));
    layout()->setSpacing(px(2));
    search_->setMinimumWidth(px(96));
}

void PlaylistToolbar::refresh() {
    remove_->setEnabled(!player_.selection().isEmpty());
    undo_->setVisible(player_.removalUndoAvailable());
    if (search_->text() != player_.searchText())
        search_->setText(player_.searchText());
}

void PlaylistToolbar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && search_)
        setMargins();
}

void PlaylistToolbar::paintEvent(QPaintEvent*) {
    BasePainter(this).fillRect(baseRect(*this), Theme::listBlack);
}

} // namespace quorel
