#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace Bralto {

/// This process as the desktop and other processes of the program call it: an application on the
/// session bus that is shown, and is given what to open. Made before the process claims its name,
/// so that whoever finds the name is answered. Main thread.
class ApplicationService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// Without a bus nobody calls.
    ApplicationService(const QDBusConnection& bus, const QString& bundleIdentifier);
    ~ApplicationService() override;

    // The interface. The names are the bus's.
    // NOLINTBEGIN(readability-identifier-naming)
    Q_INVOKABLE Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    Q_INVOKABLE Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_INVOKABLE Q_SCRIPTABLE void ActivateAction(const QString& name,
                                                 const QVariantList& parameters,
                                                 const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

signals:
    // The caller has its answer before either is emitted.

    void activateRequested();
    /// Addresses as the caller wrote them.
    void openRequested(const QStringList& addresses);

private:
    QDBusConnection m_bus;
    QString m_path;
};

} // namespace Bralto
