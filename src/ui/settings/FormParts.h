#pragma once

#include <QLabel>
#include <QWidget>

namespace quorel {

/// A quiet line below a control, in small letters; wraps where it is long.
class FormCaption final : public QLabel {
    Q_OBJECT

  public:
    FormCaption(const QString& text, QWidget* parent);

    /// As a warning instead of an explanation.
    void setWarning();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void scaleLetters();
};

/// A plate that the rows belonging together stand on.
class FormPlate final : public QWidget {
    Q_OBJECT

  public:
    explicit FormPlate(QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quorel
