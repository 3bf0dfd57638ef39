#pragma once

#include <QDBusConnection>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QUuid>

#include <gtest/gtest.h>

namespace Bralto {

/// A session bus for one test: nobody else is on it, and it can start no service.
class PrivateBus {
public:
    PrivateBus()
    {
        QFile config(m_folder.filePath("bus.conf"));
        if (!config.open(QIODevice::WriteOnly))
            return;
        config.write("<busconfig><type>session</type><listen>unix:dir=" +
                     QFile::encodeName(m_folder.path()) +
                     "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                     "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>");
        config.close();
        m_daemon.start("dbus-daemon", {"--nofork", "--nopidfile", "--print-address",
                                       "--config-file=" + config.fileName()});
        if (m_daemon.waitForReadyRead(10'000))
            m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        EXPECT_FALSE(m_address.isEmpty()) << "no dbus-daemon";
    }

    ~PrivateBus() { stop(); }

    /// A connection of its own, as another process would have one.
    [[nodiscard]] QDBusConnection connect() const
    {
        return QDBusConnection::connectToBus(m_address, QUuid::createUuid().toString());
    }

    void stop()
    {
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }

    [[nodiscard]] const QString& address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};

} // namespace Bralto
