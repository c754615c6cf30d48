#include "ui/AboutDialog.h"

#include "ui/AppIcon.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace quorel {

namespace {

QLabel* centred(const QString& text, QWidget* parent) {
    auto* const label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

AboutDialog::AboutDialog(QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(tr("About Quorel"));
    auto* const icon = new QLabel(this);
    icon->setAlignment(Qt::AlignCenter);
    icon->setPixmap(appIcon(true).pixmap(QSize(px(96), px(96)), devicePixelRatioF()));
    QLabel* const name = centred(QStringLiteral("Quorel"), this);
    QFont big = name->font();
    big.setPixelSize(qRound(big.pixelSize() * 1.6));
    big.setWeight(QFont::DemiBold);
    name->setFont(big);
    QLabel* const what = centred(tr("Version %1\nA music player for the files you own.")
                                     .arg(QCoreApplication::applicationVersion()),
                                 this);
    QPalette dim = what->palette();
    dim.setColor(QPalette::WindowText, Theme::textDim);
    what->setPalette(dim);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    buttons->setCenterButtons(true); // as all above it
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(px(40), px(28), px(40), px(16));
    column->setSpacing(px(8));
    for (QWidget* const part : std::initializer_list<QWidget*>{icon, name, what})
        column->addWidget(part);
    column->addSpacing(px(8));
    column->addWidget(buttons);
    setFixedSize(sizeHint());
}

} // namespace quorel
