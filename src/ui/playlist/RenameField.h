#pragma once

#include <QLineEdit>

namespace quorel {

/// Edits a name where it stands. Return and a press elsewhere keep what was typed, Escape does not;
/// after that the field destroys itself.
class RenameField final : public QLineEdit {
    Q_OBJECT

  public:
    RenameField(const QString& name, QWidget* parent);

  Q_SIGNALS:
    void renamed(const QString& name); ///< it was changed and kept
    void ended();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void end(bool keep);

    const QString before_;
    bool ended_ = false;
};

} // namespace quorel
