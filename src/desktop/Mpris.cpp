#include "desktop/Mpris.h"

#include "desktop/MprisPlayer.h"
#include "desktop/MprisRoot.h"
#include "player/PlayerController.h"

#include <unistd.h>

#include <QDBusMessage>
#include <QMetaProperty>

namespace quorel {

namespace {

const QString kPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString kName = QStringLiteral("org.mpris.MediaPlayer2.quorel");

/// The values that may change and are told of. A position is asked for, never told: clients count
/// on by themselves.
QVariantMap changingValues(const QObject& adaptor) {
    QVariantMap values;
    const QMetaObject* meta = adaptor.metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isConstant() && qstrcmp(property.name(), "Position") != 0)
            values.insert(QLatin1String(property.name()), property.read(&adaptor));
    }
    return values;
}

} // namespace

Mpris::Mpris(PlayerController& controller, std::function<void()> quit)
    : controller_(controller)
    , player_(new MprisPlayer(object_, controller))
    , told_{{new MprisRoot(object_, controller, std::move(quit)), "org.mpris.MediaPlayer2", {}},
            {player_, "org.mpris.MediaPlayer2.Player", {}}}
    , bus_(QString()) {}

Mpris::~Mpris() {
    if (!name_.isEmpty())
        bus_.unregisterService(name_);
}

void Mpris::start(QDBusConnection bus) {
    bus_ = std::move(bus);
    if (!bus_.isConnected() ||
        !bus_.registerObject(kPath, &object_, QDBusConnection::ExportAdaptors))
        return;
    for (Told& told : told_)
        told.values = changingValues(*told.adaptor);
    watch();
    // Last of all: whoever sees the name may ask at once.
    for (const QString& name : {kName, kName + QStringLiteral(".instance%1").arg(::getpid())}) {
        if (bus_.registerService(name)) {
            name_ = name;
            return;
        }
    }
}

void Mpris::watch() {
    const auto soon = [this] { tellSoon(); };
    using Controller = PlayerController;
    for (const auto signal : {&Controller::playingTrackChanged, &Controller::transportChanged,
                              &Controller::activePlaylistChanged, &Controller::playlistsEdited})
        QObject::connect(&controller_, signal, &object_, soon);
    QObject::connect(&controller_, &Controller::settingsChanged, &object_, soon);
    QObject::connect(&controller_, &Controller::tracksEdited, &object_, soon);
    QObject::connect(&controller_, &Controller::trackDataChanged, &object_, soon);
    QObject::connect(&controller_.playback(), &PlaybackState::jumped, &object_, [this] {
        hasJumped_ = true;
        tellSoon();
    });
}

void Mpris::tellSoon() {
    if (!std::exchange(willTell_, true))
        QMetaObject::invokeMethod(
            &object_, [this] { tell(); }, Qt::QueuedConnection);
}

void Mpris::tell() {
    willTell_ = false;
    for (Told& told : told_)
        tellChanges(told);
    // After the metadata, for a jump may have led into another track.
    if (std::exchange(hasJumped_, false) && player_->isLoaded())
        Q_EMIT player_->Seeked(player_->position());
}

void Mpris::tellChanges(Told& told) {
    const QVariantMap values = changingValues(*told.adaptor);
    QVariantMap changed;
    for (auto value = values.begin(); value != values.end(); ++value) {
        if (told.values.value(value.key()) != value.value())
            changed.insert(value.key(), value.value());
    }
    if (changed.isEmpty())
        return;
    told.values = values;
    // Qt sends this signal for no property of an adaptor.
    QDBusMessage message =
        QDBusMessage::createSignal(kPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    message << QString::fromLatin1(told.interface) << changed << QStringList();
    bus_.send(message);
}

} // namespace quorel
