#include "desktop/SingleInstance.h"

#include "desktop/LocalSocket.h"
#include "model/Path.h"
#include "storage/Files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QLocalSocket>
#include <cerrno>
#include <climits>
#include <thread>
#include <tuple>

namespace quorel {

namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kPause{10}; // between two attempts
constexpr char kTaken = 1;         // the answer to what was handed over

QByteArray contents(int file) {
    QByteArray text(PATH_MAX, '\0');
    const ssize_t size = ::pread(file, text.data(), size_t(text.size()), 0);
    return text.first(qMax(size, ssize_t(0)));
}

/// Where that fails, others find no answer.
void publish(int file, const QByteArray& text) {
    if (::ftruncate(file, 0) == 0)
        std::ignore = ::pwrite(file, text.constData(), size_t(text.size()), 0);
}

bool sendAll(int socket, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t sent = ::send(socket, bytes.data(), size_t(bytes.size()), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR)
            return false;
        bytes = bytes.sliced(qMax(sent, ssize_t(0)));
    }
    return true;
}

/// Short-lived files belong into the first of these; the second is always there.
QByteArrayList socketFolders(const QByteArray& lockFile) {
    QByteArrayList folders = {folderOf(lockFile)};
    if (const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR"); runtime.startsWith('/'))
        folders.prepend(runtime);
    return folders;
}

} // namespace

SingleInstance::SingleInstance(const QString& stateFile)
    : lockFile_(absolutePath(pathToBytes(stateFile), workingFolder()) + ".lock")
    , lock_(::open(lockFile_.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    tryLock();
}

SingleInstance::~SingleInstance() {
    // Before the lock goes, for then the file may be another's.
    if (!socketFile_.isEmpty())
        ::unlink(socketFile_.constData());
}

void SingleInstance::tryLock() {
    // Where files cannot be locked nobody can be asked: better a second player than none.
    if (::flock(lock_.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return;
    isFirst_ = true;
    listen();
}

void SingleInstance::listen() {
    const QByteArray name = QCryptographicHash::hash(lockFile_, QCryptographicHash::Sha1).toHex();
    for (const QByteArray& folder : socketFolders(lockFile_)) {
        socketFile_ = folder + "/quorel-" + name.first(16) + ".socket";
        listener_ = local_socket::listenAt(socketFile_);
        if (listener_.isOpen()) {
            publish(lock_.number(), socketFile_);
            return;
        }
    }
    socketFile_.clear();
}

bool SingleInstance::handOver(const QStringList& paths, const QByteArray& activationToken,
                              milliseconds patience) {
    HandOver handOver{{}, activationToken};
    for (const QString& path : paths)
        handOver.paths += pathFromBytes(absolutePath(pathToBytes(path), workingFolder()));
    const QByteArray message = messageOf(handOver);

    const auto end = Steady::now() + patience;
    while (!isFirst_) {
        const auto left = std::chrono::duration_cast<milliseconds>(end - Steady::now());
        if (left <= milliseconds(0))
            return false;
        if (send(message, left))
            return true;
        // The first may be starting, so that it does not listen yet, or ending.
        tryLock();
        if (!isFirst_)
            std::this_thread::sleep_for(kPause);
    }
    return false;
}

QString SingleInstance::noAnswerNotice() {
    return QStringLiteral("Quorel is already running, but it does not answer.");
}

bool SingleInstance::send(const QByteArray& message, milliseconds patience) const {
    const QByteArray file = contents(lock_.number());
    if (!file.startsWith('/'))
        return false;
    const Descriptor socket(local_socket::connectTo(file, patience));
    char answer = 0;
    return socket.isOpen() && sendAll(socket.number(), message) &&
           ::recv(socket.number(), &answer, 1, 0) == 1 && answer == kTaken;
}

void SingleInstance::start() {
    if (!listener_.isOpen())
        return;
    notifier_ = std::make_unique<QSocketNotifier>(listener_.number(), QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, &SingleInstance::accept);
}

void SingleInstance::accept() {
    for (Descriptor peer = local_socket::acceptAt(listener_.number()); peer.isOpen();
         peer = local_socket::acceptAt(listener_.number())) {
        auto* socket = new QLocalSocket(this);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { read(*socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        socket->setSocketDescriptor(peer.release());
    }
}

void SingleInstance::read(QLocalSocket& socket) {
    if (socket.bytesAvailable() < kHandOverHeader)
        return;
    const std::optional<qsizetype> size = sizeAfter(socket.peek(kHandOverHeader));
    const qsizetype there = socket.bytesAvailable() - kHandOverHeader;
    if (size && there < *size)
        return;
    const auto handOver =
        size == there ? handOverOf(socket.readAll().sliced(kHandOverHeader)) : std::nullopt;
    if (!handOver) {
        socket.abort();
        return;
    }
    socket.write(&kTaken, 1);
    socket.flush();
    socket.disconnectFromServer();
    Q_EMIT received(handOver->paths, handOver->activationToken);
}

} // namespace quorel
