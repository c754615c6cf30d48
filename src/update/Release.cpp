#include "update/Release.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace quorel {

namespace {

/// The digits of a component without leading zeros, so that numbers of any length compare by
/// length, then by text; empty for 0.
QStringView significantDigits(QStringView component) {
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (!std::all_of(component.begin(), component.end(), isDigit)) {
        return {};
    }
    while (component.startsWith(u'0')) {
        component = component.mid(1);
    }
    return component;
}

} // namespace

std::optional<Release> releaseFromFeed(const QByteArray& json) {
    const QJsonObject feed = QJsonDocument::fromJson(json).object();
    const QJsonValue version = feed[u"version"];
    const QJsonValue url = feed[u"url"];
    const QJsonValue notes = feed[u"notes"];
    const bool hasNotes = !notes.isUndefined() && !notes.isNull();
    if (!version.isString() || !url.isString() || (hasNotes && !notes.isString())) {
        return std::nullopt;
    }
    return Release{version.toString(), url.toString(),
                   hasNotes ? std::optional(notes.toString()) : std::nullopt};
}

bool isNewer(QStringView version, QStringView than) {
    const auto mine = version.split(u'.', Qt::SkipEmptyParts);
    const auto other = than.split(u'.', Qt::SkipEmptyParts);
    const qsizetype count = std::max(mine.size(), other.size());
    for (qsizetype i = 0; i < count; ++i) {
        const QStringView a = significantDigits(mine.value(i));
        const QStringView b = significantDigits(other.value(i));
        if (a != b) {
            return a.size() == b.size() ? a > b : a.size() > b.size();
        }
    }
    return false;
}

} // namespace quorel
