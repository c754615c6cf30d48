#include "support/SoundServer.h"

#include "support/AudioFixtures.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <sstream>
#include <stdexcept>

namespace quorel::test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr const char* kSurround = "front-left,front-right,front-center,lfe,rear-left,rear-right";

void waitFor(const std::string& what, const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("waited in vain for " + what);
        std::this_thread::sleep_for(10ms);
    }
}

} // namespace

SoundServer::SoundServer(Kind kind)
    : kind_(kind) {
    const std::string home = folder_.path("home");
    // Where no systemd runs, WirePlumber would end over its watch of seats, which only Bluetooth
    // needs.
    fs::create_directories(home + "/wireplumber/bluetooth.lua.d");
    folder_.write("home/wireplumber/bluetooth.lua.d/60-no-seats.lua",
                  "bluez_monitor.properties[\"with-logind\"] = false\n");
    const std::string socket = folder_.path(kind == Kind::PulseAudio ? "native" : "pulse/native");
    const std::map<const char*, std::string> environment{
        {"HOME", home},
        {"XDG_CONFIG_HOME", home},
        {"XDG_STATE_HOME", home},
        {"XDG_RUNTIME_DIR", folder_.path("")},
        {"PIPEWIRE_RUNTIME_DIR", folder_.path("")},
        {"PULSE_RUNTIME_PATH", folder_.path("pulse")},
        {"PULSE_STATE_PATH", home},
        {"PULSE_COOKIE", folder_.path("cookie")},
        {"PULSE_SERVER", "unix:" + socket},
        {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder_.path("bus")}};
    for (const auto& [name, value] : environment)
        setenv(name, value.c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("PULSE_SINK");
}

SoundServer::~SoundServer() {
    kill();
}

std::string SoundServer::missingProgram(Kind kind) {
    std::vector<std::string> needed{"setpriv", "pactl", "parec"};
    if (kind == Kind::PulseAudio)
        needed.emplace_back("pulseaudio");
    else
        needed.insert(needed.end(), {"dbus-daemon", "pipewire", "wireplumber", "pipewire-pulse"});
    const auto missing = std::ranges::find_if_not(needed, hasTool);
    return missing == needed.end() ? std::string() : *missing;
}

void SoundServer::start() {
    const auto exists = [this](const char* name) { return fs::exists(folder_.path(name)); };
    for (const char* stale : {"bus", "pipewire-0", "native", "pulse/native"})
        fs::remove(folder_.path(stale));
    if (kind_ == Kind::PulseAudio) {
        launch({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                "--realtime=no", "--high-priority=no", "--disable-shm=yes", "--log-level=error",
                "--log-target=stderr", "-L",
                "module-native-protocol-unix auth-anonymous=1 socket=" + folder_.path("native")});
    } else {
        launch({"dbus-daemon", "--session", "--nofork", "--nopidfile",
                "--address=unix:path=" + folder_.path("bus")});
        waitFor("the message bus", [&] { return exists("bus"); });
        launch({"pipewire"});
        waitFor("PipeWire", [&] { return exists("pipewire-0"); });
        launch({"wireplumber"});
        launch({"pipewire-pulse"});
    }
    waitFor("the sound server", [this] { return !pactl({"info"}).empty(); });
    for (auto& [name, sink] : sinks_)
        load(name, sink);
}

void SoundServer::kill() {
    // The last one started is the one that clients are connected to.
    while (!processes_.empty())
        processes_.pop_back();
}

void SoundServer::signal(int number) const {
    for (const ChildProcess& process : processes_)
        process.signal(number);
}

void SoundServer::addSink(const std::string& name, int rate, int channels) {
    Sink& sink = sinks_[name] = {rate, channels, {}};
    if (!processes_.empty())
        load(name, sink);
}

void SoundServer::load(const std::string& name, Sink& sink) {
    std::vector<std::string> words{"module-null-sink", "sink_name=" + name, "format=float32le",
                                   "sink_properties=device.description=The-" + name};
    words.push_back("rate=" + std::to_string(sink.rate));
    words.push_back("channels=" + std::to_string(sink.channels));
    if (sink.channels == 6)
        words.push_back(std::string("channel_map=") + kSurround);
    if (kind_ == Kind::PulseAudio) {
        // Without it a null sink renders 2 s at a time, which no device does.
        words.emplace_back("norewinds=1");
    }
    waitFor("the sink " + name, [&] { return !(sink.module = loadModule(words)).empty(); });
    waitFor("the sink " + name, [&] {
        const auto names = sinkNames();
        return std::ranges::find(names, name) != names.end();
    });
}

void SoundServer::removeSink(const std::string& name) {
    pactl({"unload-module", sinks_.at(name).module});
    sinks_.erase(name);
}

void SoundServer::setDefault(const std::string& name) {
    waitFor("the default " + name, [&] {
        pactl({"set-default-sink", name});
        return pactl({"get-default-sink"}) == name;
    });
}

void SoundServer::suspend(const std::string& name, bool suspended) {
    pactl({"suspend-sink", name, suspended ? "1" : "0"});
}

std::string SoundServer::loadModule(const std::vector<std::string>& words) {
    std::vector<std::string> command{"load-module"};
    command.insert(command.end(), words.begin(), words.end());
    return pactl(command);
}

std::vector<std::string> SoundServer::sinkNames() const {
    std::vector<std::string> names;
    std::istringstream lines(pactl({"list", "short", "sinks"}));
    std::string number;
    std::string name;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream(line) >> number >> name;
        names.push_back(name);
    }
    return names;
}

void SoundServer::launch(const std::vector<std::string>& command) {
    processes_.emplace_back(command, folder_.path(command[0] + ".log"));
}

std::string SoundServer::pactl(const std::vector<std::string>& arguments) const {
    const std::string answer = folder_.path("answer");
    const int output = open(answer.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    std::vector<std::string> command{"pactl"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const int status = ChildProcess(command, folder_.path("pactl.log"), output).wait();
    close(output);
    std::string text = readFile(answer);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return status == 0 ? text : std::string();
}

Recorder::Recorder(const std::string& sink, int rate, int channels) {
    if (pipe2(pipe_, O_CLOEXEC) != 0)
        throw std::runtime_error("cannot make a pipe");
    std::vector<std::string> command{
        "parec", "-d", sink + ".monitor", "--format=float32le", "--raw", "--latency-msec=20"};
    command.push_back("--rate=" + std::to_string(rate));
    command.push_back("--channels=" + std::to_string(channels));
    if (channels == 6)
        command.push_back(std::string("--channel-map=") + kSurround);
    process_ = ChildProcess(command, "/dev/null", pipe_[1]);
    close(pipe_[1]);
    reader_ = std::thread([this] { read(); });
    waitFor("the recorder", [this] { return !samples().empty(); });
}

Recorder::~Recorder() {
    process_.end();
    reader_.join();
    close(pipe_[0]);
}

std::vector<float> Recorder::samples() const {
    const std::lock_guard lock(mutex_);
    return samples_;
}

float Recorder::latest() const {
    const std::lock_guard lock(mutex_);
    return samples_.empty() ? 0.0F : samples_.back();
}

void Recorder::read() {
    std::array<char, 65536> buffer;
    std::size_t held = 0;
    while (true) {
        const ssize_t count = ::read(pipe_[0], buffer.data() + held, buffer.size() - held);
        if (count <= 0)
            return;
        held += static_cast<std::size_t>(count);
        const std::size_t whole = held / sizeof(float);
        const std::lock_guard lock(mutex_);
        const std::size_t before = samples_.size();
        samples_.resize(before + whole);
        std::memcpy(samples_.data() + before, buffer.data(), whole * sizeof(float));
        held -= whole * sizeof(float);
        std::memmove(buffer.data(), buffer.data() + whole * sizeof(float), held);
    }
}

} // namespace quorel::test
