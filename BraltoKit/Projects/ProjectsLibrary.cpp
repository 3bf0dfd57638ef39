#include "Projects/ProjectsLibrary.h"

#include "Base/Paths.h"

namespace Bralto::ProjectsLibrary {

QString currentRoot(const DefaultsStore& shared, const AppPaths& paths)
{
    const auto chosen = shared.string("projectsRoot");
    return chosen ? Paths::standardised(*chosen) : paths.projects();
}

void markUsed(DefaultsStore& shared, const QString& folder, const QDateTime& date)
{
    constexpr auto Key = "projectLastUsed";
    QVariantMap used = shared.dictionary(Key).value_or(QVariantMap());
    used.insert(Paths::standardised(folder), date);
    shared.set(Key, used);
}

} // namespace Bralto::ProjectsLibrary
