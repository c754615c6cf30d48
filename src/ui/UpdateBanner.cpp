#include "ui/UpdateBanner.h"

#include "ui/controls/PanelButton.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"
#include "update/UpdateChecker.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace quorel {

namespace {

constexpr double kIcon = 20;
constexpr double kMargin = 12;

/// A line that ends early where there is no room for all of it; whatever a feed says, it does not
/// widen the window.
class OneLine final : public QLabel {
  public:
    explicit OneLine(QWidget* parent)
        : QLabel(parent) {
        // What the feed says is shown as it stands, never as markup.
        setTextFormat(Qt::PlainText);
    }

    QSize minimumSizeHint() const override { return {px(80), fontMetrics().height()}; }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text(), Qt::ElideRight, width()));
    }
};

} // namespace

UpdateBanner::UpdateBanner(UpdateChecker& updates, QWidget* parent)
    : QWidget(parent)
    , updates_(updates)
    , title_(new OneLine(this))
    , notes_(new OneLine(this)) {
    QPalette dim = notes_->palette();
    dim.setColor(QPalette::WindowText, Theme::textDim);
    notes_->setPalette(dim);

    auto* const texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(title_);
    texts->addWidget(notes_);
    auto* const row = new QHBoxLayout(this);
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
    fitScale();
    connect(&updates, &UpdateChecker::changed, this, &UpdateBanner::refresh);
    refresh();
}

void UpdateBanner::fitScale() {
    layout()->setContentsMargins(px(kMargin * 2 + kIcon), px(8), px(kMargin), px(8));
    const auto setFont = [](QLabel* label, Theme::TextRole role, QFont::Weight weight) {
        QFont font = Theme::font(role);
        font.setPixelSize(px(font.pixelSize()));
        font.setWeight(weight);
        label->setFont(font);
    };
    setFont(title_, Theme::TextRole::Body, QFont::DemiBold);
    setFont(notes_, Theme::TextRole::Small, QFont::Normal);
}

void UpdateBanner::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && layout())
        fitScale();
}

void UpdateBanner::refresh() {
    const auto& release = updates_.available();
    const bool offers = release.has_value();
    title_->setText(offers ? tr("Quorel %1 is available").arg(release->version.simplified())
                           : tr("Quorel is up to date"));
    notes_->setText(offers ? release->notes.value_or(QString()).simplified() : QString());
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
