#include "Platform/SessionApplications.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QRegularExpression>

namespace Bralto {

namespace {

/// A bus that takes longer than this, in milliseconds, is as good as none.
constexpr int BusTimeout = 2000;

constexpr uint DoNotQueue = 4;
constexpr uint PrimaryOwner = 1;
constexpr uint AlreadyOwner = 4;

/// Asks the bus itself; an answer that did not come in time is invalid.
template <typename Answer>
QDBusReply<Answer> ask(const QDBusConnection& bus, const QString& method,
                       const QVariantList& arguments)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), method);
    question.setArguments(arguments);
    return bus.call(question, QDBus::Block, BusTimeout);
}

/// A call to a name that the bus's rules forbid ends the process that makes it.
bool isLegal(const QString& busName)
{
    static const QRegularExpression form(
        QStringLiteral("\\A[A-Za-z_-][A-Za-z0-9_-]*(\\.[A-Za-z_-][A-Za-z0-9_-]*)+\\z"));
    constexpr qsizetype Longest = 255;
    return busName.size() <= Longest && form.match(busName).hasMatch();
}

} // namespace

QString SessionApplications::defaultRuntimeFolder(const AppPaths& paths)
{
    const QString given = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return given.startsWith(u'/') ? given + QStringLiteral("/bralto")
                                  : paths.support() + QStringLiteral("/Running");
}

SessionApplications::SessionApplications(const QDBusConnection& bus, const QString& runtimeFolder)
    : m_bus(bus)
    , m_runtimeFolder(runtimeFolder)
{
}

SessionApplications::~SessionApplications() = default;

bool SessionApplications::isRunning(const QString& bundleIdentifier) const
{
    if (!m_bus.isConnected())
        return FileLock::isTaken(lockPath(bundleIdentifier));
    return ask<bool>(m_bus, QStringLiteral("NameHasOwner"), {busName(bundleIdentifier)}).value();
}

bool SessionApplications::claim(const QString& bundleIdentifier)
{
    if (!m_bus.isConnected()) {
        QDir().mkpath(m_runtimeFolder);
        auto lock = std::make_unique<FileLock>(lockPath(bundleIdentifier), FileLock::Wait::No);
        const bool isOurs = lock->isHeld();
        if (isOurs)
            m_lock = std::move(lock);
        return isOurs;
    }
    const QDBusReply<uint> answer =
        ask<uint>(m_bus, QStringLiteral("RequestName"), {busName(bundleIdentifier), DoNotQueue});
    return answer.value() == PrimaryOwner || answer.value() == AlreadyOwner;
}

bool SessionApplications::open(const QString& bundleIdentifier, const QStringList& addresses) const
{
    const QString name = busName(bundleIdentifier);
    if (!isLegal(name) || !m_bus.isConnected())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(
        name, objectPath(bundleIdentifier), QStringLiteral("org.freedesktop.Application"),
        QStringLiteral("Open"));
    call.setArguments({addresses, QVariantMap()});
    call.setAutoStartService(false);
    return m_bus.call(call, QDBus::Block, BusTimeout).type() == QDBusMessage::ReplyMessage;
}

QString SessionApplications::busName(const QString& bundleIdentifier)
{
    QStringList elements = bundleIdentifier.split(u'.');
    for (QString& element : elements) {
        if (!element.isEmpty() && element.front() >= u'0' && element.front() <= u'9')
            element.prepend(u'_');
    }
    return elements.join(u'.');
}

QString SessionApplications::objectPath(const QString& bundleIdentifier)
{
    QString path = busName(bundleIdentifier);
    path.replace(u'.', u'/').replace(u'-', u'_');
    return u'/' + path;
}

QString SessionApplications::lockPath(const QString& bundleIdentifier) const
{
    return m_runtimeFolder + u'/' + bundleIdentifier + QStringLiteral(".lock");
}

} // namespace Bralto
