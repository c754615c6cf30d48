#include "update/UpdateChecker.h"

#include "update/FeedFetch.h"
#include "update/ProductAddresses.h"

#include <QSettings>
#include <QStandardPaths>
#include <utility>

namespace quorel {

namespace {

const QString kSkippedVersion = QStringLiteral("QuorelSkippedUpdateVersion");

bool isSkipped(const QString& version, const QString& settingsFile) {
    return QSettings(settingsFile, QSettings::IniFormat).value(kSkippedVersion).toString() ==
           version;
}

} // namespace

UpdateChecker::UpdateChecker(Clock& clock, UpdateSource source)
    : clock_(clock)
    , source_(std::move(source)) {}

QString UpdateChecker::standardSettingsFile() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Quorel/update.ini");
}

bool UpdateChecker::isConfigured() const {
    return source_.feed.scheme() == u"https" && !source_.feed.host().isEmpty();
}

QString UpdateChecker::currentVersion() const {
    return source_.installedVersion.isEmpty() ? QStringLiteral("0") : source_.installedVersion;
}

void UpdateChecker::check(bool force) {
    if (isChecking_ || !isConfigured()) {
        return;
    }
    isChecking_ = true;
    new FeedFetch(
        clock_, source_.feed, source_.tls,
        [this, force](const std::optional<QByteArray>& feed) { finishCheck(force, feed); }, this);
    Q_EMIT changed();
}

void UpdateChecker::finishCheck(bool force, const std::optional<QByteArray>& feed) {
    isChecking_ = false;
    const auto release = feed ? releaseFromFeed(*feed) : std::nullopt;
    const bool isNew = release && isNewer(release->version, currentVersion());
    if (isNew && (force || !isSkipped(release->version, source_.settingsFile))) {
        available_ = release;
    }
    if (!isNew && force) {
        flashUpToDate();
    }
    Q_EMIT changed();
}

void UpdateChecker::flashUpToDate() {
    showUpToDate_ = true;
    // Every flash has its own end, and the first end to come hides the banner.
    flashes_.push_back(clock_.startTimer(kFlash, Clock::Repeat::Once, [this] { endFlash(); }));
}

void UpdateChecker::endFlash() {
    flashes_.pop_front(); // they last equally long, so the oldest ends first
    if (std::exchange(showUpToDate_, false)) {
        Q_EMIT changed();
    }
}

void UpdateChecker::openDownloadPage() {
    if (!available_) {
        return;
    }
    const QUrl page = webPage(available_->url);
    available_.reset();
    if (!page.isEmpty()) {
        source_.openInBrowser(page);
    }
    Q_EMIT changed();
}

void UpdateChecker::skipThisVersion() {
    if (!available_) {
        return;
    }
    QSettings(source_.settingsFile, QSettings::IniFormat)
        .setValue(kSkippedVersion, available_->version);
    available_.reset();
    Q_EMIT changed();
}

void UpdateChecker::dismiss() {
    if (!available_ && !showUpToDate_) {
        return;
    }
    available_.reset();
    showUpToDate_ = false;
    Q_EMIT changed();
}

} // namespace quorel
