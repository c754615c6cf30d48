#pragma once

#include <QString>

namespace quorel {

/// A failure that the user must see, shown by whoever started the action.
struct Error {
    int code = 0;
    QString description; ///< a clear sentence
    QString domain = QStringLiteral("Quorel");
};

} // namespace quorel
