// A real program on a pseudo-terminal shows what it was sent.

#include "Platform/LocalPaneProcess.h"
#include "Platform/QtRunLoop.h"
#include "Tests/Support/FakePanes.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Terminal/TerminalInput.h"
#include "Views/Terminal/TerminalView.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalTypingTest : testing::Test {
    TerminalTypingTest()
    {
        // In place of a shell: tells every byte that comes, as cat -v writes it.
        QFile script(folder.filePath("recorder"));
        EXPECT_TRUE(script.open(QFile::WriteOnly));
        script.write("#!/bin/sh\nstty raw -echo\nprintf '\\033[?2004hready\\r\\n'\nexec cat -v\n");
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        script.close();
        panes.host.shellPath = script.fileName();
        TerminalSession::Services made = panes.sessionServices();
        made.makeProcess = [this](Kovalt::LocalProcessDelegate& delegate) {
            return std::make_unique<LocalPaneProcess>(delegate, loop);
        };
        session.emplace(TerminalSession::Start{PaneKind::Shell, folder.path(), folder.path(), {}},
                        made);
        view = std::make_unique<TerminalView>(services, *session);
        view->resize(900, 300);
        view->show();
        view->setFocus();
        EXPECT_TRUE(shows("ready"));
    }

    [[nodiscard]] std::string screen() const
    {
        return session->terminal().getBufferAsData(Kovalt::Terminal::BufferKind::Normal);
    }
    [[nodiscard]] bool shows(const std::string& text) const
    {
        return QTest::qWaitFor([&] { return screen().find(text) != std::string::npos; }, 30'000);
    }
    void key(int key, Qt::KeyboardModifiers held = {})
    {
        QTest::keyClick(view.get(), Qt::Key(key), held);
    }

    QTemporaryDir folder;
    QtRunLoop loop;
    PaneMaker panes;
    ViewHarness views;
    ViewServices services = views.openProject();
    std::optional<TerminalSession> session;
    std::unique_ptr<TerminalView> view;
};

} // namespace

TEST_F(TerminalTypingTest, EveryChordArrivesAsBytes)
{
    QTest::keyClicks(view.get(), "ls ");
    key(Qt::Key_C, Qt::ControlModifier);
    key(Qt::Key_W, Qt::ControlModifier);
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    key(Qt::Key_B, Qt::AltModifier);
    key(Qt::Key_Up);
    key(Qt::Key_F5);
    key(Qt::Key_Escape);
    key(Qt::Key_Space, Qt::ControlModifier);

    EXPECT_TRUE(shows("ls ^C^W^[[Z^[b^[[A^[[15~^[^@")) << screen();
}

TEST_F(TerminalTypingTest, APasteArrivesInBrackets)
{
    QGuiApplication::clipboard()->setText("one\ntwo");

    view->input().paste();

    EXPECT_TRUE(shows("^[[200~one^Mtwo^[[201~")) << screen();
}

TEST_F(TerminalTypingTest, AHugePasteArrivesWholeWhileTheInterfaceStaysFree)
{
    QGuiApplication::clipboard()->setText(QString(1 << 20, 'x') + "end");

    view->input().paste();

    EXPECT_TRUE(shows("xend^[[201~"));
}
