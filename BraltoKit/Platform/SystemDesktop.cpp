#include "Platform/SystemDesktop.h"

#include "Base/PaneEnvironment.h"
#include "Base/Paths.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace Bralto {

SystemDesktop::SystemDesktop(const QDBusConnection& bus, std::function<void(const QString&)> copy)
    : m_bus(bus)
    , m_copy(std::move(copy))
{
}

void SystemDesktop::open(const QUrl& url)
{
    // Whether anything opens is the desktop's affair, and so is telling the user that nothing did.
    static_cast<void>(start(QStringLiteral("xdg-open"), {QString::fromLatin1(url.toEncoded())}));
}

void SystemDesktop::reveal(const QString& path)
{
    const auto openFolder = [this, path] { open(QUrl::fromLocalFile(Paths::parent(path))); };
    if (!m_bus.isConnected())
        return openFolder();
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QString address = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    call.setArguments({QStringList{address}, QString()});

    auto* answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), &m_answers);
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, &m_answers, [openFolder, answer] {
        if (answer->isError())
            openFolder();
        answer->deleteLater();
    });
}

Expected<QString, QString> SystemDesktop::moveToTrash(const QString& path)
{
    // Qt makes the trash folder, but not the folder that it lies in.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QFile file(path);
    if (!file.moveToTrash())
        return Unexpected{file.errorString()};
    return file.fileName();
}

Expected<qint64, QString> SystemDesktop::start(const QString& executable,
                                               const QStringList& arguments)
{
    QProcess process;
    process.setProgram(executable);
    process.setArguments(arguments);
    // A program of the desktop's runs in no pane, even if this one was started in one: a link that
    // is opened here would be delivered to that pane's window, which may be this very one.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QLatin1String(PaneEnvironment::BundleId));
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    qint64 id = 0;
    if (!process.startDetached(&id))
        return Unexpected{process.errorString()};
    return id;
}

} // namespace Bralto
