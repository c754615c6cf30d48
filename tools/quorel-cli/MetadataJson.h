#pragma once

#include "model/Track.h"

#include <QJsonObject>

namespace quorel::cli {

/// What was read of a file, under its fields' own names; what is absent is left out.
QJsonObject toJson(const TrackMetadata& metadata);

} // namespace quorel::cli
