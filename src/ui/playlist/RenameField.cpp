#include "ui/playlist/RenameField.h"

#include <QApplication>
#include <QKeyEvent>

namespace quorel {

RenameField::RenameField(const QString& name, QWidget* parent)
    : QLineEdit(name, parent)
    , before_(name) {
    setAccessibleName(tr("Name of the playlist"));
    setAlignment(Qt::AlignCenter);
    selectAll();
    // Many controls leave the focus here when they are clicked.
    QApplication::instance()->installEventFilter(this);
    connect(this, &QLineEdit::editingFinished, this, [this] { end(true); });
}

bool RenameField::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType() && watched != this &&
        !QApplication::activePopupWidget())
        end(true);
    return QLineEdit::eventFilter(watched, event);
}

void RenameField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        end(false);
    else
        QLineEdit::keyPressEvent(event);
}

void RenameField::end(bool keep) {
    if (std::exchange(ended_, true))
        return;
    QApplication::instance()->removeEventFilter(this);
    if (keep && text() != before_)
        Q_EMIT renamed(text());
    Q_EMIT ended();
    hide();
    deleteLater();
}

} // namespace quorel
