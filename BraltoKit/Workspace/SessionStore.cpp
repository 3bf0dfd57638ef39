#include "Workspace/SessionStore.h"

#include "Base/Paths.h"
#include "Base/Uuid.h"

namespace Bralto::SessionStore {

namespace {

constexpr auto TabsKey = "tabs";
constexpr auto ActiveKey = "active";

QString splitKey(const QString& folder)
{
    return key(folder) + QStringLiteral(".split");
}

bool isString(const QVariant& value)
{
    return value.typeId() == QMetaType::QString;
}

} // namespace

QString key(const QString& folder)
{
    return QStringLiteral("session:") + Paths::standardised(folder);
}

Session load(const DefaultsStore& shared, const QString& folder)
{
    Session session;
    const QVariantMap stored = shared.dictionary(key(folder)).value_or(QVariantMap());
    for (const QVariant& token : stored.value(TabsKey).toList()) {
        if (isString(token))
            session.tabs.append(token.toString());
    }
    if (const QVariant active = stored.value(ActiveKey); isString(active))
        session.active = active.toString();
    session.split = shared.string(splitKey(folder));
    return session;
}

void save(DefaultsStore& shared, const Session& session, const QString& folder)
{
    QVariantMap stored{{TabsKey, QVariantList(session.tabs.begin(), session.tabs.end())}};
    if (session.active)
        stored.insert(ActiveKey, *session.active);
    shared.set(key(folder), stored);
    if (session.split)
        shared.set(splitKey(folder), *session.split);
    else
        shared.remove(splitKey(folder));
}

QStringList chatSessions(const QStringList& tokens)
{
    QStringList sessions;
    for (const QString& token : tokens) {
        if (!token.startsWith(QLatin1String(ChatPrefix)))
            continue;
        const QString id = token.mid(qsizetype(std::size(ChatPrefix)) - 1).toLower();
        if (parsedUuid(id) && !sessions.contains(id))
            sessions.append(id);
    }
    return sessions;
}

} // namespace Bralto::SessionStore
