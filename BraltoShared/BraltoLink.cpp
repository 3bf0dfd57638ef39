#include "BraltoShared/BraltoLink.h"

#include <QHash>
#include <QStringList>

namespace Bralto {

namespace {

/// The query's values, decoded; of a name that comes twice the first value. A "+" is a plus sign,
/// and an item without "=" has no value.
QHash<QString, QString> queryValues(const QUrl& url)
{
    const auto decoded = [](const QString& text) {
        return QUrl::fromPercentEncoding(text.toLatin1());
    };
    QHash<QString, QString> values;
    const QStringList items = url.query(QUrl::FullyEncoded).split(u'&', Qt::SkipEmptyParts);
    for (const QString& item : items) {
        const qsizetype equals = item.indexOf(u'=');
        if (equals < 0)
            continue;
        const QString name = decoded(item.first(equals));
        if (!values.contains(name))
            values.insert(name, decoded(item.sliced(equals + 1)));
    }
    return values;
}

/// 36 characters of hexadecimal groups; a form in braces is no identifier of a session.
std::optional<QUuid> sessionId(const QString& text)
{
    constexpr qsizetype Length = 36;
    if (text.size() != Length)
        return std::nullopt;
    const QUuid id = QUuid::fromString(text);
    // What can't be read gives the null identifier, which has a spelling of its own.
    if (id.isNull() && text != id.toString(QUuid::WithoutBraces))
        return std::nullopt;
    return id;
}

QByteArray item(const char* name, const QString& value)
{
    // All that a query may hold, without "&", "=", "+", "?" and "#".
    static const QByteArray plain = "!$'()*,;:@/";
    return name + QByteArrayLiteral("=") + QUrl::toPercentEncoding(value, plain);
}

QByteArray address(const BraltoLink::Open& open)
{
    return "open?" + item("path", open.path);
}

QByteArray address(const BraltoLink::Reveal& reveal)
{
    return "reveal?" + item("pane", reveal.pane) + '&' + item("path", reveal.path);
}

QByteArray address(const BraltoLink::New& create)
{
    return "new?" + item("name", create.name);
}

QByteArray address(const BraltoLink::Resume& resume)
{
    return "resume?" + item("path", resume.path) + '&' +
           item("session", resume.session.toString(QUuid::WithoutBraces));
}

} // namespace

std::optional<BraltoLink> BraltoLink::parse(const QUrl& url)
{
    if (url.scheme().compare(QLatin1String(Scheme), Qt::CaseInsensitive) != 0)
        return std::nullopt;

    const QHash<QString, QString> values = queryValues(url);
    const auto value = [&values](const char* name) -> std::optional<QString> {
        const auto found = values.constFind(QLatin1String(name));
        return found == values.constEnd() ? std::nullopt : std::optional(*found);
    };
    const QString host = url.host().toLower();
    const auto path = value("path");

    if (host == QLatin1String("open") && path)
        return BraltoLink{Open{*path}};
    if (host == QLatin1String("reveal")) {
        if (const auto pane = value("pane"); pane && path)
            return BraltoLink{Reveal{*pane, *path}};
    }
    if (host == QLatin1String("new")) {
        if (const auto name = projectName(value("name").value_or(QString())))
            return BraltoLink{New{*name}};
    }
    if (host == QLatin1String("resume") && path) {
        if (const auto session = sessionId(value("session").value_or(QString())))
            return BraltoLink{Resume{*path, *session}};
    }
    return std::nullopt;
}

QUrl BraltoLink::url() const
{
    const QByteArray text = QByteArrayLiteral("bralto://") +
                            std::visit([](const auto& what) { return address(what); }, request);
    const QUrl url = QUrl::fromEncoded(text, QUrl::StrictMode);
    return url.isValid() ? url : QUrl(QStringLiteral("bralto://open"));
}

std::optional<QString> BraltoLink::projectName(const QString& raw)
{
    const QString name = raw.trimmed();
    if (name.isEmpty() || name.startsWith(u'.'))
        return std::nullopt;
    if (name.contains(u'/') || name.contains(u':') || name.contains(QChar(u'\0')))
        return std::nullopt;
    return name;
}

} // namespace Bralto
