#include "ui/settings/FormParts.h"

#include "ui/theme/BasePainter.h"
#include "ui/theme/StylePainting.h"
#include "ui/theme/Theme.h"

#include <QEvent>
#include <QVBoxLayout>

namespace quorel {

FormCaption::FormCaption(const QString& text, QWidget* parent)
    : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    scaleLetters();
    QPalette dim = palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive})
        dim.setColor(group, QPalette::WindowText, Theme::textDim);
    setPalette(dim);
}

void FormCaption::setWarning() {
    QPalette gold = palette();
    gold.setColor(QPalette::WindowText, Theme::gold);
    setPalette(gold);
}

void FormCaption::scaleLetters() {
    QFont small = Theme::font(Theme::TextRole::Small);
    small.setPixelSize(px(small.pixelSize()));
    setFont(small);
    setContentsMargins(0, px(2), 0, 0);
}

void FormCaption::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        scaleLetters();
}

FormPlate::FormPlate(QWidget* parent)
    : QWidget(parent) {
    new QVBoxLayout(this);
}

void FormPlate::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    stylepainting::group(painter, baseRect(*this));
}

} // namespace quorel
