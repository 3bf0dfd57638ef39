#include "Platform/SystemSettings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <tuple>

namespace Bralto {

namespace {

constexpr auto Service = "org.freedesktop.portal.Desktop";
constexpr auto Path = "/org/freedesktop/portal/desktop";
constexpr auto Interface = "org.freedesktop.portal.Settings";

constexpr auto Appearance = "org.freedesktop.appearance";
constexpr auto ColorScheme = "color-scheme";
constexpr auto Desktop = "org.gnome.desktop.interface";
constexpr auto Animations = "enable-animations";
constexpr auto Windows = "org.gnome.desktop.wm.preferences";
constexpr auto Buttons = "button-layout";

constexpr uint PrefersDark = 1;
constexpr uint PrefersLight = 2;

bool isForced()
{
    return qEnvironmentVariableIntValue("BRALTO_REDUCE_MOTION") == 1;
}

/// A portal wraps the value of a read once more.
QVariant unwrapped(QVariant value)
{
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

SystemSettings::SystemSettings(QObject* parent)
    : QObject(parent)
    , m_reducedMotion(isForced())
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(QLatin1String(Service), QLatin1String(Path), QLatin1String(Interface),
                QStringLiteral("SettingChanged"), this, SLOT(take(QString, QString, QDBusVariant)));
    read(QLatin1String(Appearance), QLatin1String(ColorScheme));
    read(QLatin1String(Desktop), QLatin1String(Animations));
    read(QLatin1String(Windows), QLatin1String(Buttons));
}

void SystemSettings::read(const QString& group, const QString& key)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(QLatin1String(Service), QLatin1String(Path),
                                       QLatin1String(Interface), QStringLiteral("Read"));
    call << group << key;
    // A portal is not started for the sake of a colour.
    call.setAutoStartService(false);
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, group, key] {
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError())
            take(group, key, reply.value());
        watcher->deleteLater();
    });
}

void SystemSettings::take(const QString& group, const QString& key, const QDBusVariant& value)
{
    const QVariant content = unwrapped(value.variant());
    const auto before = std::tuple(m_dark, m_reducedMotion, m_buttonLayout);
    if (group == QLatin1String(Appearance) && key == QLatin1String(ColorScheme)) {
        const uint scheme = content.toUInt();
        if (scheme == PrefersDark || scheme == PrefersLight)
            m_dark = scheme == PrefersDark;
        else
            m_dark.reset();
    } else if (group == QLatin1String(Desktop) && key == QLatin1String(Animations)) {
        m_reducedMotion = isForced() || !content.toBool();
    } else if (group == QLatin1String(Windows) && key == QLatin1String(Buttons)) {
        m_buttonLayout = content.toString();
    }
    if (before != std::tuple(m_dark, m_reducedMotion, m_buttonLayout))
        emit changed();
}

} // namespace Bralto
