#pragma once

#include "ui/settings/SettingsForm.h"

namespace quorel {

class FormCaption;

/// Where the sound goes. Devices come and go in the list as they do on the desktop; one that was
/// chosen stays in it while it is not there.
class OutputSettingsTab final : public SettingsForm {
    Q_OBJECT

  public:
    OutputSettingsTab(PlayerController& player, QWidget* parent);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    struct Entry {
        QString uid; ///< empty: the system's default
        QString name;
        bool isThere = true;
        bool operator==(const Entry&) const = default;
    };

    QList<Entry> entries() const;
    void refresh();

    QComboBox* devices_ = nullptr;
    FormCaption* notice_ = nullptr;
    QList<Entry> shown_;
    QMap<QString, QString> names_; ///< of devices seen so far
};

} // namespace quorel
