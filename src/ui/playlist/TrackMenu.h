#pragma once

#include "ui/theme/Icons.h"

#include <QMenu>

namespace quorel {

class PlayerController;
struct Track;

/// What can be done with a row of the track list: with the clicked one, but that all selected ones
/// are removed. Destroys itself when it is closed.
class TrackMenu final : public QMenu {
    Q_OBJECT

  public:
    /// Without a track: what can be done with the list.
    TrackMenu(PlayerController& player, const Track* track, bool fileIsMissing, QWidget* parent);

  Q_SIGNALS:
    void editTagsRequested(const QUuid& track);
    void showFileRequested(const QString& path);
    void showPlayingRequested();

  private:
    void addTrackItems(PlayerController& player, const Track& track, bool fileIsMissing);
};

/// A symbol in a menu's size.
QIcon menuIcon(Icon icon, const QWidget& widget);

/// A name as part of a menu's text: its ampersands mark no key.
QString menuText(QString name);

/// A text as a tooltip, in several lines where it is long: it is no mark-up.
QString tipText(const QString& text);

} // namespace quorel
