#pragma once

#include "support/AudioFixtures.h"
#include "support/ChildProcess.h"

#include <csignal>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace quorel::test {

/// A private sound server with null sinks, in a directory of its own; the environment of this
/// program points to it. Made before any thread that reads the environment.
class SoundServer {
  public:
    enum class Kind { PulseAudio, PipeWire };

    explicit SoundServer(Kind kind);
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    /// The first of the programs needed that is not installed; empty if all are.
    static std::string missingProgram(Kind kind);

    void start(); ///< returns when the server answers and has the sinks added so far
    void kill();  ///< with all its processes, without warning
    void freeze() { signal(SIGSTOP); }
    void thaw() { signal(SIGCONT); }

    void addSink(const std::string& name, int rate = 48000, int channels = 2);
    void removeSink(const std::string& name);
    void setDefault(const std::string& name); ///< returns when it is the default
    void suspend(const std::string& name, bool suspended);

    std::string loadModule(const std::vector<std::string>& words); ///< its number at the server
    std::vector<std::string> sinkNames() const;                    ///< in the server's order

    Kind kind() const { return kind_; }

  private:
    struct Sink {
        int rate = 0;
        int channels = 0;
        std::string module; // its number at the server
    };

    void launch(const std::vector<std::string>& command);
    void signal(int number) const;
    std::string pactl(const std::vector<std::string>& arguments) const;
    void load(const std::string& name, Sink& sink);

    const Kind kind_;
    TemporaryFolder folder_;
    std::vector<ChildProcess> processes_;
    std::map<std::string, Sink> sinks_;
};

/// Records what a sink of the running server plays, from the moment of construction.
class Recorder {
  public:
    explicit Recorder(const std::string& sink, int rate = 48000, int channels = 2);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    std::vector<float> samples() const; ///< so far, interleaved
    float latest() const;               ///< the newest of them

  private:
    void read();

    int pipe_[2] = {-1, -1};
    ChildProcess process_;
    mutable std::mutex mutex_;
    std::vector<float> samples_;
    std::thread reader_;
};

} // namespace quorel::test
