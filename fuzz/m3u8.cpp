// Playlist files: any bytes are refused, or name paths that pass unharmed through a playlist.
#include "media/M3U8.h"

#include "Require.h"
#include "model/Path.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    using namespace quorel;
    const QByteArrayView bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    Playlist playlist;
    QStringList paths;
    for (const QString& entry : M3U8::entries(bytes).value_or(QStringList())) {
        fuzz::require(!entry.isEmpty() && !entry.contains(QChar::Null), "an entry is a path");
        if (entry.startsWith(u'/') && trimmedOfBlanks(entry) == entry) {
            paths += entry;
            playlist.tracks += Track::fromPath(entry);
        }
    }
    fuzz::require(M3U8::entries(M3U8::text(playlist)) == paths, "paths pass through a playlist");
    return 0;
}
