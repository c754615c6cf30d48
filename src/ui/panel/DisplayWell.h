#pragma once

#include "core/Clock.h"
#include "ui/theme/StillPicture.h"

#include <QWidget>

namespace quorel {

class LcdDigits;
class MarqueeLabel;
class PlayerController;
class VisualizationView;

/// The display: title, time, format and marks on the left, the visualisation on the right.
class DisplayWell final : public QWidget {
    Q_OBJECT

  public:
    DisplayWell(PlayerController& player, Clock& clock, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void place();
    void paintTexts(QPainter& painter) const;
    void paintMarks(QPainter& painter) const;
    void showTrack();
    void showTime();
    void showSettings();
    void showMeters();

    PlayerController& player_;
    StillPicture well_;
    MarqueeLabel* const title_;
    LcdDigits* const time_;
    VisualizationView* const visualization_;
    double shownDuration_ = 0;
    QString format_;
};

} // namespace quorel
