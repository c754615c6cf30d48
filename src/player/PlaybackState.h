#pragma once

#include "model/MeterValues.h"

#include <QObject>

namespace quorel {

/// What changes all the time while music plays, for views that draw nothing else with it. Read
/// only; main thread.
class PlaybackState : public QObject {
    Q_OBJECT

  public:
    /// Whether sound is, or is about to be, heard: false as soon as a pause is asked for.
    bool isPlaying() const { return isPlaying_; }
    /// A track plays or is paused.
    bool isLoaded() const { return isLoaded_; }
    double currentTime() const { return currentTime_; } ///< seconds
    double duration() const { return duration_; }       ///< seconds, 0 when nothing is loaded
    const MeterValues& meters() const { return meters_; }

  Q_SIGNALS:
    void positionChanged(); ///< five times a second while playing, and at every jump
    void jumped();          ///< the position went elsewhere than playing leads
    void metersChanged();   ///< fifteen times a second while playing

  private:
    friend class PlayerController;

    bool isPlaying_ = false;
    bool isLoaded_ = false;
    double currentTime_ = 0;
    double duration_ = 0;
    MeterValues meters_;
};

} // namespace quorel
