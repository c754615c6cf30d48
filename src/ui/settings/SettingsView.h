#pragma once

#include "model/AppSettings.h"

#include <QDialog>

class QStackedWidget;

namespace quorel {

class PlayerController;
class SettingsTabBar;
enum class Icon;

/// The settings window. What is changed in it is heard and seen at once. Cancel, Escape and the
/// window's own close button put back the fields that it shows as they were when it was opened;
/// Save keeps them. The rest of the program stays usable meanwhile.
class SettingsView final : public QDialog {
    Q_OBJECT

  public:
    /// `canStayOnTop`: whether a window can be kept above the others here. The controller outlives
    /// the window.
    SettingsView(PlayerController& player, bool canStayOnTop, QWidget* parent);

    void accept() override;
    void reject() override;

  protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void addPage(Icon icon, const QString& name, QWidget* page);
    void addTabKeys();
    void fitToScale();

    PlayerController& player_;
    const AppSettings before_;
    SettingsTabBar* const tabs_;
    QStackedWidget* const pages_;
    double scale_ = 0;      ///< at which it was laid out last
    QSizeF size_{460, 500}; ///< in base units
};

} // namespace quorel
