#pragma once

#include "core/Clock.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QSslConfiguration>
#include <functional>
#include <memory>
#include <optional>

namespace quorel {

/// One download of the feed, deleted by itself when it is over, or by its parent before. It leaves
/// nothing behind: no cache, no cookie, no connection. Main thread; never waits.
class FeedFetch final : public QObject {
  public:
    static constexpr std::chrono::seconds kLongest{10};
    static constexpr qsizetype kLargest = 64 * 1024; ///< bytes
    static constexpr int kMostRedirects = 5;

    using Done = std::function<void(std::optional<QByteArray> body)>;

    /// Starts it. `tls` absent: servers are verified against the system's certificates. `done` is
    /// called once from the event loop, unless the object is deleted before: with the body,
    /// whatever the HTTP status, or without when none arrived whole, safely and within the limits
    /// above.
    FeedFetch(Clock& clock, const QUrl& feed, const std::optional<QSslConfiguration>& tls,
              Done done, QObject* parent);

  private:
    void readAvailable();
    void finish(bool arrived);

    QNetworkAccessManager network_;
    QNetworkReply* reply_; // network_'s
    QByteArray body_;
    Done done_;
    std::unique_ptr<Timer> timeLimit_;
};

} // namespace quorel
