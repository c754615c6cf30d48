#include "desktop/ActivationToken.h"

#include <QtGlobal>

namespace quorel {

QByteArray launchActivationToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

void useActivationToken(const QByteArray& token) {
    // Qt's window looks for it there whenever it is activated, and takes it away.
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token);
}

} // namespace quorel
