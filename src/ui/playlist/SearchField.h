#pragma once

#include <QLineEdit>

namespace quorel {

class TransportButton;

/// What the list is searched for, with a button to clear it. Escape clears it, too, and once it is
/// empty leaves it.
class SearchField final : public QLineEdit {
    Q_OBJECT

  public:
    explicit SearchField(QWidget* parent = nullptr);

    QSize sizeHint() const override;

  Q_SIGNALS:
    void entered();            ///< it has got the focus
    void left(bool toResults); ///< by Return or an arrow down, or by Escape

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    void place();

    TransportButton* clear_;
};

} // namespace quorel
