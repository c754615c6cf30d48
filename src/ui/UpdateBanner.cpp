#include "ui/UpdateBanner.h"

#include "ui/controls/PanelButton.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"
#include "update/UpdateChecker.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace quorel {

namespace {

constexpr double kIcon = 20;
constexpr double kMargin = 12;

} // namespace

UpdateBanner::UpdateBanner(UpdateChecker& updates, QWidget* parent)
    : QWidget(parent)
    , updates_(updates)
    , title_(new QLabel(this))
    , notes_(new QLabel(this)) {
    // What the feed says is shown as it stands, never as markup.
    title_->setTextFormat(Qt::PlainText);
    notes_->setTextFormat(Qt::PlainText);
    notes_->setWordWrap(true);
    QFont bold = title_->font();
    bold.setWeight(QFont::DemiBold);
    title_->setFont(bold);
    QPalette dim = notes_->palette();
    dim.setColor(QPalette::WindowText, Theme::textDim);
    notes_->setPalette(dim);

    auto* const texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(notes_);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(px(kMargin * 2 + kIcon), px(8), px(kMargin), px(8));
    row->addLayout(texts, 1);
    const auto addButton = [&](QAbstractButton* button, auto action) {
        connect(button, &QAbstractButton::clicked, &updates, action);
        row->addWidget(button);
        buttons_ += button;
    };
    addButton(new TextIconButton(tr("Download"), PanelButton::Face::Quiet),
              &UpdateChecker::openDownloadPage);
    addButton(new TextIconButton(tr("Skip"), PanelButton::Face::Quiet),
              &UpdateChecker::skipThisVersion);
    auto* const hide = new TransportButton(Icon::Close, PanelButton::Face::Quiet);
    hide->setIconSize(14);
    hide->setFaceSize({24, 24});
    hide->setToolTip(tr("Hide until next launch"));
    hide->setAccessibleName(hide->toolTip());
    addButton(hide, &UpdateChecker::dismiss);
    connect(&updates, &UpdateChecker::changed, this, &UpdateBanner::refresh);
    refresh();
}

void UpdateBanner::refresh() {
    const auto& release = updates_.available();
    const bool offers = release.has_value();
    title_->setText(offers ? tr("Quorel %1 is available").arg(release->version)
                           : tr("Quorel is up to date"));
    notes_->setText(offers ? release->notes.value_or(QString()) : QString());
    notes_->setVisible(!notes_->text().isEmpty());
    for (QAbstractButton* const button : buttons_)
        button->setVisible(offers);
    setVisible(offers || updates_.showUpToDate());
    update();
}

void UpdateBanner::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const bool offers = updates_.available().has_value();
    const QColor tint = offers ? Theme::gold : Theme::green;
    const QRectF area = baseRect(*this).adjusted(8, 4, -8, -2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::faded(tint, 0.12));
    painter.drawRoundedRect(area, 8, 8);
    strokeInside(painter, crisp(painter, area), 8, Theme::faded(tint, 0.3));
    drawIcon(painter, offers ? Icon::Update : Icon::Ok,
             {area.left() + kMargin, area.center().y() - kIcon / 2, kIcon, kIcon}, tint);
}

} // namespace quorel
