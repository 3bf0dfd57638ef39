/// @file
/// Draws the views with sample data into pictures, without a screen:
///
///     QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=2 view-gallery FOLDER [NAME]
///
/// One PNG a view, or the one that is named. For looking at, and for the pictures of the papers.

#include "Tools/ViewGallery/SampleProject.h"

#include "Views/Browser/BrowserScreen.h"
#include "Views/Browser/PageFindBar.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/PaneStyleEditor.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Dialogs/AlertDialog.h"
#include "Views/Dialogs/PromptDialog.h"
#include "Views/Editor/CodeText.h"
#include "Views/Editor/EditorPanes.h"
#include "Views/Editor/EditorScreen.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Window/DetailView.h"
#include "Views/Window/RootView.h"
#include "Views/Window/WindowChrome.h"

#include <QApplication>
#include <QTextStream>

#include <functional>

using namespace Bralto;

namespace {

using Where = SampleProject::Where;

struct Shot {
    QString name;
    SpaceColor color = SpaceColor::Harbour;
    bool dark = true;
    QSize size{1440, 900};
    Where where = Where::Project;
    std::function<void(SampleProject&)> arrange;
    /// What is done in the window before its picture is taken.
    std::function<void(TerminalPanelView&)> act = nullptr;
};

void withTabs(SampleProject& project)
{
    project.openTabs();
}

void withConsole(SampleProject& project)
{
    project.openTabs();
    project.openConsole();
    project.workspace().terminal().setEditorFraction(0.3);
}

void withConsoleAlone(SampleProject& project)
{
    project.openConsole();
}

void withThemes(SampleProject& project)
{
    project.openThemes(PaneTheme::all().first(4));
}

void withOtherThemes(SampleProject& project)
{
    project.openThemes(PaneTheme::all().last(4));
}

void withManyPanes(SampleProject& project)
{
    project.openConsole();
    for (int at = 2; at < 12; ++at)
        project.workspace().terminal().addPane(PaneKind::Shell);
}

void withOnePane(SampleProject& project)
{
    project.workspace().terminal().newTab(std::nullopt);
}

/// The console's pane there; the first is 0.
PaneView& paneOf(TerminalPanelView& console, std::size_t at)
{
    return *console.paneView(console.panel().activeGroup()->panes()[at]->id());
}

void dragPane(TerminalPanelView& console)
{
    const auto& panes = console.panel().activeGroup()->panes();
    console.drag().start({ConsoleDrag::Kind::Pane, panes[0]->id()});
    console.drag().point(
        {ConsoleDrag::Target::Place::Pane, panes[1]->id(), ConsoleDrag::Edge::Trailing});
}

void dragTab(TerminalPanelView& console)
{
    const auto& groups = console.panel().groups();
    console.drag().start({ConsoleDrag::Kind::Group, groups[1]->id()});
    console.drag().point(
        {ConsoleDrag::Target::Place::Chip, groups[0]->id(), ConsoleDrag::Edge::Leading});
}

void dragToHead(TerminalPanelView& console)
{
    dragPane(console);
    console.drag().point({ConsoleDrag::Target::Place::NewTab, {}, {}});
}

void rename(TerminalPanelView& console)
{
    console.head().chips().front()->rename();
}

void withSplit(SampleProject& project)
{
    project.openTabs();
    project.workspace().toggleSplit();
}

void withPageBeside(SampleProject& project)
{
    Workspace& workspace = project.workspace();
    workspace.openFile(workspace.root()->path() + "/README.md");
    const WorkspaceTab text = *workspace.activeTab();
    project.openPage();
    const WorkspaceTab page = *workspace.activeTab();
    workspace.activate(text);
    workspace.openInSplit(page);
}

void withBlankTab(SampleProject& project)
{
    project.openTabs();
    project.openBlankTab({});
}

void withServers(SampleProject& project)
{
    project.openBlankTab({{3000, "/home/me/nimbus-web"}, {8080, "/home/me/tidal-api"}});
}

void withFailure(SampleProject& project)
{
    project.openPage().delegate.pageFailed({.text = "localhost refused to connect."});
}

void withCertificate(SampleProject& project)
{
    project.openPage().delegate.pageFailed(
        {PageLoadError::Kind::Certificate, "The certificate of localhost isn’t trusted."});
}

void withEndedPage(SampleProject& project)
{
    project.openPage().delegate.pageEnded();
}

/// A page that is there, asked something.
void withQuestion(SampleProject& project, const PageQuestion& question)
{
    FakePage& page = project.openPage();
    page.finish("Tidal API – Stations");
    page.delegate.pageAsked(question);
}

void withPrompt(SampleProject& project)
{
    withQuestion(project, {.id = 1,
                           .kind = PageQuestion::Kind::Prompt,
                           .origin = "http://localhost:8080",
                           .text = "What should the new station be called?",
                           .suggestion = "North Pier"});
}

void withPermission(SampleProject& project)
{
    withQuestion(project, {.id = 1,
                           .kind = PageQuestion::Kind::Permission,
                           .origin = "http://localhost:8080",
                           .text = "know your location"});
}

void withLogin(SampleProject& project)
{
    withQuestion(project, {.id = 1,
                           .kind = PageQuestion::Kind::Login,
                           .origin = "http://localhost:8080",
                           .text = "Tide tables"});
}

void withStuckPage(SampleProject& project)
{
    FakePage& page = project.openPage();
    page.finish("Tidal API – Stations");
    page.delegate.pageResponds(false);
    page.delegate.pageHovered(QUrl("http://localhost:8080/stations/8443970?unit=m"));
}

void withActingTool(SampleProject& project)
{
    project.openTabs();
    project.openPage().finish("Tidal API – Stations");
    static std::shared_ptr<void> acting;
    acting = project.workspace().visibleBrowser()->markActing("screenshot");
}

std::vector<Shot> shots()
{
    using enum SpaceColor;
    return {
        {"window-dark", Harbour, true, {1440, 900}, Where::Project, withConsole},
        {"window-light", Coral, false, {1440, 900}, Where::Project, withConsole},
        {"window-wide", Lemon, true, {1920, 1080}, Where::Project, withConsole},
        {"window-narrow", Harbour, true, {640, 420}, Where::Project, withConsole},
        {"console-dark", Harbour, true, {1180, 640}, Where::Project, withConsoleAlone},
        {"console-light", Coral, false, {1180, 640}, Where::Project, withConsoleAlone},
        {"console-wide", Plum, true, {1920, 1080}, Where::Project, withConsoleAlone},
        {"console-narrow", Harbour, true, {640, 420}, Where::Project, withConsoleAlone},
        {"console-one", Harbour, true, {640, 420}, Where::Project, withOnePane},
        {"console-many", Sky, true, {1180, 640}, Where::Project, withManyPanes},
        {"console-rename", Mint, false, {1180, 640}, Where::Project, withConsoleAlone, rename},
        {"drag-pane-dark", Harbour, true, {1180, 640}, Where::Project, withConsoleAlone, dragPane},
        {"drag-pane-light", Coral, false, {1180, 640}, Where::Project, withConsoleAlone, dragPane},
        {"drag-tab", Harbour, true, {1180, 640}, Where::Project, withConsoleAlone, dragTab},
        {"drag-head", Harbour, true, {1180, 640}, Where::Project, withConsoleAlone, dragToHead},
        {"themes-dark", Slate, true, {1560, 480}, Where::Project, withThemes},
        {"themes-light", Mint, false, {1560, 480}, Where::Project, withOtherThemes},
        {"editor-dark", Slate, true, {1180, 780}, Where::Project, withTabs},
        {"split-dark", Plum, true, {1280, 800}, Where::Project, withSplit},
        {"split-light", Mint, false, {1280, 800}, Where::Project, withSplit},
        {"browser-split-dark", Plum, true, {1280, 800}, Where::Project, withPageBeside},
        {"browser-split-light", Mint, false, {1280, 800}, Where::Project, withPageBeside},
        {"browser-start-dark", Harbour, true, {1180, 780}, Where::Project, withServers},
        {"browser-start-light", Coral, false, {1180, 780}, Where::Project, withBlankTab},
        {"browser-failed-dark", Sky, true, {1180, 780}, Where::Project, withFailure},
        {"browser-failed-light", Lemon, false, {640, 420}, Where::Project, withCertificate},
        {"browser-ended", Slate, true, {1180, 780}, Where::Project, withEndedPage},
        {"browser-prompt-dark", Harbour, true, {1180, 780}, Where::Project, withPrompt},
        {"browser-prompt-light", Coral, false, {640, 420}, Where::Project, withPrompt},
        {"browser-permission", Harbour, true, {1180, 780}, Where::Project, withPermission},
        {"browser-login", Mint, false, {1180, 780}, Where::Project, withLogin},
        {"browser-stuck", Plum, true, {1180, 780}, Where::Project, withStuckPage},
        {"browser-acting", Harbour, true, {1180, 780}, Where::Project, withActingTool},
        {"overview-dark", Harbour, true, {1180, 780}, Where::Project, nullptr},
        {"overview-light", Pebble, false, {640, 420}, Where::Project, nullptr},
        {"home-dark", Harbour, true, {1180, 780}, Where::Home, nullptr},
        {"home-light", Sky, false, {1180, 780}, Where::Home, nullptr},
        {"home-narrow", Sky, false, {640, 420}, Where::Home, nullptr},
        {"welcome-light", Mint, false, {1180, 780}, Where::VanishedProject, nullptr},
    };
}

bool save(QWidget& widget, const QString& folder, const QString& name)
{
    for (int turn = 0; turn < 4; ++turn)
        QCoreApplication::processEvents();
    const QString path = folder + '/' + name + ".png";
    const bool saved = widget.grab().save(path);
    QTextStream(stdout) << (saved ? "" : "could not write ") << path << Qt::endl;
    return saved;
}

bool take(const Shot& shot, const QString& folder)
{
    SpaceTheme look;
    look.color = shot.color;
    look.icon = SpaceTheme::Symbol{"waveform"};
    look.appearance = shot.dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
    SampleProject project(look);
    const ViewServices services =
        project.open(shot.where, {.dark = shot.dark, .reducedMotion = true});
    if (shot.arrange)
        shot.arrange(project);
    WindowChrome window(services.theme, services.workspace, {}, WindowChrome::Frame::Own);
    if (shot.where != Where::Project) {
        // Without a project there is no look of a project; the picture shows this one.
        look.icon = SpaceTheme::Mark{};
        services.theme.setSpace(look);
    }
    auto* root = new RootView(services);
    window.setContent(root);
    auto* menu = new QMenu(&window);
    window.setMenu(menu);
    window.resize(shot.size);
    window.show();
    if (DetailView* detail = root->detail()) {
        QWidget* screen = detail->panes().screenOf(services.workspace.activeTabId());
        if (auto* editor = dynamic_cast<EditorScreen*>(screen); editor && editor->code()) {
            editor->code()->setCursor({35, 51});
            editor->code()->setFocus();
        }
    }
    if (shot.act) {
        QCoreApplication::processEvents();
        shot.act(root->detail()->console());
    }
    return save(window, folder, shot.name);
}

/// The menus of the console, and the editor of a pane's look.
bool takeConsoleFloating(const QString& folder, const QString& suffix, bool dark)
{
    SpaceTheme look;
    look.color = dark ? SpaceColor::Harbour : SpaceColor::Mint;
    look.appearance = dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
    SampleProject project(look);
    const ViewServices services =
        project.open(Where::Project, {.dark = dark, .reducedMotion = true});
    project.openConsole();
    TerminalPanelView console(services, project.workspace().terminal(), nullptr);
    console.resize(900, 500);
    console.show();
    ConsolePane& pane = *console.panel().activeGroup()->panes()[1];
    PaneStyle style;
    style.theme = "ocean";
    pane.setStyle(style);
    bool saved = true;
    for (QMenu* menu :
         {paneOf(console, 1).makeMenu().release(), console.head().makeNewMenu().release()}) {
        menu->popup({10, 10});
        saved =
            save(*menu, folder, (menu->actions().size() > 6 ? "pane-menu" : "new-menu") + suffix) &&
            saved;
        menu->close();
    }
    PaneStyleEditor editor(services.theme, services.defaults.shared, pane, nullptr);
    editor.setAttribute(Qt::WA_DeleteOnClose, false);
    editor.open({500, 100});
    return save(editor, folder, "style-editor" + suffix) && saved;
}

bool takeFloating(const QString& folder)
{
    bool saved = true;
    for (const bool dark : {true, false}) {
        SpaceTheme look;
        look.color = dark ? SpaceColor::Harbour : SpaceColor::Coral;
        look.appearance = dark ? SpaceAppearance::Dark : SpaceAppearance::Light;
        Theme theme({.dark = dark, .reducedMotion = true}, look);
        const QString suffix = dark ? "-dark" : "-light";
        AlertDialog alert(theme,
                          {.title = "Couldn’t save tide_store.cpp",
                           .text = "Your recent edits haven’t been written to disk.",
                           .buttons = {"Keep Editing", "Discard Changes"},
                           .lastIsDestructive = true},
                          nullptr);
        alert.show();
        saved = save(alert, folder, "alert" + suffix) && saved;
        PromptDialog prompt(theme,
                            {.title = "Rename",
                             .message = "Enter a new name for “tide_store.cpp”.",
                             .placeholder = {},
                             .initial = "tide_store.cpp"},
                            nullptr);
        prompt.show();
        saved = save(prompt, folder, "prompt" + suffix) && saved;
        saved = takeConsoleFloating(folder, suffix, dark) && saved;
        PopupMenu menu(theme);
        menu.addAction("New File");
        menu.addAction("Hide Sidebar\tCtrl+S");
        QAction* marked = menu.addAction("Show Hidden Files\tCtrl+Shift+.");
        marked->setCheckable(true);
        marked->setChecked(true);
        menu.addSeparator();
        menu.addMenu("Open Recent");
        menu.addAction("Close Folder\tCtrl+Shift+W")->setEnabled(false);
        menu.setActiveAction(marked);
        menu.popup({10, 10});
        saved = save(menu, folder, "menu" + suffix) && saved;
    }
    return saved;
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        QTextStream(stderr) << "view-gallery FOLDER [NAME]" << Qt::endl;
        return 2;
    }
    QDir().mkpath(arguments[1]);
    const QString wanted = arguments.value(2);
    QCursor::setPos(2190, 1290);
    bool saved = true;
    for (const Shot& shot : shots()) {
        if (wanted.isEmpty() || wanted == shot.name)
            saved = take(shot, arguments[1]) && saved;
    }
    if (wanted.isEmpty() || wanted == "floating")
        saved = takeFloating(arguments[1]) && saved;
    return saved ? 0 : 1;
}
