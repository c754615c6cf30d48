#pragma once

namespace quorel {

/// What the controller has the main window do. Main thread.
class PlayerWindow {
  public:
    virtual ~PlayerWindow() = default;

    virtual void setAlwaysOnTop(bool onTop) = 0;
    /// The window grows or shrinks by the playlist's height; `animated` where that may be seen.
    virtual void setPlaylistShown(bool shown, bool animated) = 0;
    virtual void setFullScreen(bool fullScreen) = 0;
    /// The size of the whole interface, 0.5..1.5.
    virtual void setScale(double scale, bool animated) = 0;
    virtual void setWordmarkIcon(bool shown) = 0;
    virtual void raiseWindow() = 0;
};

} // namespace quorel
