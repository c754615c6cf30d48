#pragma once

#include "model/Enumerations.h"
#include "model/MeterValues.h"
#include "ui/theme/StillPicture.h"
#include "ui/visualisers/LEDMeterView.h"
#include "ui/visualisers/ScopeView.h"
#include "ui/visualisers/SpectrumView.h"
#include "ui/visualisers/VUMeterView.h"

#include <QAbstractButton>

namespace quorel {

/// The well in which one of the visualisations runs. It only shows: whoever hears clicked() chooses
/// the next mode. Left click, Enter and Space click it.
class VisualizationView : public QAbstractButton {
    Q_OBJECT

  public:
    explicit VisualizationView(QWidget* parent = nullptr);

    void setMode(VisualizationMode mode);
    /// Of the display, 0..1.
    void setBrightness(double brightness);
    void setValues(const MeterValues& values);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void paintWell(QPainter& painter, QSizeF size) const;
    void paintMode(QPainter& painter, QSizeF size);
    void nameMode();

    VisualizationMode mode_ = VisualizationMode::Vu;
    double brightness_ = 1;
    MeterValues values_;
    StillPicture well_;
    SpriteCache spectrum_;
    ScopeTrace scope_;
    VUFaces vu_;
    SpriteCache led_;
};

} // namespace quorel
