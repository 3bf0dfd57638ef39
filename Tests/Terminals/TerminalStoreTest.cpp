#include "Terminals/TerminalStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalStoreTest : testing::Test {
    [[nodiscard]] QString nameFor(const QString& folder) const
    {
        return QFileInfo(TerminalStore::file(paths, folder)).fileName();
    }

    static void write(const QString& path, const QByteArray& bytes)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    const QTemporaryDir home;
    const AppPaths paths{home.path()};
};

PanelSnapshot visible()
{
    PanelSnapshot snapshot;
    snapshot.isVisible = true;
    return snapshot;
}

} // namespace

TEST_F(TerminalStoreTest, TheFileIsCalledAfterTheEscapedPath)
{
    EXPECT_EQ(nameFor("/home/ada/my-app_2.0 ~x/"), "%2Fhome%2Fada%2Fmy%2Dapp%5F2%2E0%20%7Ex.json");
    EXPECT_EQ(nameFor("/büro"), "%2Fb%C3%BCro.json");
    EXPECT_EQ(TerminalStore::file(paths, "/p"), paths.terminals() + "/%2Fp.json");
}

TEST_F(TerminalStoreTest, ALongPathIsCutFromTheFrontTo200Characters)
{
    const QString folder = "/" + QString(299, 'x');

    EXPECT_EQ(nameFor(folder), QString(200, 'x') + ".json");
    EXPECT_EQ(nameFor("/elsewhere" + folder), nameFor(folder));
}

TEST_F(TerminalStoreTest, WhatWasSavedIsLoadedForThatFolderOnly)
{
    TerminalStore::save(paths, "/p", visible());

    EXPECT_EQ(TerminalStore::load(paths, "/p/"), visible());
    EXPECT_FALSE(TerminalStore::load(paths, "/q"));
}

TEST_F(TerminalStoreTest, ADamagedFileIsNoSnapshotAndStaysUntilTheNextSave)
{
    const QString file = TerminalStore::file(paths, "/p");
    write(file, "{ damaged");

    EXPECT_FALSE(TerminalStore::load(paths, "/p"));
    EXPECT_TRUE(QFileInfo::exists(file));

    TerminalStore::save(paths, "/p", visible());
    EXPECT_EQ(TerminalStore::load(paths, "/p"), visible());
}

TEST_F(TerminalStoreTest, AnEqualSnapshotLeavesTheFileAlone)
{
    TerminalStore::save(paths, "/p", visible());
    QFile file(TerminalStore::file(paths, "/p"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const QDateTime longAgo = QDateTime({2020, 1, 1}, {12, 0});
    ASSERT_TRUE(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
    file.close();

    TerminalStore::save(paths, "/p", visible());
    EXPECT_EQ(QFileInfo(file.fileName()).lastModified(), longAgo);

    TerminalStore::save(paths, "/p", {});
    EXPECT_GT(QFileInfo(file.fileName()).lastModified(), longAgo);
}

TEST_F(TerminalStoreTest, ASaveThatFailsIsSilent)
{
    write(paths.support(), "a file where the folder belongs");

    TerminalStore::save(paths, "/p", visible());

    EXPECT_FALSE(TerminalStore::load(paths, "/p"));
}
