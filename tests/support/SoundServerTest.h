#pragma once

#include "support/SoundServer.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace quorel::test {

/// Each case runs on a real server of each kind, and is skipped where the kind is not installed.
class SoundServerTest : public testing::TestWithParam<SoundServer::Kind> {
  protected:
    void SetUp() override {
        if (const auto missing = SoundServer::missingProgram(GetParam()); !missing.empty())
            GTEST_SKIP() << missing << " is not installed";
        server.emplace(GetParam());
    }
    /// Starts the server with these sinks; the first one is the default.
    void startServer(std::initializer_list<std::string> sinks) {
        for (const std::string& sink : sinks)
            server->addSink(sink);
        server->start();
        server->setDefault(*sinks.begin());
    }

    std::optional<SoundServer> server;
};

inline const auto kEachServer =
    testing::Values(SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire);

inline std::string serverName(const testing::TestParamInfo<SoundServer::Kind>& test) {
    return test.param == SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire";
}

} // namespace quorel::test
