#include "Base/AppPaths.h"

#include "Base/Paths.h"

#include <QDir>

namespace Bralto {

AppPaths::AppPaths(const QString& home)
    : m_home(Paths::standardised(home))
{
}

AppPaths AppPaths::current()
{
    return AppPaths(QDir::homePath());
}

QString AppPaths::support() const
{
    return m_home + QStringLiteral("/Library/Application Support/Bralto");
}

QString AppPaths::preferences() const
{
    return support() + QStringLiteral("/Preferences");
}

QString AppPaths::terminals() const
{
    return support() + QStringLiteral("/Terminals");
}

QString AppPaths::bin() const
{
    return support() + QStringLiteral("/bin");
}

QString AppPaths::zsh() const
{
    return support() + QStringLiteral("/zsh");
}

QString AppPaths::control() const
{
    return support() + QStringLiteral("/control");
}

QString AppPaths::mcpConfig() const
{
    return support() + QStringLiteral("/mcp.json");
}

QString AppPaths::browser(const QString& identifier) const
{
    return support() + QStringLiteral("/Browser/") + identifier;
}

QString AppPaths::applications() const
{
    return m_home + QStringLiteral("/Applications/Bralto");
}

QString AppPaths::projects() const
{
    return m_home + QStringLiteral("/Documents/Claude Projects");
}

QString AppPaths::claudeProjects() const
{
    return m_home + QStringLiteral("/.claude/projects");
}

QString AppPaths::claudeSettings() const
{
    return m_home + QStringLiteral("/.claude/settings.json");
}

} // namespace Bralto
