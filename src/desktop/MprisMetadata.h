#pragma once

#include "model/Track.h"

#include <QDBusObjectPath>
#include <QVariantMap>

namespace quorel {

/// What MPRIS knows a playlist entry by; that of no track where the id is null.
QDBusObjectPath mprisTrackId(const QUuid& track);

/// Seconds as MPRIS counts them: whole microseconds.
qlonglong mprisTime(double seconds);

/// The Metadata property for a track that is `duration` seconds long, 0 where that is not known.
/// Without a track only its id is there, as the null one.
QVariantMap mprisMetadata(const Track* track, double duration);

} // namespace quorel
