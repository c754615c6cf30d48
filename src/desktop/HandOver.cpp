#include "desktop/HandOver.h"

#include "model/Path.h"

#include <QtEndian>

namespace quorel {

QByteArray messageOf(const HandOver& handOver) {
    QByteArray message(kHandOverHeader, '\0');
    message.append(handOver.activationToken).append('\0');
    for (const QString& path : handOver.paths)
        message.append(pathToBytes(path)).append('\0');
    qToBigEndian(static_cast<quint32>(message.size() - kHandOverHeader), message.data());
    return message;
}

std::optional<qsizetype> sizeAfter(QByteArrayView header) {
    const auto size = static_cast<qsizetype>(qFromBigEndian<quint32>(header.data()));
    if (size == 0 || size > kLongestHandOver)
        return std::nullopt;
    return size;
}

std::optional<HandOver> handOverOf(QByteArrayView rest) {
    if (rest.isEmpty() || rest.back() != '\0')
        return std::nullopt;
    QByteArrayList parts = rest.chopped(1).toByteArray().split('\0');
    HandOver handOver{{}, parts.takeFirst()};
    for (const QByteArray& path : parts) {
        if (!path.startsWith('/'))
            return std::nullopt;
        handOver.paths += pathFromBytes(path);
    }
    return handOver;
}

} // namespace quorel
