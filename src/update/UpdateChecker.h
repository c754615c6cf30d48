#pragma once

#include "core/Clock.h"
#include "update/Release.h"

#include <QObject>
#include <QSslConfiguration>
#include <QUrl>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace quorel {

/// What an UpdateChecker works with.
struct UpdateSource {
    QUrl feed;                ///< an HTTPS address; with any other nothing is ever contacted
    QString installedVersion; ///< empty where it is not known
    QString settingsFile;     ///< an ini file, which keeps the version to skip
    std::function<void(const QUrl&)> openInBrowser; ///< given http and https addresses only
    std::optional<QSslConfiguration> tls; ///< absent: the system's certificates are trusted
};

/// Asks a feed whether a newer version has been published, and holds what the two banners show. A
/// check that fails looks like one that found nothing newer. Main thread; nothing here waits for
/// the network, and nothing of it is set up before the first check.
class UpdateChecker final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::chrono::seconds kFlash{3};

    /// The clock has to outlive the checker.
    UpdateChecker(Clock& clock, UpdateSource source);

    /// The user's own settings file for `UpdateSource`.
    static QString standardSettingsFile();

    /// The release that the update banner offers; that banner goes before the other.
    const std::optional<Release>& available() const { return available_; }
    /// Whether the up-to-date banner is to be shown.
    bool showUpToDate() const { return showUpToDate_; }
    bool isChecking() const { return isChecking_; }
    /// Whether there is a feed to ask: without one, checks do nothing and should not be offered.
    bool isConfigured() const;
    /// The installed version; "0" where it is not known.
    QString currentVersion() const;

    /// Starts a check unless one is running. A forced one, asked for by the user, also offers a
    /// skipped version, and flashes the up-to-date banner when it has nothing to offer.
    void check(bool force);

    /// Opens the offered release's page if its address is one of the web; ends the offer.
    void openDownloadPage();
    /// Ends the offer, and no automatic check makes it again: only exactly this version is skipped.
    void skipThisVersion();
    /// Hides both banners; the next check may offer the release again.
    void dismiss();

  Q_SIGNALS:
    /// Any of `available`, `showUpToDate` and `isChecking` has changed.
    void changed();

  private:
    void finishCheck(bool force, const std::optional<QByteArray>& feed);
    void flashUpToDate();
    void endFlash();

    Clock& clock_;
    const UpdateSource source_;
    std::optional<Release> available_;
    bool showUpToDate_ = false;
    bool isChecking_ = false;
    std::deque<std::unique_ptr<Timer>> flashes_;
};

} // namespace quorel
