#pragma once

#include <QStringList>
#include <QWidget>

namespace quorel {

class PlayerController;
class TransportButton;

/// The line at the foot of the window: what plays or why nothing does, work in the background with
/// a button to stop it, and the processing that is on.
class StatusBar final : public QWidget {
    Q_OBJECT

  public:
    explicit StatusBar(PlayerController& player, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// The texts on the left and on the right.
    const QString& text() const { return text_; }
    const QStringList& flags() const { return flags_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void refresh();
    void placeStop();
    QString activityText() const;
    double paintFlags(QPainter& painter, const QRectF& area) const;

    PlayerController& player_;
    TransportButton* const stop_;
    bool isWarning_ = false;
    QString text_;
    QStringList flags_;
};

} // namespace quorel
