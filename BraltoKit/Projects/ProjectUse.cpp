#include "Projects/ProjectUse.h"

#include "Base/Paths.h"

namespace Bralto::ProjectUse {

namespace {

constexpr QLatin1String LastUsedKey("projectLastUsed");
constexpr QLatin1String RootKey("projectsRoot");

} // namespace

void markUsed(DefaultsStore& shared, const QString& folder, const QDateTime& date)
{
    QVariantMap used = shared.dictionary(LastUsedKey).value_or(QVariantMap());
    used.insert(Paths::standardised(folder), date);
    shared.set(LastUsedKey, used);
}

std::optional<QDateTime> lastUsed(const DefaultsStore& shared, const QString& folder)
{
    const QVariantMap used = shared.dictionary(LastUsedKey).value_or(QVariantMap());
    const QVariant date = used.value(Paths::standardised(folder));
    return date.typeId() == QMetaType::QDateTime ? std::optional(date.toDateTime()) : std::nullopt;
}

QString defaultRoot(const AppPaths& paths)
{
    return paths.projects();
}

QString currentRoot(const DefaultsStore& shared, const AppPaths& paths)
{
    const QString chosen = shared.string(RootKey).value_or(QString());
    return chosen.isEmpty() ? defaultRoot(paths) : Paths::standardised(chosen);
}

} // namespace Bralto::ProjectUse
