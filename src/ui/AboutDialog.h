#pragma once

#include <QDialog>

namespace quorel {

/// The program's name, version and what it is.
class AboutDialog final : public QDialog {
    Q_OBJECT

  public:
    explicit AboutDialog(QWidget* parent);
};

} // namespace quorel
