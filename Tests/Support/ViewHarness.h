#pragma once

#include "Base/Motion.h"
#include "Base/Zoom.h"
#include "Tests/Support/WorkspaceHarness.h"
#include "Views/ViewServices.h"

#include <QApplication>
#include <QWidget>

namespace Bralto {

/// What stands in for a conversation's view: it can have the keyboard, and knows its pane.
class FakePaneContent final : public QWidget {
public:
    explicit FakePaneContent(const ConsolePane& pane)
        : paneId(pane.id())
    {
        setFocusPolicy(Qt::StrongFocus);
    }
    QString paneId;
};

/// A workspace with everything that its views need, without motion.
class ViewHarness {
public:
    ViewServices openProject(Pages pages = Pages::Unavailable)
    {
        workspace = desk.openProject(pages);
        return services(WindowLayout::Role::FolderApplication);
    }
    ViewServices openHome()
    {
        workspace = desk.openHome();
        return services(WindowLayout::Role::HomeApplication);
    }
    /// The project's own application, whose folder isn't there.
    ViewServices openGone()
    {
        workspace = desk.make(desk.home() + "/gone", Pages::Unavailable);
        return services(WindowLayout::Role::FolderApplication);
    }

    [[nodiscard]] ViewServices services(WindowLayout::Role role)
    {
        return {.workspace = *workspace,
                .theme = theme,
                .desktop = desk.desktop,
                .defaults = {desk.shared, desk.standard},
                .clock = desk.chats.clock,
                .motion = motion,
                .zoom = zoom,
                .role = role,
                .makePane = [](ConsolePane& pane, Theme& /*look*/) {
                    return new FakePaneContent(pane);
                }};
    }

    /// A file of the project in a tab of its own.
    WorkspaceTab open(const QString& name, const QByteArray& bytes = "text")
    {
        workspace->openFile(desk.write(name, bytes));
        return *workspace->activeTab();
    }

    /// Lets queued calls and paint events run.
    static void settle()
    {
        for (int turn = 0; turn < 3; ++turn)
            QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    WorkspaceHarness desk;
    Theme theme{{.dark = true, .reducedMotion = true}};
    Motion motion{desk.scheduler()};
    Zoom zoom{desk.shared};
    std::unique_ptr<Workspace> workspace;
};

} // namespace Bralto
