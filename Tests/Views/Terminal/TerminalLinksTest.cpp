#include "Views/Terminal/TerminalLinks.h"
#include "Tests/Support/TerminalInputHarness.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;
using TerminalLinks::FilePlace;

namespace {

const TerminalLinks::Folders Folders{"/home/me", {"/work/a", "/work/b"}};

std::optional<TerminalLinks::Target> target(const QString& text)
{
    return TerminalLinks::target(text, Folders);
}

/// The files that a text may mean; none if it is an address or nothing.
std::vector<FilePlace> files(const QString& text)
{
    const auto found = target(text);
    const auto* const places = found ? std::get_if<std::vector<FilePlace>>(&*found) : nullptr;
    return places ? *places : std::vector<FilePlace>();
}

bool mayMean(const QString& text, const FilePlace& place)
{
    const auto places = files(text);
    return std::find(places.begin(), places.end(), place) != places.end();
}

struct TerminalLinksTest : testing::Test, TerminalInputHarness {
    void makeFile(const QString& name)
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
    }
    void hover(int col, int row, Qt::KeyboardModifiers held = Qt::ControlModifier)
    {
        const QPoint place = at(col, row);
        QMouseEvent event(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, {},
                          held);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    void click(int col, int row)
    {
        hover(col, row);
        QTest::mouseClick(view.get(), Qt::LeftButton, Qt::ControlModifier, at(col, row));
    }
    bool isHand() const { return view->cursor().shape() == Qt::PointingHandCursor; }

    QTemporaryDir folder;
    QSignalSpy urls{&input(), &TerminalInput::urlActivated};
    QSignalSpy paths{&input(), &TerminalInput::fileActivated};
};

} // namespace

TEST(TerminalLinks, OnlyWebAndMailAddressesAreOpened)
{
    for (const char* const address :
         {"https://example.org/a?b#c", "http://localhost:3000", "mailto:me@example.org"})
        EXPECT_EQ(target(address), TerminalLinks::Target(QString(address))) << address;

    for (const char* const address :
         {"ssh://host", "ftp://host/file", "gopher://host", "vscode://file/a", "https://",
          "http:///path", "file://elsewhere.example/etc/passwd", "mailto:", "", "a\nb",
          "https://a\033[31m"})
        EXPECT_FALSE(target(address)) << address;
}

TEST(TerminalLinks, PathsAreThoseOfTheHomeFolderOrOfTheShells)
{
    EXPECT_EQ(files("/etc/hosts"), (std::vector<FilePlace>{{"/etc/hosts"}}));
    EXPECT_EQ(files("~/notes.md"), (std::vector<FilePlace>{{"/home/me/notes.md"}}));
    EXPECT_EQ(files("src/main.cpp"),
              (std::vector<FilePlace>{{"/work/a/src/main.cpp"}, {"/work/b/src/main.cpp"}}));
    EXPECT_EQ(files("../x")[0], (FilePlace{"/work/x"}));
    EXPECT_TRUE(mayMean("a/src/main.cpp", {"/work/a/src/main.cpp"})) << "as in a patch";
}

TEST(TerminalLinks, APlaceInAFileIsUnderstood)
{
    EXPECT_TRUE(mayMean("main.cpp:12", {"/work/a/main.cpp", 12, 0}));
    EXPECT_TRUE(mayMean("main.cpp:12:5", {"/work/a/main.cpp", 12, 5}));
    EXPECT_TRUE(mayMean("main.cpp:12:5:", {"/work/a/main.cpp", 12, 5}));
    EXPECT_TRUE(mayMean("main.cpp(12,5)", {"/work/a/main.cpp", 12, 5}));
    EXPECT_TRUE(mayMean("main.cpp(12)", {"/work/a/main.cpp", 12, 0}));
    EXPECT_TRUE(mayMean("/a/b.py:7: error in it", {"/a/b.py", 7, 0}));
    EXPECT_TRUE(mayMean("see/this.md.", {"/work/a/see/this.md"}));
    EXPECT_TRUE(mayMean("main.cpp:99999999999999", {"/work/a/main.cpp", 0, 0}));
    EXPECT_EQ(files("main.cpp:12")[0], (FilePlace{"/work/a/main.cpp:12"}))
        << "a file of that very name goes first";
}

TEST(TerminalLinks, FileAddressesAreThoseOfThisComputer)
{
    EXPECT_EQ(files("file:///a%20b/c")[0], (FilePlace{"/a b/c"}));
    EXPECT_EQ(files("file://localhost/a")[0], (FilePlace{"/a"}));
    EXPECT_EQ(files("file://" + QSysInfo::machineHostName() + "/a")[0], (FilePlace{"/a"}));
    EXPECT_TRUE(mayMean("file:///a.cpp#L12", {"/a.cpp", 12, 0}));
    EXPECT_TRUE(mayMean("file:///a.cpp:12:3", {"/a.cpp", 12, 3}));
    EXPECT_FALSE(target("file://other/a"));
}

TEST(TerminalLinks, TheFolderThatAShellTellsIsALocalPath)
{
    EXPECT_EQ(TerminalLinks::localPath("file:///a%20b"), "/a b");
    EXPECT_EQ(TerminalLinks::localPath("/a b"), "/a b");
    EXPECT_EQ(TerminalLinks::localPath("file://elsewhere/a"), "");
    EXPECT_EQ(TerminalLinks::localPath("https://example.org"), "");
}

TEST_F(TerminalLinksTest, CtrlShowsAWebAddressAndAClickFollowsIt)
{
    write("see https://example.org/page now");

    hover(6, 0, {});
    EXPECT_FALSE(isHand());
    hover(6, 0);
    EXPECT_TRUE(isHand());
    hover(1, 0);
    EXPECT_FALSE(isHand());

    click(6, 0);
    ASSERT_EQ(urls.count(), 1);
    EXPECT_EQ(urls[0][0].toString(), "https://example.org/page");
    EXPECT_EQ(selectedText(), "");
}

TEST_F(TerminalLinksTest, CtrlCountsWhileThePointerRests)
{
    write("see https://example.org/page now");
    hover(6, 0, {});

    QTest::keyPress(view.get(), Qt::Key_Control);
    EXPECT_TRUE(isHand());
    QTest::keyRelease(view.get(), Qt::Key_Control);
    EXPECT_FALSE(isHand());
}

TEST_F(TerminalLinksTest, AFileThatIsThereOpensAtItsLine)
{
    makeFile("main.cpp");
    panes.inspector.directories[panes.process().pid()] = folder.path();
    write("./main.cpp:12:5: error");

    click(4, 0);

    ASSERT_TRUE(QTest::qWaitFor([this] { return paths.count() == 1; }));
    EXPECT_EQ(paths[0][0].toString(), QDir::cleanPath(folder.filePath("main.cpp")));
    EXPECT_EQ(paths[0][1].toInt(), 12);
    EXPECT_EQ(paths[0][2].toInt(), 5);
    EXPECT_TRUE(isHand());
}

TEST_F(TerminalLinksTest, AFileThatIsNotThereIsNoLink)
{
    panes.inspector.directories[panes.process().pid()] = folder.path();
    write("./gone.cpp:12 and https://example.org");

    click(4, 0);
    click(20, 0);

    ASSERT_TRUE(QTest::qWaitFor([this] { return urls.count() == 1; }));
    QTest::qWait(50);
    EXPECT_EQ(paths.count(), 0);
}

TEST_F(TerminalLinksTest, TheFolderThatTheShellTellsGoesFirst)
{
    makeFile("notes.md");
    write("\033]7;file://" + folder.path().toStdString() + "\033\\./notes.md");

    click(4, 0);

    ASSERT_TRUE(QTest::qWaitFor([this] { return paths.count() == 1; }));
    EXPECT_EQ(paths[0][0].toString(), QDir::cleanPath(folder.filePath("notes.md")));
}

TEST_F(TerminalLinksTest, ALinkWhoseTextIsAnotherSaysWhereItLeads)
{
    write("\033]8;;https://evil.example/\033\\https://example.org\033]8;;\033\\ plain "
          "\033]8;;https://example.org/\033\\https://example.org/\033]8;;\033\\");

    hover(3, 0, {});
    EXPECT_EQ(view->toolTip(), "https://evil.example/");
    hover(22, 0, {});
    EXPECT_EQ(view->toolTip(), "");
    hover(28, 0, {});
    EXPECT_EQ(view->toolTip(), "");

    click(3, 0);
    ASSERT_EQ(urls.count(), 1);
    EXPECT_EQ(urls[0][0].toString(), "https://evil.example/");
}

TEST_F(TerminalLinksTest, ALinkIsTheUsersEvenIfTheProgramHasThePointer)
{
    write("\033[?1000;1006hhttps://example.org text");
    sent();

    click(3, 0);
    EXPECT_EQ(urls.count(), 1);
    EXPECT_EQ(sent(), "");

    click(22, 0);
    EXPECT_EQ(sent(), "\x1b[<16;23;1M\x1b[<16;23;1m");
}

TEST_F(TerminalLinksTest, AMarkGoesWithItsText)
{
    write("https://example.org");
    hover(3, 0);
    ASSERT_TRUE(isHand());

    write("\033[2J");

    EXPECT_FALSE(isHand());
}
