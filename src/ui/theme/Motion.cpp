#include "ui/theme/Motion.h"

#include <QSettings>
#include <QStandardPaths>

namespace quorel {

namespace {

std::optional<bool> told;

std::optional<bool> setting(const char* file, const char* key, bool (*reduces)(const QString&)) {
    const QString path =
        QStandardPaths::locate(QStandardPaths::GenericConfigLocation, QString::fromLatin1(file));
    if (path.isEmpty())
        return std::nullopt;
    const QVariant value = QSettings(path, QSettings::IniFormat).value(QString::fromLatin1(key));
    if (!value.isValid())
        return std::nullopt;
    return reduces(value.toString());
}

bool desktopReduces() {
    const auto isZero = [](const QString& text) {
        bool isNumber = false;
        return text.toDouble(&isNumber) <= 0 && isNumber;
    };
    const auto isOff = [](const QString& text) {
        return text == QLatin1String("0") ||
               text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
    };
    const char* const gtkKey = "Settings/gtk-enable-animations";
    return setting("kdeglobals", "KDE/AnimationDurationFactor", isZero)
        .value_or(setting("gtk-4.0/settings.ini", gtkKey, isOff)
                      .value_or(setting("gtk-3.0/settings.ini", gtkKey, isOff).value_or(false)));
}

} // namespace

bool reducedAnimation() {
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("QUOREL_REDUCED_MOTION", &isNumber);
    if (isNumber)
        return wanted != 0;
    if (told)
        return *told;
    static const bool desktop = desktopReduces();
    return desktop;
}

void setReducedAnimation(std::optional<bool> reduced) {
    told = reduced;
}

} // namespace quorel
