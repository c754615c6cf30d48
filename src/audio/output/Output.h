#pragma once

#include "audio/rt/Format.h"

#include <QList>
#include <QString>
#include <chrono>
#include <cstdint>

namespace quorel {

/// A device that sound can be sent to.
struct OutputDevice {
    uint32_t id = 0; ///< number, valid while the program runs
    QString uid;     ///< stays the same between runs
    QString name;    ///< for people

    bool operator==(const OutputDevice&) const = default;
};

/// Who makes the sound. Called on the output's own thread, between Output::start and the stop,
/// loss or end of that stream.
class RenderClient {
  public:
    virtual ~RenderClient() = default;

    /// Fills `frames` interleaved frames in the format that the output was opened with. Neither
    /// waits, allocates, logs nor touches files.
    virtual void render(float* interleaved, int frames) noexcept = 0;
};

/// How far a stream has come, as one consistent reading.
struct OutputTiming {
    int64_t framesWritten = 0;           ///< frames taken from the client since the stream opened
    std::chrono::nanoseconds latency{0}; ///< time until a frame written now would be heard
    std::chrono::nanoseconds at{0};      ///< std::chrono::steady_clock time of this reading
    bool advancing = false;              ///< false while stopped, suspended or stalled
};

/// What an output has to tell. All calls come on the main thread, posted, never from inside an
/// Output call.
class OutputListener {
  public:
    virtual ~OutputListener() = default;

    /// A stream is open, stopped and silent. `stream` names it to Output::start. The client is not
    /// called before that, so everything may be prepared for `format` now.
    virtual void outputOpened(uint64_t stream, const rt::Format& format) = 0;

    /// The open stream, or the attempt to open one, is gone; the client is not called any more.
    /// The output goes on trying by itself. `reason` is a clear sentence for the status line.
    virtual void outputLost(const QString& reason) = 0;

    /// The server has stopped asking for sound although it should (true), or asks again (false).
    virtual void outputStalled(bool stalled) = 0;

    /// The server ran out of sound in time; `total` counts since the output was made.
    virtual void outputUnderflowed(int total) = 0;

    /// The list of devices, or which of them is the default, has changed.
    virtual void outputDevicesChanged() = 0;
};

/// A way for sound to leave the program. All operations are called on the main thread and return at
/// once: whatever takes time happens on the output's own thread and is told to the listener.
class Output {
  public:
    virtual ~Output() = default; ///< ends the stream; no call to client or listener after it

    /// Both must outlive the output. Before the first open.
    virtual void attach(RenderClient& client, OutputListener& listener) = 0;

    /// Opens a stream on the device with that UID, or on the system's default when it is empty; an
    /// open stream on another device is closed first. While the wanted device is absent the default
    /// serves, and the device is returned to when it appears. Keeps trying until it works.
    virtual void open(const QString& uid) = 0;

    /// Lets the open stream run, from an empty buffer: the next frame rendered is the next one
    /// heard. Ignored unless `stream` is still the open one.
    virtual void start(uint64_t stream) = 0;

    /// Halts the stream at once, keeping it open. What the buffer still holds is dropped by the
    /// next start, so the caller stops when all it wants heard has been heard.
    virtual void stop() = 0;

    /// The latest reading of the open stream.
    virtual OutputTiming timing() const = 0;

    /// The devices last reported, in the system's order, without inputs and stand-ins.
    virtual QList<OutputDevice> devices() const = 0;
};

} // namespace quorel
