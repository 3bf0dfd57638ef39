#include "Web/WebCertificates.h"

#include <QCryptographicHash>
#include <QSslCertificate>

namespace Bralto {

WebCertificates::Entry WebCertificates::entryFor(const QWebEngineCertificateError& error)
{
    const QUrl url = error.url();
    const auto chain = error.certificateChain();
    const QByteArray digest =
        chain.isEmpty()
            ? QByteArray()
            : QCryptographicHash::hash(chain.front().toDer(), QCryptographicHash::Sha256);
    return {url.host().toLower(), url.port(443), digest};
}

} // namespace Bralto
