#include "Projects/SpaceApps.h"

#include "Base/Graphemes.h"
#include "Base/Paths.h"
#include "Base/PropertyList.h"
#include "Base/SpaceIdentity.h"
#include "Projects/SpaceTheme.h"

#include <QFile>
#include <QSaveFile>

#include <filesystem>
#include <system_error>

namespace Bralto {

namespace {

namespace fs = std::filesystem;

constexpr QLatin1String AppsKey("spaceApps");
constexpr QLatin1String ExecutableInBundle("/Contents/MacOS/Bralto");

fs::path native(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

QString words(const std::error_code& error)
{
    return QString::fromStdString(error.message());
}

bool exists(const QString& path)
{
    std::error_code ignored;
    return fs::exists(native(path), ignored);
}

/// The bundle of `folder` as it was last written down, empty if there is none.
QString storedApp(const QVariantMap& apps, const QString& folder)
{
    const QVariant path = apps.value(folder);
    return path.typeId() == QMetaType::QString ? path.toString() : QString();
}

/// What a file of that name can be called: the display name without separators.
QString fileName(const QString& displayName)
{
    constexpr qsizetype MostCharacters = 60;
    // A file's name has 255 bytes, and behind this come a counter and ".app".
    constexpr qsizetype MostBytes = 240;

    QString name = displayName;
    name.replace(u'/', u'-').replace(u':', u'-');
    const auto isTrimmed = [](QChar character) { return character == u'.' || character.isSpace(); };
    while (!name.isEmpty() && isTrimmed(name.front()))
        name.remove(0, 1);
    while (!name.isEmpty() && isTrimmed(name.back()))
        name.chop(1);
    if (name.isEmpty())
        return QStringLiteral("Untitled Space");
    return Graphemes::prefixInBytes(Graphemes::prefix(name, MostCharacters), MostBytes);
}

/// Moves the bundle at `source` to `target`, in place of whatever lies there.
std::error_code moveBundle(const QString& source, const QString& target)
{
    std::error_code error;
    fs::remove_all(native(target), error);
    if (!error)
        fs::rename(native(source), native(target), error);
    return error;
}

/// Writes `content` unless the file holds these very bytes; the system's words on failure.
Expected<bool, QString> writeIfDifferent(const QString& path, const QByteArray& content)
{
    QFile present(path);
    if (present.open(QIODevice::ReadOnly) && present.readAll() == content)
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Unexpected{file.errorString()};
    file.write(content);
    if (!file.commit())
        return Unexpected{file.errorString()};
    return true;
}

} // namespace

SpaceApps::SpaceApps(LaunchRole role, AppPaths paths, DefaultsStore& shared, Desktop& desktop,
                     Dialogs& dialogs, const RunningApplications& running)
    : m_role(std::move(role))
    , m_paths(std::move(paths))
    , m_shared(shared)
    , m_desktop(desktop)
    , m_dialogs(dialogs)
    , m_running(running)
{
}

QString SpaceApps::appPath(const QString& folder) const
{
    const QString own = Paths::standardised(folder);
    const QVariantMap apps = m_shared.dictionary(AppsKey).value_or(QVariantMap());
    const auto isClaimed = [&](const QString& candidate) {
        return std::any_of(apps.keyValueBegin(), apps.keyValueEnd(), [&](const auto& entry) {
            return entry.first != own && entry.second == candidate;
        });
    };

    const QString base =
        m_paths.applications() + u'/' + fileName(SpaceStore::load(m_shared, own).displayName(own));
    QString candidate = base + QStringLiteral(".app");
    for (int counter = 2; isClaimed(candidate); ++counter)
        candidate = base + u' ' + QString::number(counter) + QStringLiteral(".app");
    return candidate;
}

Expected<QString, QString> SpaceApps::install(const QString& folder, WhileRunning whileRunning)
{
    const QString project = Paths::standardised(folder);
    std::error_code error;
    fs::create_directories(native(m_paths.applications()), error);
    if (error)
        return Unexpected{words(error)};

    QVariantMap apps = m_shared.dictionary(AppsKey).value_or(QVariantMap());
    const QString stored = storedApp(apps, project);
    const bool hasBundle = !stored.isEmpty() && exists(stored);
    // A bundle that runs stays where it is, unless its own process says so at its end.
    const bool staysInPlace = whileRunning == WhileRunning::No && hasBundle &&
                              m_running.isRunning(SpaceIdentity::bundleIdentifier(project));
    const QString bundle = staysInPlace ? stored : appPath(project);
    if (hasBundle && stored != bundle) {
        error = moveBundle(stored, bundle);
        if (error)
            return Unexpected{words(error)};
    }
    apps.insert(project, bundle);
    m_shared.set(AppsKey, apps);

    for (const char* inner : {"/Contents/MacOS", "/Contents/Resources"}) {
        fs::create_directories(native(bundle + QLatin1String(inner)), error);
        if (error)
            return Unexpected{words(error)};
    }
    if (exists(m_role.hostExecutable)) {
        const auto copied = copyIfNewer(m_role.hostExecutable, bundle + ExecutableInBundle);
        if (!copied)
            return Unexpected{copied.error()};
    }
    const QString name = SpaceStore::load(m_shared, project).displayName(project);
    const auto written = writeIfDifferent(bundle + QStringLiteral("/Contents/Info.plist"),
                                          description(project, name));
    if (!written)
        return Unexpected{written.error()};
    return bundle;
}

QByteArray SpaceApps::description(const QString& folder, const QString& name) const
{
    return PropertyList::encode({
        {"CFBundleName", name},
        {"CFBundleDisplayName", name},
        {"CFBundleIdentifier", SpaceIdentity::bundleIdentifier(folder)},
        {"CFBundleExecutable", QStringLiteral("Bralto")},
        {"CFBundleIconFile", QStringLiteral("AppIcon")},
        {"CFBundlePackageType", QStringLiteral("APPL")},
        {"CFBundleShortVersionString", m_role.shortVersion},
        {"CFBundleVersion", m_role.buildVersion},
        {"LSMinimumSystemVersion", QStringLiteral("26.0")},
        {"LSApplicationCategoryType", QStringLiteral("public.app-category.developer-tools")},
        {"NSHighResolutionCapable", true},
        {"NSPrincipalClass", QStringLiteral("NSApplication")},
        {"NSMicrophoneUsageDescription",
         QStringLiteral("Bralto listens when you talk to Claude, so you can dictate and hold a "
                        "spoken conversation.")},
        {"NSSpeechRecognitionUsageDescription",
         QStringLiteral("Bralto turns what you say into text for Claude. Recognition happens on "
                        "this Mac where possible.")},
        {"BraltoFolder", folder},
        {"BraltoHost", m_role.hostBundlePath},
    });
}

bool SpaceApps::launch(const QString& folder, const QStringList& files)
{
    const QString project = Paths::standardised(folder);
    const QString name = SpaceStore::load(m_shared, project).displayName(project);
    const auto bundle = install(project, WhileRunning::No);
    if (!bundle) {
        m_dialogs.report(
            {QStringLiteral("Couldn’t create an app for “%1”").arg(name), bundle.error()});
        return false;
    }
    m_shared.synchronise(); // The new process reads what was just set.
    const auto started = m_desktop.start(*bundle + ExecutableInBundle, files);
    if (!started)
        m_dialogs.report({QStringLiteral("Couldn’t open “%1”").arg(name), started.error()});
    return bool(started);
}

void SpaceApps::openHome()
{
    const auto started = m_desktop.start(m_role.hostExecutable, {});
    if (!started)
        m_dialogs.report(
            {QStringLiteral("Couldn’t open “%1”").arg(QStringLiteral("Bralto")), started.error()});
}

Expected<bool, QString> SpaceApps::copyIfNewer(const QString& source, const QString& destination)
{
    const fs::path from = native(source);
    const fs::path to = native(destination);
    std::error_code error;
    const auto sourceSize = fs::file_size(from, error);
    if (error)
        return Unexpected{words(error)};
    const auto sourceDate = fs::last_write_time(from, error);
    if (error)
        return Unexpected{words(error)};
    std::error_code absent;
    if (fs::file_size(to, absent) == sourceSize && fs::last_write_time(to, absent) >= sourceDate &&
        !absent)
        return false;

    const fs::path fresh = to.parent_path() / ".Bralto.new";
    fs::remove_all(fresh, error);
    if (!error)
        fs::copy_file(from, fresh, error);
    // The copy is as old as its source, whatever the clock says.
    if (!error)
        fs::last_write_time(fresh, sourceDate, error);
    if (!error)
        fs::rename(fresh, to, error);
    if (error)
        return Unexpected{words(error)};
    return true;
}

} // namespace Bralto
