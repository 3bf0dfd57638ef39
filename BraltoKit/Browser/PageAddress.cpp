#include "Browser/PageAddress.h"

namespace Bralto::PageAddress {

namespace {

QString hostAndPort(const QUrl& url)
{
    const QString host = url.host().contains(u':') ? u'[' + url.host() + u']' : url.host();
    return url.port() < 0 ? host : host + u':' + QString::number(url.port());
}

} // namespace

Parts parts(const QUrl& url)
{
    if (url.host().isEmpty())
        return {{}, {}, url.toDisplayString()};
    QString after = url.path(QUrl::PrettyDecoded);
    if (after == QLatin1String("/"))
        after.clear();
    if (url.hasQuery())
        after += u'?' + url.query();
    if (url.hasFragment())
        after += u'#' + url.fragment();
    return {url.scheme() + QStringLiteral("://"), hostAndPort(url), after};
}

bool isSecure(const QUrl& url)
{
    return url.scheme() == QLatin1String("https");
}

QString asker(const QString& origin)
{
    const QUrl url(origin);
    return url.host().isEmpty() ? origin : hostAndPort(url);
}

} // namespace Bralto::PageAddress
