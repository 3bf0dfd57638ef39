#include "Base/PaneEnvironment.h"

#include "Base/Paths.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace Bralto::PaneEnvironment {

namespace {

constexpr std::array RemovedPrefixes{
    "CLAUDE", "VSCODE_",    "ELECTRON_", "TERM_SESSION_ID", "TERM_PROGRAM_VERSION",
    "ITERM_", "GIT_ASKPASS"};

QString nameOf(const QString& variable)
{
    return variable.section(QLatin1Char('='), 0, 0);
}

bool isRemoved(const QString& name)
{
    return std::any_of(RemovedPrefixes.begin(), RemovedPrefixes.end(), [&name](const char* prefix) {
        return name.startsWith(QLatin1String(prefix));
    });
}

qsizetype indexOf(const QStringList& environment, const QString& name)
{
    const auto found =
        std::find_if(environment.begin(), environment.end(), [&name](const QString& variable) {
            return variable.size() > name.size() && variable.startsWith(name) &&
                   variable.at(name.size()) == QLatin1Char('=');
        });
    return found == environment.end() ? -1 : qsizetype(found - environment.begin());
}

void set(QStringList& environment, const QString& name, const QString& value)
{
    const QString variable = name + QLatin1Char('=') + value;
    if (const qsizetype index = indexOf(environment, name); index >= 0)
        environment[index] = variable;
    else
        environment.append(variable);
}

} // namespace

QStringList build(const QStringList& own, const Identity& identity)
{
    QStringList environment;
    environment.reserve(own.size() + 8);
    QSet<QString> seen;
    for (const QString& variable : own) {
        const QString name = nameOf(variable);
        if (name.isEmpty() || !variable.contains(QLatin1Char('=')) || seen.contains(name))
            continue;
        seen.insert(name);
        if (!isRemoved(name))
            environment.append(variable);
    }
    set(environment, QStringLiteral("TERM"), QStringLiteral("xterm-256color"));
    set(environment, QStringLiteral("COLORTERM"), QStringLiteral("truecolor"));
    set(environment, QStringLiteral("TERM_PROGRAM"), QStringLiteral("Bralto"));
    if (!value(environment, QStringLiteral("LANG")))
        set(environment, QStringLiteral("LANG"), QStringLiteral("en_US.UTF-8"));
    set(environment, QLatin1String(Pane), identity.pane);
    set(environment, QLatin1String(Project), Paths::standardised(identity.project));
    return environment;
}

QStringList setting(QStringList environment, const QString& name, const QString& value)
{
    set(environment, name, value);
    return environment;
}

std::optional<QString> value(const QStringList& environment, const QString& name)
{
    const qsizetype index = indexOf(environment, name);
    if (index < 0)
        return std::nullopt;
    return environment[index].mid(name.size() + 1);
}

} // namespace Bralto::PaneEnvironment
