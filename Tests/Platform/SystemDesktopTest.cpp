#include "Platform/SystemDesktop.h"
#include "Tests/Support/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <gtest/gtest.h>

#include <unistd.h>

namespace Bralto {

/// A file viewer on the bus that writes down what it is to show.
class FileViewer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    QStringList shown;

public slots:
    void ShowItems(const QStringList& addresses, const QString&) { shown.append(addresses); }
};

namespace {

class DesktopServices : public testing::Test {
protected:
    PrivateBus bus;
    QTemporaryDir place;
    QString clipboard;
    SystemDesktop desktop{bus.connect(), [this](const QString& text) { clipboard = text; }};

    DesktopServices()
        : m_path(qgetenv("PATH"))
        , m_home(qgetenv("HOME"))
    {
        qputenv("HOME", QFile::encodeName(place.path()));
        qputenv("XDG_DATA_HOME", QFile::encodeName(place.filePath("data")));
    }

    ~DesktopServices() override
    {
        qputenv("PATH", m_path);
        qputenv("HOME", m_home);
        qunsetenv("XDG_DATA_HOME");
    }

    /// Puts a program in front of `PATH` that writes its arguments to `opened`.
    void installOpener()
    {
        QFile script(place.filePath("xdg-open"));
        ASSERT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nprintf '%s' \"$*\" > '" + QFile::encodeName(place.path()) +
                     "/part' && mv '" + QFile::encodeName(place.path()) + "/part' '" +
                     QFile::encodeName(place.path()) + "/opened'\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(place.path()) + ':' + m_path);
    }

    QByteArray contentOf(const QString& name) const
    {
        const QString path = place.filePath(name);
        EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(path); }));
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QByteArray m_path;
    QByteArray m_home;
};

TEST_F(DesktopServices, AnAddressIsOpenedByTheDesktop)
{
    installOpener();

    desktop.open(QUrl("https://example.com/a b?c=d&e"));

    EXPECT_EQ(contentOf("opened"), "https://example.com/a%20b?c=d&e");
}

TEST_F(DesktopServices, AFileIsSelectedInTheFileViewer)
{
    QDBusConnection other = bus.connect();
    FileViewer viewer;
    ASSERT_TRUE(other.registerObject("/org/freedesktop/FileManager1", &viewer,
                                     QDBusConnection::ExportAllSlots));
    ASSERT_TRUE(other.registerService("org.freedesktop.FileManager1"));
    installOpener();

    desktop.reveal("/tmp/a b/ä.txt");

    EXPECT_TRUE(QTest::qWaitFor([&] { return !viewer.shown.isEmpty(); }));
    EXPECT_EQ(viewer.shown, QStringList{"file:///tmp/a%20b/%C3%A4.txt"});
    EXPECT_FALSE(QFile::exists(place.filePath("opened")));
}

TEST_F(DesktopServices, WithoutAFileViewerTheFolderIsOpened)
{
    installOpener();

    desktop.reveal("/tmp/a b/x.txt");

    EXPECT_EQ(contentOf("opened"), "file:///tmp/a%20b");
}

TEST_F(DesktopServices, WithoutABusTheFolderIsOpened)
{
    installOpener();
    SystemDesktop alone(QDBusConnection(QString()), [](const QString&) {});

    alone.reveal("/tmp/x.txt");

    EXPECT_EQ(contentOf("opened"), "file:///tmp");
}

TEST_F(DesktopServices, TextGoesToTheClipboardThatWasGiven)
{
    desktop.copyText("a text");

    EXPECT_EQ(clipboard, "a text");
}

TEST_F(DesktopServices, AStartedProgramIsNoChildOfThisProcess)
{
    const QString out = place.filePath("ids");
    const auto started = desktop.start(
        "/bin/sh", {"-c", "ps -o ppid=,sid= -p $$ > \"$0.part\"; mv \"$0.part\" \"$0\"", out});

    ASSERT_TRUE(started);
    EXPECT_GT(*started, 1);
    const QList<QByteArray> ids = contentOf("ids").simplified().split(' ');
    ASSERT_EQ(ids.size(), 2);
    EXPECT_NE(ids[0].toLongLong(), QCoreApplication::applicationPid());
    EXPECT_NE(ids[1].toLongLong(), qlonglong(::getsid(0)));
}

TEST_F(DesktopServices, AStartedProgramRunsInNoPane)
{
    const QString answer = place.filePath("answer");
    qputenv("BRALTO_BUNDLE_ID", "com.tolvane.bralto");
    qputenv("BRALTO_TEST_KEPT", "kept");

    const auto started = desktop.start(
        "/bin/sh", {"-c",
                    "echo \"${BRALTO_BUNDLE_ID-none} $BRALTO_TEST_KEPT\" > \"$1.part\" &&"
                    " mv \"$1.part\" \"$1\"",
                    "sh", answer});
    qunsetenv("BRALTO_BUNDLE_ID");
    qunsetenv("BRALTO_TEST_KEPT");

    ASSERT_TRUE(started);
    ASSERT_TRUE(QTest::qWaitFor([&answer] { return QFile::exists(answer); }, 30'000));
    QFile file(answer);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "none kept\n");
}

TEST_F(DesktopServices, AProgramThatIsNotThereFailsInTheSystemsWords)
{
    const auto started = desktop.start(place.filePath("absent"), {});

    ASSERT_FALSE(started);
    EXPECT_TRUE(started.error().contains("No such file or directory"))
        << started.error().toStdString();
}

TEST_F(DesktopServices, AFileInTheTrashCanBeFoundThere)
{
    const QString path = place.filePath("x.txt");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("content");
    file.close();

    const auto trashed = desktop.moveToTrash(path);

    ASSERT_TRUE(trashed) << trashed.error().toStdString();
    EXPECT_EQ(*trashed, place.filePath("data/Trash/files/x.txt"));
    EXPECT_FALSE(QFile::exists(path));
    QFile kept(*trashed);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "content");
}

TEST_F(DesktopServices, WhatIsNotThereCantBeTrashed)
{
    const auto trashed = desktop.moveToTrash(place.filePath("absent"));

    ASSERT_FALSE(trashed);
    EXPECT_FALSE(trashed.error().isEmpty());
}

} // namespace
} // namespace Bralto

#include "SystemDesktopTest.moc"
