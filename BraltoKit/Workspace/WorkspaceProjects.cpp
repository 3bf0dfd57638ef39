#include "Workspace/Workspace.h"

#include "Base/Paths.h"
#include "BraltoShared/BraltoLink.h"
#include "Workspace/FileOperations.h"

#include <QFileInfo>

namespace Bralto {

QString ProjectFolderError::title() const
{
    switch (kind) {
    case Kind::InvalidName:
        return QStringLiteral("“%1” can’t be a project name").arg(name);
    case Kind::Exists:
        return QStringLiteral("“%1” already exists").arg(name);
    case Kind::Failed:
        break;
    }
    return QStringLiteral("Couldn’t create “%1”").arg(name);
}

QString ProjectFolderError::text() const
{
    switch (kind) {
    case Kind::InvalidName:
        return QStringLiteral("Use a name without “/” or “:” that doesn’t start with a dot.");
    case Kind::Exists:
        return QStringLiteral("Pick another name, or open the existing project from the list.");
    case Kind::Failed:
        break;
    }
    return reason;
}

Expected<QString, ProjectFolderError> Workspace::makeProjectFolder(const QString& name,
                                                                   const QString& parent)
{
    using Kind = ProjectFolderError::Kind;
    const auto projectName = BraltoLink::projectName(name);
    if (!projectName)
        return Unexpected{ProjectFolderError{Kind::InvalidName, name, {}}};
    const QString folder = Paths::standardised(parent + u'/' + *projectName);
    if (QFileInfo::exists(folder))
        return Unexpected{ProjectFolderError{Kind::Exists, *projectName, {}}};
    if (const auto reason = FileOperations::createFolder(folder))
        return Unexpected{ProjectFolderError{Kind::Failed, *projectName, *reason}};
    return folder;
}

std::optional<QString> Workspace::createProject(const QString& parent)
{
    const auto name = m_services.dialogs.text(
        {QStringLiteral("New Project"),
         QStringLiteral("Bralto makes a folder with this name in “%1” and opens it.")
             .arg(Paths::lastComponent(Paths::standardised(parent))),
         {},
         {}});
    return name ? createProject(*name, parent, StartClaude::No) : std::nullopt;
}

std::optional<QString> Workspace::createProject(const QString& name, const QString& parent,
                                                StartClaude startClaude)
{
    const auto folder = makeProjectFolder(name, parent);
    if (!folder) {
        report(folder.error().title(), folder.error().text());
        return std::nullopt;
    }
    QStringList files;
    // The new process finds the link among its arguments and shows its console.
    if (startClaude == StartClaude::Yes)
        files.append(BraltoLink{BraltoLink::Open{*folder}}.url().toString(QUrl::FullyEncoded));
    openFolder(*folder, files);
    return *folder;
}

} // namespace Bralto
