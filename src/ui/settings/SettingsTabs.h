#pragma once

#include "ui/settings/SettingsForm.h"

namespace quorel {

class PlaybackSettingsTab final : public SettingsForm {
    Q_OBJECT

  public:
    /// `canStayOnTop`: whether a window can be kept above the others here.
    PlaybackSettingsTab(PlayerController& player, bool canStayOnTop, QWidget* parent);
};

class FadesSettingsTab final : public SettingsForm {
    Q_OBJECT

  public:
    FadesSettingsTab(PlayerController& player, QWidget* parent);

  private:
    void addFadeRow(const QString& name, bool AppSettings::*on, double AppSettings::*length);
};

class ProcessingSettingsTab final : public SettingsForm {
    Q_OBJECT

  public:
    ProcessingSettingsTab(PlayerController& player, QWidget* parent);
};

class InterfaceSettingsTab final : public SettingsForm {
    Q_OBJECT

  public:
    InterfaceSettingsTab(PlayerController& player, QWidget* parent);

  private:
    void addScaleRow();
};

} // namespace quorel
