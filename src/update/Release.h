#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace quorel {

/// A published version as the feed describes it: text from outside, to be shown as plain text.
struct Release {
    QString version; ///< dotted, such as 1.4.2
    QString url;     ///< the download page; opened only as far as webPage() allows
    std::optional<QString> notes;

    bool operator==(const Release&) const = default;
};

/// Decodes the feed: one JSON object whose "version" and "url" are texts and whose "notes" are a
/// text, null or absent; other keys are ignored. Absent for anything else.
std::optional<Release> releaseFromFeed(const QByteArray& json);

/// Whether a dotted version is newer than another. Missing components count as 0, and so do those
/// that are not all digits: 1.2 equals 1.2.0, 1.10 is newer than 1.9, 2-beta is 0.
bool isNewer(QStringView version, QStringView than);

} // namespace quorel
