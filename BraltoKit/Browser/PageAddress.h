#pragma once

#include <QString>
#include <QUrl>

/// How an address is shown to somebody who only looks at it.
namespace Bralto::PageAddress {

/// The pieces of an address in their order. The host is what one must be able to trust, so it
/// stands out from the rest.
struct Parts {
    QString before; ///< "https://", without a name and a password.
    QString host;   ///< With the port.
    QString after;  ///< Path, query and fragment; nothing for a bare "/".

    bool operator==(const Parts&) const = default;
};

/// An address without a host is all `after`.
[[nodiscard]] Parts parts(const QUrl& url);

/// Whether the connection is encrypted.
[[nodiscard]] bool isSecure(const QUrl& url);

/// Who asks, for a question: the host with its port, or the whole origin if it has no host.
[[nodiscard]] QString asker(const QString& origin);

} // namespace Bralto::PageAddress
