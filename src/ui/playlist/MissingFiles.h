#pragma once

#include "core/SerialQueue.h"

#include <QHash>
#include <QObject>
#include <QStringList>

namespace quorel {

/// Knows which files are gone. Files are looked for in the background, and only those that someone
/// asks about: rows that are seen. Main thread.
class MissingFiles final : public QObject {
    Q_OBJECT

  public:
    MissingFiles(Clock& clock, SerialQueue::Mode mode, QObject* parent);

    /// What is known by now; a file not known yet is looked for.
    bool isMissing(const QString& path);
    /// Files may have come or gone: all are looked for anew as they are asked about.
    void forget();

    /// With a pumped queue: looks for what waits.
    bool pump() { return queue_.pump(); }

  Q_SIGNALS:
    void changed();

  private:
    struct Answer {
        bool missing = false;
        int round = 0;
    };

    void lookForWaiting();
    void learn(const QHash<QString, bool>& found, int round);

    Clock& clock_;
    SerialQueue queue_;
    QHash<QString, Answer> known_;
    QStringList waiting_;
    std::unique_ptr<Timer> soon_;
    int round_ = 1;
};

} // namespace quorel
