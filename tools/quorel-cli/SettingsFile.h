#pragma once

#include "model/AppSettings.h"

#include <string>

namespace quorel::cli {

/// Settings read from a file, or why they cannot be.
struct ReadSettings {
    AppSettings settings;
    QString error; ///< for people, with the path; empty if all is well
};

/// Reads a JSON settings record; keys that are missing keep their defaults.
ReadSettings readSettings(const std::string& path);

} // namespace quorel::cli
