#pragma once

#include "support/TestFolder.h"

#include <QFile>
#include <QProcess>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <map>

namespace quorel::test {

/// The configuration of a server with a key and a certificate of its own, made in that folder, for
/// that "IP:..." or "DNS:..." name.
inline QSslConfiguration makeIdentity(const TestFolder& folder, const QByteArray& name) {
    const auto key = folder.path("key.pem");
    const auto certificate = folder.path("certificate.pem");
    const auto arguments =
        "req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=test "
        "-addext subjectAltName=" +
        name + " -keyout " + key + " -out " + certificate;
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"), QString::fromUtf8(arguments).split(u' '));
    EXPECT_TRUE(openssl.waitForFinished() && openssl.exitCode() == 0)
        << openssl.readAllStandardError().data();
    QSslConfiguration identity;
    QFile file(QString::fromUtf8(key));
    EXPECT_TRUE(file.open(QFile::ReadOnly));
    identity.setPrivateKey(QSslKey(&file, QSsl::Ec));
    identity.setLocalCertificateChain(QSslCertificate::fromPath(QString::fromUtf8(certificate)));
    return identity;
}

/// What a client needs that is to trust these servers and no others.
inline QSslConfiguration trustIn(const QList<QSslConfiguration>& identities) {
    QList<QSslCertificate> certificates;
    for (const auto& identity : identities)
        certificates += identity.localCertificateChain();
    auto tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(certificates);
    return tls;
}

/// A whole answer over HTTP.
inline QByteArray answer(const QByteArray& body, const QByteArray& status = "200 OK",
                         const QByteArray& fields = {}) {
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\n" + fields + "\r\n" + body;
}

inline QByteArray redirectTo(const QUrl& url, const QByteArray& body) {
    return answer(body, "302 Found", "Set-Cookie: a=b\r\nLocation: " + url.toEncoded() + "\r\n");
}

/// A web server on the loopback interface, in the event loop of the test. It keeps connections
/// open.
class WebServer {
  public:
    /// Speaks TLS as `identity`; HTTP without.
    explicit WebServer(const std::optional<QSslConfiguration>& identity)
        : scheme_(identity ? QStringLiteral("https") : QStringLiteral("http")) {
        if (identity) {
            auto server = std::make_unique<QSslServer>();
            server->setSslConfiguration(*identity);
            server_ = std::move(server);
        } else {
            server_ = std::make_unique<QTcpServer>();
        }
        QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable, server_.get(),
                         [this] { accept(); });
        EXPECT_TRUE(server_->listen(QHostAddress::LocalHost));
    }

    /// What is sent for each path; nothing for an unknown one.
    std::map<QByteArray, QByteArray> answers;
    /// The heads of the requests so far.
    std::vector<QByteArray> requests;

    QUrl url(const QByteArray& path) const {
        return QUrl(scheme_ + QStringLiteral("://127.0.0.1:") +
                    QString::number(server_->serverPort()) + QString::fromUtf8(path));
    }
    /// Sends more on the newest connection.
    void send(const QByteArray& bytes) { newest_->write(bytes); }
    void close() { server_->close(); }

  private:
    void accept() {
        while (QTcpSocket* socket = server_->nextPendingConnection()) {
            const auto read = [this, socket, head = QByteArray()]() mutable {
                head += socket->readAll();
                if (head.endsWith("\r\n\r\n")) {
                    requests.push_back(std::exchange(head, {}));
                    const auto& sent = answers[requests.back().split(' ').at(1)];
                    socket->write(sent);
                    if (sent.contains("\r\nConnection: close\r\n"))
                        socket->disconnectFromHost();
                }
            };
            newest_ = socket;
            QObject::connect(socket, &QTcpSocket::readyRead, socket, read);
        }
    }

    QString scheme_;
    std::unique_ptr<QTcpServer> server_;
    QTcpSocket* newest_ = nullptr; // server_'s
};

} // namespace quorel::test
