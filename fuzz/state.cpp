// The state file: any bytes are refused, or give a state that is written and read as the same.
#include "Require.h"
#include "model/Json.h"
#include "model/PersistedState.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    using namespace quorel;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    if (const auto state = fromJson<PersistedState>(bytes)) {
        const QByteArray text = toJson(*state);
        fuzz::require(fromJson<PersistedState>(text) == state, "what was written reads as it was");
        QByteArray pieces;
        const bool whole = writeJson(*state, [&pieces](QByteArrayView piece) {
            pieces += piece;
            return true;
        });
        fuzz::require(whole && pieces == text, "the text in pieces is the same text");
    }
    return 0;
}
