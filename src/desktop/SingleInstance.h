#pragma once

#include "desktop/HandOver.h"
#include "storage/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <chrono>
#include <memory>

class QLocalSocket;

namespace quorel {

/// Sees to it that a state file has one owner: the first launch of the program. Others hand over
/// their files to it and end.
///
/// A lock on a file beside the state file decides who is first; the system takes it back however
/// the process ends. The lock's holder listens on a socket and writes into the locked file where
/// that is. The session bus would serve as well where there is one; this serves everywhere.
class SingleInstance : public QObject {
    Q_OBJECT

  public:
    /// A first that is only just starting, from a slow disk, still gets the files.
    static constexpr std::chrono::seconds kPatience{10};

    /// The state file need not be there, its folder must. Neither an application object nor an
    /// event loop is needed yet: those who come meanwhile wait for start().
    explicit SingleInstance(const QString& stateFile);
    ~SingleInstance() override;

    bool isFirst() const { return isFirst_; }
    /// Whether further launches find this one.
    bool canBeFound() const { return lock_.isOpen() && listener_.isOpen(); }

    /// Hands files over to the first. True when it has taken them. If not, then either it has ended
    /// meanwhile and this is now the first, or it did not answer in that time. Relative paths begin
    /// at the working folder.
    bool handOver(const QStringList& paths, const QByteArray& activationToken,
                  std::chrono::milliseconds patience = kPatience);

    /// For the user, when the first does not answer.
    static QString noAnswerNotice();

    /// From now on received() is emitted. Nothing where this is not the first.
    void start();

  Q_SIGNALS:
    void received(const QStringList& paths, const QByteArray& activationToken);

  private:
    /// Becomes the first if there is none.
    void tryLock();
    void listen();
    bool send(const QByteArray& message, std::chrono::milliseconds patience) const;
    void accept();
    void read(QLocalSocket& socket);

    const QByteArray lockFile_;
    Descriptor lock_; ///< the file that also says where the first listens
    bool isFirst_ = false;
    QByteArray socketFile_;
    Descriptor listener_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace quorel
