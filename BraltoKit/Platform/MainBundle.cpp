#include "Platform/MainBundle.h"

#include "Base/Paths.h"
#include "Base/PropertyList.h"
#include "Base/SpaceIdentity.h"

#include <QFile>
#include <QFileInfo>

namespace Bralto::MainBundle {

namespace {

constexpr char DefaultVersion[] = "0.1.0";

QVariantMap description(const QString& bundle)
{
    QFile file(bundle + QStringLiteral("/Contents/Info.plist"));
    if (bundle.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    return PropertyList::decode(file.readAll()).value_or(QVariantMap());
}

/// The string at `key`; empty if there is none, or something else.
QString string(const QVariantMap& description, const char* key)
{
    const QVariant value = description.value(QLatin1String(key));
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString stringOr(const QString& text, const char* otherwise)
{
    return text.isEmpty() ? QString::fromLatin1(otherwise) : text;
}

} // namespace

QString path(const QString& executable)
{
    const QString inner = QStringLiteral("/Contents/MacOS");
    const QString folder = Paths::parent(executable);
    if (!folder.endsWith(inner))
        return {};
    const QString bundle = folder.chopped(inner.size());
    const bool hasName = Paths::lastComponent(bundle).size() > 4;
    return hasName && bundle.endsWith(QLatin1String(".app")) ? bundle : QString();
}

LaunchRole role(const QString& executable)
{
    LaunchRole role;
    role.bundlePath = path(executable);
    role.hostBundlePath = role.bundlePath;
    role.hostExecutable = executable;

    const QVariantMap own = description(role.bundlePath);
    const QString folder = string(own, "BraltoFolder");
    QString identifier = QLatin1String(SpaceIdentity::HomeIdentifier);
    if (!folder.isEmpty()) {
        role.folder = Paths::standardised(folder);
        identifier = SpaceIdentity::bundleIdentifier(folder);
        const QString host = string(own, "BraltoHost");
        if (!host.isEmpty() && QFileInfo::exists(host))
            role.hostBundlePath = Paths::standardised(host);
        role.hostExecutable = role.hostBundlePath + QStringLiteral("/Contents/MacOS/Bralto");
    }
    const QString stated = string(own, "CFBundleIdentifier");
    role.bundleIdentifier = stated.isEmpty() ? identifier : stated;

    const QVariantMap host =
        role.hostBundlePath == role.bundlePath ? own : description(role.hostBundlePath);
    role.shortVersion = stringOr(string(host, "CFBundleShortVersionString"), DefaultVersion);
    role.buildVersion = stringOr(string(host, "CFBundleVersion"), DefaultVersion);
    return role;
}

QString executable()
{
    const QString link = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    // What the system says of a file that was replaced while it runs.
    const QString replaced = QStringLiteral(" (deleted)");
    return link.endsWith(replaced) && !QFileInfo::exists(link) ? link.chopped(replaced.size())
                                                               : link;
}

} // namespace Bralto::MainBundle
