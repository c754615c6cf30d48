#include "update/ProductAddresses.h"

#include <QUrlQuery>

namespace quorel {

QUrl updateFeed() {
    return feedOn(QStringLiteral(QUOREL_UPDATE_HOST));
}

QUrl website() {
    return webPage(QStringLiteral(QUOREL_WEBSITE));
}

QUrl supportMail() {
    return mailTo(QStringLiteral(QUOREL_SUPPORT_MAIL));
}

QUrl feedOn(const QString& host) {
    QUrl feed;
    feed.setScheme(QStringLiteral("https"));
    feed.setAuthority(host, QUrl::StrictMode);
    feed.setPath(QStringLiteral("/appcast.json"));
    return feed.isValid() && !feed.host().isEmpty() ? feed : QUrl();
}

QUrl webPage(const QString& address) {
    const QUrl url(address, QUrl::StrictMode);
    const bool isWeb = url.scheme() == u"https" || url.scheme() == u"http";
    return url.isValid() && isWeb && !url.host().isEmpty() ? url : QUrl();
}

QUrl mailTo(const QString& address) {
    if (address.count(u'@') != 1 || address.startsWith(u'@') || address.endsWith(u'@')) {
        return {};
    }
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), QStringLiteral("Quorel Support"));
    QUrl mail;
    mail.setScheme(QStringLiteral("mailto"));
    mail.setPath(address);
    mail.setQuery(query);
    return mail;
}

} // namespace quorel
