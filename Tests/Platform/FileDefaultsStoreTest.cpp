#include "Platform/FileDefaultsStore.h"
#include "Platform/ProcessDefaults.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Domain[] = "com.tolvane.bralto.test";

class DefaultsOnDisk : public testing::Test {
protected:
    QTemporaryDir home;
    QString folder = home.filePath("Preferences");
    QString file = folder + "/com.tolvane.bralto.test.json";

    std::unique_ptr<FileDefaultsStore> open() const
    {
        return std::make_unique<FileDefaultsStore>(folder, Domain);
    }

    void write(const QByteArray& text) const
    {
        QDir().mkpath(folder);
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(text);
    }

    QByteArray content(const QString& path) const
    {
        QFile in(path);
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("absent");
    }

    /// The number of the file, which another file takes only when this one is replaced.
    QByteArray version() const
    {
        QProcess stat;
        stat.start("stat", {"-c", "%i %y", file});
        stat.waitForFinished();
        return stat.readAllStandardOutput();
    }

    static QStringList& heard(DefaultsStore& store, QStringList& keys)
    {
        QObject::connect(&store, &DefaultsStore::changed, &store,
                         [&keys](const QString& key) { keys.append(key); });
        return keys;
    }
};

TEST_F(DefaultsOnDisk, WhatWasSetIsThereInTheNextProcess)
{
    {
        const auto store = open();
        store->set("flag", true);
        store->set("bytes", QByteArray("x"));
        store->set("gone", 1LL);
        store->remove("gone");
    }

    const auto next = open();
    EXPECT_EQ(next->boolean("flag"), true);
    EXPECT_EQ(next->data("bytes"), QByteArray("x"));
    EXPECT_FALSE(next->contains("gone"));
}

TEST_F(DefaultsOnDisk, AValueIsReadAtOnceAndWrittenInALaterTurn)
{
    const auto store = open();

    store->set("a", 1LL);
    EXPECT_EQ(store->number("a"), 1.0);
    EXPECT_FALSE(QFile::exists(file));

    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(file); }));
}

TEST_F(DefaultsOnDisk, SynchronisingWritesAtOnce)
{
    const auto store = open();
    store->set("a", 1LL);

    store->synchronise();

    EXPECT_EQ(open()->number("a"), 1.0);
}

TEST_F(DefaultsOnDisk, AnEqualValueWritesNothing)
{
    const auto store = open();
    store->set("a", 1LL);
    store->synchronise();
    const QByteArray before = version();
    QStringList keys;
    heard(*store, keys);

    store->set("a", 1LL);
    store->remove("absent");
    store->synchronise();
    EXPECT_EQ(version(), before);
    EXPECT_EQ(keys, QStringList());

    store->set("a", true);
    store->synchronise();
    EXPECT_NE(version(), before);
    EXPECT_EQ(keys, QStringList{"a"});
}

TEST_F(DefaultsOnDisk, ManyChangesInOneTurnReplaceTheFileOnce)
{
    const auto store = open();
    store->synchronise();
    QSet<QByteArray> versions;
    QFileSystemWatcher watcher({folder});
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &watcher,
                     [&] { versions.insert(version()); });

    for (qlonglong index = 0; index < 1000; ++index)
        store->set("key" + QString::number(index), index);

    EXPECT_TRUE(QTest::qWaitFor([&] { return QFile::exists(file) && !versions.isEmpty(); }));
    EXPECT_EQ(open()->number("key999"), 999.0);
    versions.remove(QByteArray());
    EXPECT_LE(versions.size(), 1);
}

TEST_F(DefaultsOnDisk, TwoWritersOfDifferentKeysLoseNothing)
{
    const auto one = open();
    const auto other = open();

    one->set("one", 1LL);
    other->set("other", 2LL);
    one->synchronise();
    other->synchronise();

    const auto reader = open();
    EXPECT_EQ(reader->number("one"), 1.0);
    EXPECT_EQ(reader->number("other"), 2.0);
    EXPECT_EQ(other->number("one"), 1.0);
}

TEST_F(DefaultsOnDisk, AWriterThatKnowsAnOldStateKeepsWhatOthersRemoved)
{
    const auto one = open();
    one->set("a", 1LL);
    one->set("b", 1LL);
    one->synchronise();
    const auto other = open();
    other->remove("a");
    other->synchronise();

    one->set("b", 2LL);
    one->synchronise();

    EXPECT_FALSE(one->contains("a"));
    EXPECT_FALSE(open()->contains("a"));
}

TEST_F(DefaultsOnDisk, AChangeByAnotherIsToldForEachKeyThatChanged)
{
    const auto writer = open();
    writer->set("same", 1LL);
    writer->set("changed", 1LL);
    writer->set("removed", 1LL);
    writer->synchronise();
    const auto reader = open();
    QStringList keys;
    heard(*reader, keys);

    writer->set("changed", 1.0);
    writer->remove("removed");
    writer->set("added", QString("x"));
    writer->synchronise();

    EXPECT_TRUE(QTest::qWaitFor([&] { return keys.size() >= 3; }));
    keys.sort();
    EXPECT_EQ(keys, (QStringList{"added", "changed", "removed"}));
    EXPECT_EQ(reader->string("added"), "x");
}

TEST_F(DefaultsOnDisk, AChangeIsHeardInAFolderThatWasNotThereYet)
{
    const auto reader = open();
    QStringList keys;
    heard(*reader, keys);

    open()->set("a", 1LL);

    EXPECT_TRUE(QTest::qWaitFor([&] { return keys == QStringList{"a"}; }));
}

TEST_F(DefaultsOnDisk, AnEditInPlaceIsNotWrittenOver)
{
    const auto store = open();
    store->set("a", 1LL);
    store->synchronise();
    write(R"({"a": 1, "by hand": 2})");

    store->set("b", 3LL);
    store->synchronise();

    EXPECT_EQ(store->number("by hand"), 2.0);
    EXPECT_EQ(open()->number("by hand"), 2.0);
}

TEST_F(DefaultsOnDisk, ADamagedFileIsKeptAsideAndReadAsEmpty)
{
    write("{ \"a\": 1, ");

    const auto store = open();

    EXPECT_FALSE(store->contains("a"));
    EXPECT_EQ(content(file + ".damaged"), "{ \"a\": 1, ");
    EXPECT_FALSE(QFile::exists(file));

    store->set("b", 1LL);
    store->synchronise();
    EXPECT_EQ(open()->number("b"), 1.0);
}

TEST_F(DefaultsOnDisk, ALaterDamageTakesThePlaceOfTheFormerOne)
{
    write("first");
    open();
    write("second");

    const auto store = open();

    EXPECT_EQ(content(file + ".damaged"), "second");
}

TEST_F(DefaultsOnDisk, AFileThatCantBeReadIsNotWrittenOver)
{
    // A link to itself: nobody can open it, root neither.
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(QFile::link(file, file));

    const auto store = open();
    store->set("b", 2LL);
    store->synchronise();

    EXPECT_EQ(store->number("b"), 2.0);
    EXPECT_TRUE(QFileInfo(file).isSymbolicLink());
    EXPECT_EQ(QDir(folder).entryList({"*.damaged"}), QStringList());
}

TEST_F(DefaultsOnDisk, WhatCantBeWrittenStaysInMemoryAndIsTriedAgain)
{
    // A file where the folder should be: nothing can be made in it, for root neither.
    QFile blocker(folder);
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const auto store = open();
    QStringList keys;
    heard(*store, keys);
    EXPECT_FALSE(store->isWritable());

    store->set("a", 1LL);
    store->synchronise();
    store->set("b", 1LL);
    store->set("a", 2LL);
    store->synchronise();
    EXPECT_EQ(store->number("a"), 2.0);
    EXPECT_EQ(keys, (QStringList{"a", "b", "a"}));

    ASSERT_TRUE(QFile::remove(folder));
    store->set("c", 3LL);
    store->synchronise();

    const auto next = open();
    EXPECT_EQ(next->number("a"), 2.0);
    EXPECT_EQ(next->number("b"), 1.0);
    EXPECT_EQ(next->number("c"), 3.0);
}

TEST_F(DefaultsOnDisk, OnlyTheOwnerMayReadTheFile)
{
    open()->set("a", 1LL);

    EXPECT_EQ(QFile::permissions(file) & (QFile::ReadGroup | QFile::ReadOther),
              QFile::Permissions());
}

TEST_F(DefaultsOnDisk, AListenerMaySetAnotherKey)
{
    const auto store = open();
    QObject::connect(store.get(), &DefaultsStore::changed, store.get(), [&](const QString& key) {
        if (key == "a")
            store->set("b", store->value("a"));
    });

    open()->set("a", 7LL);

    EXPECT_TRUE(QTest::qWaitFor([&] { return store->number("b") == 7.0; }));
    store->synchronise();
    EXPECT_EQ(open()->number("b"), 7.0);
}

TEST_F(DefaultsOnDisk, EightProcessesThatWriteAThousandKeysEachLoseNone)
{
    constexpr int Processes = 8;
    constexpr int Keys = 1000;
    std::vector<std::unique_ptr<QProcess>> writers;
    for (int number = 0; number < Processes; ++number) {
        auto writer = std::make_unique<QProcess>();
        writer->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        writer->start(BRALTO_BIN "/DefaultsWriter",
                      {folder, Domain, "p" + QString::number(number) + '.', QString::number(Keys)});
        ASSERT_TRUE(writer->waitForStarted());
        writers.push_back(std::move(writer));
    }
    const auto listener = open();

    for (const auto& writer : writers)
        writer->write("\n");
    for (const auto& writer : writers) {
        ASSERT_TRUE(writer->waitForFinished(120'000));
        EXPECT_EQ(writer->exitCode(), 0);
    }

    const auto store = open();
    int missing = 0;
    for (int number = 0; number < Processes; ++number) {
        for (int key = 0; key < Keys; ++key) {
            const QString name = 'p' + QString::number(number) + '.' + QString::number(key);
            missing += store->number(name) == double(key) ? 0 : 1;
        }
    }
    EXPECT_EQ(missing, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return listener->number("p7.999") == 999.0; }));
}

TEST_F(DefaultsOnDisk, AProcessHasItsOwnDomainAndTheSharedOne)
{
    const AppPaths paths(home.path());
    LaunchRole role;
    role.bundleIdentifier = "com.tolvane.bralto.space.000000000000";
    {
        const ProcessDefaults opened(paths, role);
        opened.defaults().shared.set("a", 1LL);
        opened.defaults().standard.set("b", 2LL);
    }

    LaunchRole other = role;
    other.bundleIdentifier = "com.tolvane.bralto.space.111111111111";
    const ProcessDefaults opened(paths, other);
    EXPECT_EQ(opened.defaults().shared.number("a"), 1.0);
    EXPECT_FALSE(opened.defaults().standard.contains("b"));
    EXPECT_TRUE(QFile::exists(paths.preferences() + "/com.tolvane.bralto.shared.json"));
    EXPECT_TRUE(QFile::exists(paths.preferences() + "/com.tolvane.bralto.space.000000000000.json"));
}

TEST_F(DefaultsOnDisk, TheStandardDomainStandsInForASharedOneThatCantBeMade)
{
    const AppPaths paths(home.path());
    LaunchRole role;
    role.bundleIdentifier = "com.tolvane.bralto";
    // The lock of the shared domain can't be opened where a folder has its name.
    ASSERT_TRUE(QDir().mkpath(paths.preferences() + "/com.tolvane.bralto.shared.json.lock"));

    const ProcessDefaults opened(paths, role);

    EXPECT_EQ(&opened.defaults().shared, &opened.defaults().standard);
    opened.defaults().shared.set("a", 1LL);
    EXPECT_EQ(opened.defaults().standard.number("a"), 1.0);
}

} // namespace
} // namespace Bralto
