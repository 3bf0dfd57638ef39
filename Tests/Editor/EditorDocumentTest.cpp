#include "Editor/EditorDocument.h"
#include "Editor/TextFile.h"
#include "Tests/Support/ManualScheduler.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

const QString TooLarge = "This file is larger than 8 MB, so Bralto won’t open it for editing.";
const QString Unreadable =
    "Bralto couldn’t read this file. It may have been moved or you may not have permission.";
const QString Binary = "This looks like a binary file, so there’s nothing to edit here.";

/// A folder of real files, and a scheduler that the test moves.
struct EditorDocumentTest : testing::Test {
    QString write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    /// Writes from outside, with a date of its own.
    void change(const QString& path, const QByteArray& bytes, int secondsLater = 10) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.flush();
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(secondsLater),
                                     QFileDevice::FileModificationTime));
    }

    static QByteArray read(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }

    std::unique_ptr<EditorDocument> open(const QString& path)
    {
        return std::make_unique<EditorDocument>(path, scheduler, [this] { return autosave; });
    }

    const QTemporaryDir folder;
    ManualScheduler scheduler;
    bool autosave = true;
};

} // namespace

// --- loading

TEST_F(EditorDocumentTest, ATextFileOpensClean)
{
    const auto document = open(write("notes.md", "Grüße\n"));

    EXPECT_EQ(document->text(), "Grüße\n");
    EXPECT_EQ(document->savedText(), document->text());
    EXPECT_FALSE(document->hasUnsavedText());
    EXPECT_FALSE(document->loadError());
    EXPECT_EQ(document->language(), Language::Markdown);
    EXPECT_EQ(document->cursorLine(), 1);
    EXPECT_EQ(document->cursorColumn(), 1);
    EXPECT_EQ(document->path(), folder.filePath("notes.md"));
}

TEST_F(EditorDocumentTest, ThePathIsStandardised)
{
    write("a.txt", "x");

    EXPECT_EQ(open(folder.path() + "/./sub/../a.txt")->path(), folder.filePath("a.txt"));
}

TEST_F(EditorDocumentTest, ExactlyEightMebibytesOpenAndOneByteMoreIsRefused)
{
    const QByteArray largest(TextFile::LargestSize, 'x');

    const auto opened = open(write("largest.txt", largest));
    EXPECT_FALSE(opened->loadError());
    EXPECT_EQ(opened->text().size(), TextFile::LargestSize);

    const auto refused = open(write("larger.txt", largest + 'x'));
    EXPECT_EQ(refused->loadError(), TooLarge);
    EXPECT_TRUE(refused->text().isEmpty());
}

TEST_F(EditorDocumentTest, AZeroByteTellsABinaryFileOnlyAmongTheFirst8000)
{
    QByteArray bytes(9000, 'x');
    bytes[7999] = '\0';
    EXPECT_EQ(open(write("binary.txt", bytes))->loadError(), Binary);

    bytes[7999] = 'x';
    bytes[8000] = '\0';
    const auto document = open(write("text.txt", bytes));
    EXPECT_FALSE(document->loadError());
    EXPECT_EQ(document->text().size(), 9000);
}

TEST_F(EditorDocumentTest, WhatIsNoRegularFileIsNeitherOpenedNorWaitedFor)
{
    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);

    EXPECT_EQ(open(pipe)->loadError(), Unreadable);
    EXPECT_EQ(open(folder.path())->loadError(), Unreadable);
    EXPECT_EQ(open(folder.filePath("gone.txt"))->loadError(), Unreadable);
}

TEST_F(EditorDocumentTest, ALatin1FileOpensThroughDetectionAndIsSavedAsUtf8)
{
    const QString text = "Die Straße führt über die Brücke. Später gab es Kaffee für alle Gäste.\n";
    const auto document = open(write("latin.txt", text.toLatin1()));
    ASSERT_FALSE(document->loadError());
    ASSERT_EQ(document->text(), text);

    document->setText(text + "Ende\n");
    document->save();

    EXPECT_EQ(read(document->path()), (text + "Ende\n").toUtf8());
}

TEST_F(EditorDocumentTest, ACyrillicFileOpensThroughDetection)
{
    const QByteArray koi8 = QByteArray::fromHex("f0d2c9d7c5d42c20cdc9d22120fcd4cf20d4c5cbd3d420d7"
                                                "20d3d4c1d2cfca20cbcfc4c9d2cfd7cbc52e0a");

    EXPECT_EQ(open(write("koi.txt", koi8))->text(), "Привет, мир! Это текст в старой кодировке.\n");
}

TEST_F(EditorDocumentTest, AByteOrderMarkSurvivesASave)
{
    const auto document = open(write("bom.txt", "\xef\xbb\xbfone"));
    document->setText(document->text() + " two");
    document->save();

    EXPECT_EQ(read(document->path()), "\xef\xbb\xbfone two");
}

TEST_F(EditorDocumentTest, AFileForAViewerIsNeitherReadNorWritten)
{
    const auto document = open(write("photo.png", "no picture"));
    EXPECT_TRUE(document->text().isEmpty());
    EXPECT_FALSE(document->loadError());

    change(document->path(), "other");
    document->reloadIfChangedOnDisk();
    document->setText("typed");
    document->save();

    EXPECT_EQ(read(document->path()), "other");
    EXPECT_FALSE(document->loadError());
}

TEST_F(EditorDocumentTest, AnArchiveEndsWithTheBinaryMessage)
{
    EXPECT_EQ(open(write("a.zip", QByteArray("PK\3\4\0\0", 6)))->loadError(), Binary);
}

// --- saving

TEST_F(EditorDocumentTest, SavingWritesTheTextAndMakesItTheBaseline)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy saved(document.get(), &EditorDocument::savedTextChanged);
    document->setText("two “x”");

    document->save();

    EXPECT_EQ(read(document->path()), "two “x”");
    EXPECT_FALSE(document->hasUnsavedText());
    EXPECT_EQ(saved.count(), 1);
}

TEST_F(EditorDocumentTest, SavingWhatIsSavedTouchesNothing)
{
    const auto document = open(write("a.txt", "one"));
    change(document->path(), "outside");

    document->save();

    EXPECT_EQ(read(document->path()), "outside");
}

TEST_F(EditorDocumentTest, AMissingFileIsWrittenAgainEvenIfNothingChanged)
{
    const auto document = open(write("a.txt", "one"));
    ASSERT_TRUE(QFile::remove(document->path()));
    EXPECT_FALSE(document->fileExists());
    document->reloadIfChangedOnDisk();
    EXPECT_EQ(document->text(), "one");

    document->save();

    EXPECT_EQ(read(document->path()), "one");
}

TEST_F(EditorDocumentTest, AFailedSaveKeepsTheTextAndSaysWhyUntilOneSucceeds)
{
    ASSERT_TRUE(QDir(folder.path()).mkdir("sub"));
    const auto document = open(write("sub/a.txt", "one"));
    const QSignalSpy errors(document.get(), &EditorDocument::saveErrorChanged);
    ASSERT_TRUE(QDir(folder.filePath("sub")).removeRecursively());
    document->setText("two");

    document->save();
    ASSERT_TRUE(document->saveError());
    EXPECT_FALSE(document->saveError()->isEmpty());
    EXPECT_TRUE(document->hasUnsavedText());
    EXPECT_EQ(document->savedText(), "one");

    ASSERT_TRUE(QDir(folder.path()).mkdir("sub"));
    document->save();
    EXPECT_FALSE(document->saveError());
    EXPECT_EQ(read(document->path()), "two");
    EXPECT_EQ(errors.count(), 2);
}

TEST_F(EditorDocumentTest, ARefusedFileIsNeverWrittenEvenAfterItWasDeleted)
{
    const auto document = open(write("a.bin", QByteArray("\0\1", 2)));
    ASSERT_TRUE(document->loadError());
    ASSERT_TRUE(QFile::remove(document->path()));

    document->save();

    EXPECT_FALSE(document->fileExists());
}

TEST_F(EditorDocumentTest, SavingThroughALinkKeepsTheLink)
{
    const QString target = write("target.txt", "one");
    ASSERT_TRUE(QFile::link(target, folder.filePath("link.txt")));
    const auto document = open(folder.filePath("link.txt"));

    document->setText("two");
    document->save();

    EXPECT_TRUE(QFileInfo(folder.filePath("link.txt")).isSymLink());
    EXPECT_EQ(read(target), "two");
}

TEST_F(EditorDocumentTest, SavingKeepsTheFilesPermissions)
{
    const QString path = write("run.sh", "one");
    const auto permissions = QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                             QFileDevice::ExeOwner | QFileDevice::ReadUser |
                             QFileDevice::WriteUser | QFileDevice::ExeUser;
    ASSERT_TRUE(QFile::setPermissions(path, permissions));
    const auto document = open(path);

    document->setText("two");
    document->save();

    EXPECT_EQ(QFile::permissions(path), permissions);
}

// --- autosave

TEST_F(EditorDocumentTest, TheTextIsSaved1200MillisecondsAfterTheLastEdit)
{
    const auto document = open(write("a.txt", ""));
    const auto type = [&](const QString& text) {
        document->setText(text);
        document->scheduleAutosave();
    };

    type("a");
    scheduler.advance(1199ms);
    type("ab");
    scheduler.advance(1199ms);
    EXPECT_EQ(read(document->path()), "");

    scheduler.advance(1ms);
    EXPECT_EQ(read(document->path()), "ab");
    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(EditorDocumentTest, WithAutosaveOffNothingWaits)
{
    autosave = false;
    const auto document = open(write("a.txt", ""));
    document->setText("a");
    document->scheduleAutosave();

    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(EditorDocumentTest, TurningAutosaveOffWithdrawsTheSaveAtTheNextEdit)
{
    const auto document = open(write("a.txt", ""));
    document->setText("a");
    document->scheduleAutosave();
    autosave = false;
    document->setText("ab");
    document->scheduleAutosave();

    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(EditorDocumentTest, AnEditThatIsTakenBackWithdrawsTheSave)
{
    const auto document = open(write("a.txt", "one"));
    document->setText("two");
    document->scheduleAutosave();
    document->setText("one");
    document->scheduleAutosave();

    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(EditorDocumentTest, SavingByHandOrRevertingWithdrawsTheSave)
{
    const auto document = open(write("a.txt", "one"));
    document->setText("two");
    document->scheduleAutosave();
    document->save();
    EXPECT_EQ(scheduler.waiting(), 0);

    document->setText("three");
    document->scheduleAutosave();
    document->revertToSaved();
    EXPECT_EQ(scheduler.waiting(), 0);
    EXPECT_EQ(document->text(), "two");
    EXPECT_FALSE(document->hasUnsavedText());
}

TEST_F(EditorDocumentTest, AClosedDocumentSavesNothingAnyMore)
{
    const QString path = write("a.txt", "one");
    auto document = open(path);
    document->setText("two");
    document->scheduleAutosave();
    document.reset();

    scheduler.advance(2s);

    EXPECT_EQ(read(path), "one");
}

// --- reloading

TEST_F(EditorDocumentTest, AnExternalChangeToACleanDocumentShowsAtOnce)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy texts(document.get(), &EditorDocument::textChanged);
    bool wasUnsaved = false;
    QObject::connect(document.get(), &EditorDocument::savedTextChanged,
                     [&] { wasUnsaved = document->hasUnsavedText(); });
    change(document->path(), "two");

    document->reloadIfChangedOnDisk();

    EXPECT_EQ(document->text(), "two");
    EXPECT_FALSE(document->hasUnsavedText());
    EXPECT_FALSE(wasUnsaved);
    EXPECT_EQ(texts.count(), 1);
}

TEST_F(EditorDocumentTest, AnExternalChangeToAnUnsavedDocumentIsOverwrittenByTheSave)
{
    const auto document = open(write("a.txt", "one"));
    document->setText("mine");
    change(document->path(), "theirs");

    document->reloadIfChangedOnDisk();
    EXPECT_EQ(document->text(), "mine");

    document->save();
    EXPECT_EQ(read(document->path()), "mine");
}

TEST_F(EditorDocumentTest, ANewDateWithTheSameTextAnnouncesNothing)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy texts(document.get(), &EditorDocument::textChanged);
    change(document->path(), "one");

    document->reloadIfChangedOnDisk();

    EXPECT_EQ(texts.count(), 0);
}

TEST_F(EditorDocumentTest, TheDocumentsOwnSaveIsNoExternalChange)
{
    const auto document = open(write("a.txt", "one"));
    document->setText("two");
    document->save();
    const QSignalSpy texts(document.get(), &EditorDocument::textChanged);

    document->reloadIfChangedOnDisk();

    EXPECT_EQ(texts.count(), 0);
    EXPECT_EQ(document->text(), "two");
}

TEST_F(EditorDocumentTest, ARefusalComesAndGoesWithTheFile)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy errors(document.get(), &EditorDocument::loadErrorChanged);

    change(document->path(), QByteArray("\0", 1), 10);
    document->reloadIfChangedOnDisk();
    EXPECT_EQ(document->loadError(), Binary);
    EXPECT_TRUE(document->text().isEmpty());

    change(document->path(), "text again", 20);
    document->reloadIfChangedOnDisk();
    EXPECT_FALSE(document->loadError());
    EXPECT_EQ(document->text(), "text again");
    EXPECT_EQ(errors.count(), 2);
}

// --- the rest

TEST_F(EditorDocumentTest, ARenameMovesTheSaveAndKeepsWhatTheDocumentIs)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy paths(document.get(), &EditorDocument::pathChanged);
    document->setText("two");

    document->setPath(folder.filePath("a.png"));
    document->save();

    EXPECT_EQ(read(folder.filePath("a.png")), "two");
    EXPECT_EQ(document->language(), Language::Text);
    EXPECT_EQ(paths.count(), 1);
}

TEST_F(EditorDocumentTest, WordsAreCountedAcrossPunctuation)
{
    const auto document = open(write("a.txt", "One, two — three’s  four.\n\nfünf 6\n"));
    EXPECT_EQ(document->wordCount(), 6);

    document->setText("");
    EXPECT_EQ(document->wordCount(), 0);
}

TEST_F(EditorDocumentTest, OnlyChangesAreAnnounced)
{
    const auto document = open(write("a.txt", "one"));
    const QSignalSpy texts(document.get(), &EditorDocument::textChanged);
    const QSignalSpy cursors(document.get(), &EditorDocument::cursorChanged);

    document->setText("one");
    document->setCursor(1, 1);
    EXPECT_EQ(texts.count() + cursors.count(), 0);

    document->setText("two");
    document->setCursor(3, 4);
    EXPECT_EQ(texts.count(), 1);
    EXPECT_EQ(cursors.count(), 1);
    EXPECT_EQ(document->cursorLine(), 3);
    EXPECT_EQ(document->cursorColumn(), 4);
}
