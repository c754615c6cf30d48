#pragma once

#include "audio/output/Output.h"
#include "core/Clock.h"

#include <vector>

namespace quorel {

/// An output that renders when it is told to, into memory: for offline rendering and for tests.
/// Single-threaded; its time is the injected clock's.
class MemoryOutput final : public Output {
  public:
    /// `latencyFrames`: how many frames a server would keep buffered, >= 0.
    MemoryOutput(Clock& clock, const rt::Format& format, int latencyFrames = 0);

    void attach(RenderClient& client, OutputListener& listener) override;
    void open(const QString& uid) override;
    void start(uint64_t stream) override;
    void stop() override;
    OutputTiming timing() const override;
    QList<OutputDevice> devices() const override { return {}; }

    const rt::Format& format() const { return format_; }
    bool isRunning() const { return running_; }

    /// The client may be wrapped by another one, to watch what it does.
    RenderClient& client() { return *client_; }
    void setClient(RenderClient& client) { client_ = &client; }

    /// Takes the device away, as a server that dies does, until the next open().
    void lose();

    /// Appends `frames` rendered frames (silence while stopped) to `sink`, interleaved.
    void render(int frames, std::vector<float>& sink);

  private:
    Clock& clock_;
    rt::Format format_;
    const int latencyFrames_;
    RenderClient* client_ = nullptr;
    OutputListener* listener_ = nullptr;
    uint64_t stream_ = 0;
    bool isOpen_ = false;
    bool running_ = false;
    int64_t written_ = 0;
    int64_t sinceStart_ = 0; // frames rendered since the buffer was last empty
};

} // namespace quorel
