#include "ui/playlist/SearchField.h"

#include "ui/controls/PanelButton.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

#include <QKeyEvent>

namespace quorel {

namespace {

constexpr double kSymbol = 14;
constexpr double kClear = 18;

} // namespace

SearchField::SearchField(QWidget* parent)
    : QLineEdit(parent)
    , clear_(new TransportButton(Icon::Clear, PanelButton::Face::Quiet, this)) {
    setPlaceholderText(tr("Search"));
    setAccessibleName(tr("Search"));
    setToolTip(tr("Search titles, artists and albums (%1)")
                   .arg(QKeySequence(QKeySequence::Find).toString(QKeySequence::NativeText)));
    clear_->setFaceSize({kClear, kClear});
    clear_->setIconSize(kSymbol);
    clear_->setAccessibleName(tr("Clear the search"));
    clear_->setToolTip(tr("Clear"));
    clear_->setCursor(Qt::ArrowCursor);
    clear_->hide();
    connect(clear_, &QAbstractButton::clicked, this, &QLineEdit::clear);
    connect(this, &QLineEdit::textChanged, this,
            [this](const QString& text) { clear_->setVisible(!text.isEmpty()); });
    place();
}

QSize SearchField::sizeHint() const {
    return {px(190), QLineEdit::sizeHint().height()};
}

void SearchField::place() {
    setTextMargins(px(kSymbol + 5), 0, px(kClear), 0);
    const QSize size = clear_->sizeHint();
    clear_->setGeometry(
        QRect({width() - size.width() - px(4), (height() - size.height()) / 2 + 1}, size));
}

void SearchField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    Q_EMIT entered();
}

void SearchField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    drawIcon(painter, Icon::Search,
             {area.left() + 8, area.center().y() - kSymbol / 2, kSymbol, kSymbol},
             hasFocus() || !text().isEmpty() ? Theme::text : Theme::textDim);
}

void SearchField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    place();
}

void SearchField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        place();
}

bool SearchField::event(QEvent* event) {
    // An empty field has no claim on it: what was found and removed comes back.
    if (event->type() == QEvent::ShortcutOverride && text().isEmpty() &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo))
        return false;
    return QLineEdit::event(event);
}

void SearchField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        if (text().isEmpty())
            Q_EMIT left(false);
        else
            clear();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
        Q_EMIT left(true);
        break;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace quorel
