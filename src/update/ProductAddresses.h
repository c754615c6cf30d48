#pragma once

#include <QString>
#include <QUrl>

namespace quorel {

// The product's addresses, given to the build by QUOREL_UPDATE_HOST (host or host:port),
// QUOREL_WEBSITE (an http or https address) and QUOREL_SUPPORT_MAIL. An address that was not given,
// or is none, is empty, and what would use it is not offered.

/// Where the newest release is described.
QUrl updateFeed();
QUrl website();
/// A new e-mail to the support address, its subject filled in.
QUrl supportMail();

/// The feed on that host; empty when the text is no host.
QUrl feedOn(const QString& host);
/// The address as a browser may be given it: http or https, with a host; else empty.
QUrl webPage(const QString& address);
/// A new e-mail to that address; empty when the text is no address.
QUrl mailTo(const QString& address);

} // namespace quorel
