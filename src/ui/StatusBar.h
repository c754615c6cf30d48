#pragma once

#include "core/Clock.h"

#include <QStringList>
#include <QWidget>
#include <optional>
#include <vector>

namespace quorel {

class PlayerController;
class TransportButton;
struct Track;

/// The line at the foot of the window: what plays or why nothing does, work in the background with
/// a button to stop it, and the processing that is on. What the user had measured stands first for
/// a while.
class StatusBar final : public QWidget {
    Q_OBJECT

  public:
    /// Player and clock outlive it.
    StatusBar(PlayerController& player, Clock& clock, QWidget* parent = nullptr);

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
    void showTempo(const Track& track, std::optional<double> bpm);
    QString firstPart() const;
    void placeStop();
    QString activityText() const;
    /// Where the text, with the button that stops work, may begin and end.
    double textLeft() const;
    double textRight() const;
    /// As much of the text as has room: its beginning, what plays, gives way first.
    QString textFor(double room) const;
    /// Of each flag that has room, from the right.
    std::vector<QRectF> flagChips() const;
    void paintFlags(QPainter& painter) const;

    PlayerController& player_;
    Clock& clock_;
    TransportButton* const stop_;
    QString answer_; ///< empty without one
    std::unique_ptr<Timer> answerEnd_;
    bool isWarning_ = false;
    QString text_;
    qsizetype firstPart_ = 0; ///< its length in the text
    QStringList flags_;
};

} // namespace quorel
