#include "update/FeedFetch.h"

#include <QNetworkReply>

namespace quorel {

namespace {

QNetworkRequest requestFor(const QUrl& feed, const std::optional<QSslConfiguration>& tls) {
    QNetworkRequest request(feed);
    if (tls) {
        request.setSslConfiguration(*tls);
    }
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    // From HTTPS this leads to HTTPS only.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(FeedFetch::kMostRedirects);
    // For one small answer neither HTTP/2 nor compression is worth its code.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setRawHeader("Accept-Encoding", "identity");
    // Without this Qt poses as a browser.
    request.setHeader(QNetworkRequest::UserAgentHeader, QStringLiteral("Quorel"));
    return request;
}

/// Qt counts statuses from 400 on as errors too, but their bodies are as good as any other.
bool isTransferError(QNetworkReply::NetworkError error) {
    return error != QNetworkReply::NoError && error <= QNetworkReply::UnknownProxyError;
}

} // namespace

FeedFetch::FeedFetch(Clock& clock, const QUrl& feed, const std::optional<QSslConfiguration>& tls,
                     Done done, QObject* parent)
    : QObject(parent)
    , reply_(network_.get(requestFor(feed, tls)))
    , done_(std::move(done))
    , timeLimit_(clock.startTimer(kLongest, Clock::Repeat::Once, [this] { finish(false); })) {
    // What is not read stays with the server.
    reply_->setReadBufferSize(kLargest + 1);
    connect(reply_, &QNetworkReply::readyRead, this, &FeedFetch::readAvailable);
    connect(reply_, &QNetworkReply::finished, this,
            [this] { finish(!isTransferError(reply_->error())); });
}

void FeedFetch::readAvailable() {
    body_ += reply_->readAll();
    if (body_.size() > kLargest) {
        finish(false);
    }
}

void FeedFetch::finish(bool arrived) {
    timeLimit_.reset();
    reply_->disconnect(this);
    deleteLater(); // it may be running inside a signal of the reply
    done_(arrived ? std::optional(std::move(body_)) : std::nullopt);
}

} // namespace quorel
