#include "Browser/BrowserBridge.h"

#include "Base/PaneEnvironment.h"
#include "Base/Paths.h"
#include "Browser/BridgeTexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <utility>

namespace Bralto {

namespace {

constexpr char BrowserShim[] = "/bralto-browser";
constexpr char StandardPath[] = "/usr/bin:/bin:/usr/sbin:/sbin";

constexpr QFileDevice::Permissions ExecutableByAll =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
    QFileDevice::ReadGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;

bool holds(const QString& path, const QByteArray& text)
{
    const QFileInfo info(path);
    // Only a regular file: a pipe in its place would be waited for.
    if (!info.isFile() || info.size() != text.size())
        return false;
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll() == text;
}

void replace(const QString& path, const QByteArray& text, bool executable)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    // Before the file has its name, so that nobody finds one that can't be run.
    if (executable)
        file.setPermissions(ExecutableByAll);
    file.write(text);
    file.commit();
}

QString withFolderFirst(const QString& folder, const QString& searchPath)
{
    QStringList folders;
    if (!searchPath.isEmpty())
        folders = searchPath.split(u':');
    folders.removeAll(folder);
    folders.prepend(folder);
    return folders.join(u':');
}

} // namespace

BrowserBridge::BrowserBridge(const AppPaths& paths, const LaunchRole& role)
    : m_bin(paths.bin())
    , m_zsh(paths.zsh())
    , m_home(paths.home())
    , m_role(role)
{
}

std::optional<QString> BrowserBridge::bundleIdentifier() const
{
    if (QFileInfo(m_role.bundlePath).suffix() != QStringLiteral("app"))
        return std::nullopt;
    return m_role.bundleIdentifier;
}

QStringList BrowserBridge::configure(QStringList environment, const QString& shell) const
{
    if (!std::exchange(m_isInstalled, true))
        install();

    const auto set = [&environment](const char* name, const QString& value) {
        environment = PaneEnvironment::setting(std::move(environment), QLatin1String(name), value);
    };
    set(PaneEnvironment::Bin, m_bin);
    set("BROWSER", m_bin + QLatin1String(BrowserShim));
    if (const auto identifier = bundleIdentifier())
        set(PaneEnvironment::BundleId, *identifier);
    const auto searchPath = PaneEnvironment::value(environment, QStringLiteral("PATH"));
    set("PATH", withFolderFirst(m_bin, searchPath.value_or(QLatin1String(StandardPath))));
    if (Paths::lastComponent(shell) != QStringLiteral("zsh"))
        return environment;

    const auto own = PaneEnvironment::value(environment, QStringLiteral("ZDOTDIR"));
    const bool isUsers = own && !own->isEmpty() && *own != m_zsh;
    set(PaneEnvironment::UserZshDirectory,
        isUsers ? *own
                : PaneEnvironment::value(environment, QStringLiteral("HOME")).value_or(m_home));
    set("ZDOTDIR", m_zsh);
    return environment;
}

void BrowserBridge::install() const
{
    // The host's executable is the same for every project, so that no two rewrite each other's.
    write(BridgeTexts::browserShim(m_role.hostExecutable), m_bin + QLatin1String(BrowserShim),
          true);
    for (const char* name : {"/open", "/xdg-open"})
        write(BridgeTexts::openShim(), m_bin + QLatin1String(name), true);
    for (const BridgeTexts::File& file : BridgeTexts::zshSources())
        write(file.text, m_zsh + u'/' + file.name, false);
}

void BrowserBridge::write(const QByteArray& text, const QString& path, bool executable)
{
    QDir().mkpath(Paths::parent(path));
    if (!holds(path, text))
        replace(path, text, executable);
    if (executable && QFileInfo(path).isFile())
        QFile::setPermissions(path, ExecutableByAll);
}

} // namespace Bralto
