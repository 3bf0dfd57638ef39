#include "Platform/ApplicationService.h"

#include "Platform/SessionApplications.h"

namespace Bralto {

ApplicationService::ApplicationService(const QDBusConnection& bus, const QString& bundleIdentifier)
    : m_bus(bus)
    , m_path(SessionApplications::objectPath(bundleIdentifier))
{
    m_bus.registerObject(m_path, this, QDBusConnection::ExportScriptableInvokables);
}

ApplicationService::~ApplicationService()
{
    m_bus.unregisterObject(m_path);
}

void ApplicationService::Activate(const QVariantMap&)
{
    QMetaObject::invokeMethod(this, &ApplicationService::activateRequested, Qt::QueuedConnection);
}

void ApplicationService::Open(const QStringList& uris, const QVariantMap&)
{
    QMetaObject::invokeMethod(
        this, [this, uris] { emit openRequested(uris); }, Qt::QueuedConnection);
}

// The program has no actions for a desktop's menus.
void ApplicationService::ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {}

} // namespace Bralto
