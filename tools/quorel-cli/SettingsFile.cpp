#include "tools/quorel-cli/SettingsFile.h"

#include "model/Json.h"
#include "tools/quorel-cli/OpenTrack.h"

#include <fstream>
#include <iterator>

namespace quorel::cli {

ReadSettings readSettings(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file || text.empty()) {
        return {{}, aboutFile(path, QStringLiteral("no settings can be read there"))};
    }
    const auto settings = fromJson<AppSettings>(QByteArray::fromStdString(text));
    if (!settings) {
        return {{}, aboutFile(path, QStringLiteral("is not a JSON record of settings"))};
    }
    return {*settings, {}};
}

} // namespace quorel::cli
