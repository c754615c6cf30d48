#pragma once

#include <QWidget>

class QLabel;
class QAbstractButton;

namespace quorel {

class UpdateChecker;

/// Tells of a newer version, or for a moment that there is none; hidden otherwise.
class UpdateBanner final : public QWidget {
    Q_OBJECT

  public:
    explicit UpdateBanner(UpdateChecker& updates, QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void fitScale();
    void refresh();

    UpdateChecker& updates_;
    QLabel* const title_;
    QLabel* const notes_;
    QList<QAbstractButton*> buttons_;
};

} // namespace quorel
