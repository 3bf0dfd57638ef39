#include "Web/LoadErrors.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace Bralto::LoadErrors {

namespace {

constexpr int Aborted = -3;
constexpr int UnknownScheme = -302;
constexpr int DisallowedScheme = -301;

/// A sentence, in which %1 stands for the server and %2 for the address.
struct Sentence {
    int code;
    const char* text;
};

constexpr Sentence Sentences[] = {
    {-6, "There is no file %2."},
    {-7, "%1 took too long to answer."},
    {-10, "%2 may not be read."},
    {-15, "The connection to %1 was closed."},
    {-20, "%1 is blocked."},
    {-21, "The network changed while the page was loading."},
    {-22, "%1 is blocked."},
    {-27, "%1 does not allow its page to be shown here."},
    {-100, "%1 closed the connection."},
    {-101, "The connection to %1 was reset."},
    {-102, "%1 refused the connection."},
    {-103, "The connection to %1 was broken off."},
    {-104, "%1 could not be reached."},
    {-105, "There is no server %1."},
    {-106, "There is no connection to the network."},
    {-107, "%1 does not speak a secure protocol here."},
    {-108, "%1 is no valid address."},
    {-109, "%1 can’t be reached from this machine."},
    {-110, "%1 asks for a certificate of your own."},
    {-111, "The proxy could not connect to %1."},
    {-113, "%1 offers only encryption that is no longer safe."},
    {-118, "%1 took too long to answer."},
    {-130, "The proxy could not be reached."},
    {-137, "The name %1 could not be looked up."},
    {-300, "%2 is no valid address."},
    {-310, "%1 redirected too many times."},
    {-312, "Pages can’t be loaded from the port of %1."},
    {-320, "%1 sent an answer that makes no sense."},
    {-321, "%1 sent an answer that makes no sense."},
    {-322, "The page asks for its form to be sent again."},
    {-324, "%1 sent no answer."},
    {-325, "%1 sent an answer that makes no sense."},
    {-330, "%1 sent an answer that can’t be decoded."},
    {-337, "%1 sent an answer that makes no sense."},
    {-354, "The answer of %1 broke off."},
    {-355, "The answer of %1 broke off."},
    {-370, "%1 sent an answer that makes no sense."},
    {-501, "The answer of %1 is not secure."},
    {-803, "The name %1 could not be looked up in time."},
    {-200, "The certificate of %1 is for another server."},
    {-201, "The certificate of %1 has expired or is not valid yet."},
    {-202, "The certificate of %1 comes from nobody this machine trusts."},
    {-203, "The certificate of %1 has errors."},
    {-206, "The certificate of %1 was revoked."},
    {-207, "The certificate of %1 is not valid."},
    {-208, "The certificate of %1 has a signature that is no longer safe."},
    {-210, "The certificate of %1 is for a name that anybody may use."},
    {-211, "The certificate of %1 has a key that is no longer safe."},
    {-212, "The certificate of %1 is for another server."},
    {-213, "The certificate of %1 is valid for too long."},
};

QString server(const QUrl& url)
{
    if (url.host().isEmpty())
        return url.toDisplayString();
    return url.port() < 0 ? url.host() : QStringLiteral("%1:%2").arg(url.host()).arg(url.port());
}

QString address(const QUrl& url)
{
    return url.isLocalFile() ? url.toLocalFile().simplified() : url.toDisplayString().simplified();
}

QString statusName(int status)
{
    switch (status) {
    case 400:
        return QStringLiteral("Bad Request");
    case 401:
        return QStringLiteral("Unauthorized");
    case 403:
        return QStringLiteral("Forbidden");
    case 404:
        return QStringLiteral("Not Found");
    case 429:
        return QStringLiteral("Too Many Requests");
    case 500:
        return QStringLiteral("Internal Server Error");
    case 502:
        return QStringLiteral("Bad Gateway");
    case 503:
        return QStringLiteral("Service Unavailable");
    case 504:
        return QStringLiteral("Gateway Timeout");
    default:
        return {};
    }
}

} // namespace

bool isCertificate(int code)
{
    return (code <= -200 && code >= -219) || code == -150;
}

PageLoadError forNetwork(int code, const QUrl& url)
{
    if (code == Aborted)
        return {PageLoadError::Kind::Cancelled, QStringLiteral("The load was cancelled.")};
    if (code == UnknownScheme || code == DisallowedScheme)
        return forScheme(url);
    const auto kind =
        isCertificate(code) ? PageLoadError::Kind::Certificate : PageLoadError::Kind::Failed;
    const auto* const found =
        std::find_if(std::begin(Sentences), std::end(Sentences),
                     [code](const Sentence& each) { return each.code == code; });
    if (found != std::end(Sentences)) {
        QString text = QString::fromUtf8(found->text);
        // One pass each: an address may hold what looks like a place.
        return {kind, text.contains(QStringLiteral("%2"))
                          ? text.replace(QStringLiteral("%2"), address(url))
                          : text.replace(QStringLiteral("%1"), server(url))};
    }
    if (kind == PageLoadError::Kind::Certificate)
        return {kind, QStringLiteral("The certificate of %1 is not valid.").arg(server(url))};
    return {kind, QStringLiteral("%1 could not be loaded (error %2).")
                      .arg(address(url), QString::number(code))};
}

PageLoadError forStatus(int status, const QUrl& url)
{
    const QString name = statusName(status);
    const QString answer =
        name.isEmpty() ? QString::number(status) : QStringLiteral("%1 %2").arg(status).arg(name);
    return {PageLoadError::Kind::Failed,
            QStringLiteral("%1 answered “%2” and sent no page.").arg(server(url), answer)};
}

bool isForPages(const QUrl& url)
{
    // Not javascript:, which would run in the page that is there.
    static const QStringList schemes{QStringLiteral("http"),   QStringLiteral("https"),
                                     QStringLiteral("file"),   QStringLiteral("data"),
                                     QStringLiteral("about"),  QStringLiteral("blob"),
                                     QStringLiteral("chrome"), QStringLiteral("view-source")};
    return schemes.contains(url.scheme());
}

PageLoadError forScheme(const QUrl& url)
{
    return {PageLoadError::Kind::Failed,
            QStringLiteral("Pages have no addresses that begin with “%1:”.").arg(url.scheme())};
}

PageLoadError timedOut(const QUrl& url)
{
    return forNetwork(-7, url);
}

} // namespace Bralto::LoadErrors
